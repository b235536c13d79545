// The C# binding with a library that records its calls.

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Threading;
using QXBridge;

// A process can start one session, which the tests share.
class SessionTests
{
    internal const string Dpi = "vtr.instance.Nougat64.dpi";

    internal static DataFolder data;
    internal static FakeMachine machine;
    internal static Session session;

    protected static Configuration conf
    {
        get { return session.Conf; }
    }
}

class StartTests : SessionTests
{
    public static void AFailedStartThrows()
    {
        Check.fakeAnswer(22);
        Check.Throws<BridgeException>(
            "bridgeApiInit failed with 22 (XERR_INVAL: an argument was refused) for " +
            data.ConfPath + "; the log " + data.LogPath + " has the cause",
            () => new Session(Client.Launcher));
        Check.Throws<BridgeException>(
            "bridgeApiInitEx failed with 22 (XERR_INVAL: an argument was refused); " +
            "the log " + data.LogPath + " has the cause",
            () => new Session(Client.LogCollector, true, null));
        Check.Fails("bridgeApiInitEx", 22, () => new Session(Client.Uninstaller, false, "ü.log"));
        Check.fakeAnswer(0);
        Check.Called("bridgeApiInit Launcher", "bridgeApiInitEx LogCollector 1 0 (null)",
                     "bridgeApiInitEx Uninstaller 0 0 ü.log");
    }

    public static void OneSessionStarts()
    {
        session = new Session(Client.Helper);
        Check.CollectGarbage();
        Check.Equal("Helper", Check.Text(Check.fakeClient()));
        Check.Throws<InvalidOperationException>(() => new Session(Client.Launcher));
        Check.Throws<InvalidOperationException>(() => new Session(Client.Launcher, true, null));
        Check.Called("bridgeApiInit Helper");
    }
}

class CallTests : SessionTests
{
    public static void FailedProgramsAreNamed()
    {
        const string Player = "C:\\QX\\QX-Player.exe", Manager = "C:\\QX\\QX-MultiInstanceManager.exe";
        Action<string, Action> fails = (file, call) => Check.Equal(file, Check.Throws<BridgeException>(call).File);
        Check.fakeAnswer(2);
        fails(Player, () => session.LaunchApp("N", "p"));
        fails(Player, () => session.LaunchAppStore("N", "s", "p"));
        fails(Player, () => session.LaunchUrl("N", "u"));
        fails(Player, () => session.UninstallApp("N", "p"));
        fails("f", () => session.InstallApk("N", "f"));
        fails(Manager, () => session.InstallImage("I"));
        fails(Manager, () => session.CreateFreshInstance("I", 2, 2048, "aga", "dx", "s21"));
        fails(null, () => session.ShutdownPlayer("N", true));
        Check.fakeAnswer(0);
        Check.fakeReset();
    }

    // Functions without a method of the same name.
    static readonly Dictionary<string, string> Methods = new Dictionary<string, string>
    {
        { "bridgeConfGetInstances", "InstancesJson" }, { "bridgeGetInstalledApps", "AppsJson" },
        { "bridgePlrShutdown", "ShutdownPlayer" }, { "bridgeRegisterCallbacks", null },
        { "bridgeApiInit", null }, { "bridgeApiInitEx", null }, { "bridgeApiFini", null },
        { "bridgeFreeMemory", null },
        // The catalogue has no key of 64 bits.
        { "bridgeConfGetI64", null }, { "bridgeConfSetI64", null },
    };

    static readonly Dictionary<string, string> KeysOfMethods = new Dictionary<string, string>
    {
        { "Bool", "vtr.enable_adb_access" }, { "I32", "vtr.next_vm_id" },
        { "MultiString", "vtr.shared_folders" }, { "String", "vtr.locale" },
    };

    // A different value for each parameter, by its type. A text is the parameter's name. A key has the method's
    // type.
    static object ValueOf(ParameterInfo parameter)
    {
        if (parameter.IsOptional) return parameter.DefaultValue;
        if (parameter.Name == "key")
            return KeysOfMethods.First(one => parameter.Member.Name.EndsWith(one.Key)).Value;
        if (parameter.ParameterType == typeof(int)) return 7 + parameter.Position;
        if (parameter.ParameterType == typeof(bool)) return true;
        if (parameter.ParameterType == typeof(string[])) return new[] { parameter.Name };
        return parameter.Name;
    }

    static string Shown(object value)
    {
        if (value is bool) return (bool)value ? "1" : "0";
        string[] elements = value as string[];
        return elements == null ? value.ToString() : string.Join(",", elements);
    }

    static void CalledByItsMethod(string function)
    {
        string name;
        if (!Methods.TryGetValue(function, out name)) name = function.Substring("bridge".Length);
        if (name == null) return;
        object target = session;
        if (!Methods.ContainsKey(function) && name.StartsWith("Conf"))
        {
            target = conf;
            name = name.Substring("Conf".Length);
        }
        MethodInfo method = target.GetType().GetMethod(name);
        Check.Equal(true, method != null);
        object[] values = Array.ConvertAll(method.GetParameters(), ValueOf);
        method.Invoke(target, values);
        IEnumerable<string> shown = values.Where(one => one != null).Select(Shown);
        Check.Called(string.Join(" ", new[] { function }.Concat(shown)));
    }

    public static void EachFunctionByItsMethod()
    {
        Type native = typeof(Session).Assembly.GetType("QXBridge.Native");
        int functions = 0;
        foreach (MethodInfo method in native.GetMethods(BindingFlags.NonPublic | BindingFlags.Static))
        {
            if (!method.Name.StartsWith("bridge")) continue;
            CalledByItsMethod(method.Name);
            ++functions;
        }
        Check.Equal(true, functions > Methods.Count);
    }

    public static void APlayerIsAskedToShutDown()
    {
        session.ShutdownPlayer("ü", false);
        Check.Called("bridgePlrShutdown ü 0");
    }

    public static void Listings()
    {
        Check.Equal(true, session.InstancesJson().Contains("\"displayName\":\"Größe\""));
        Instance instance = session.Instances().Single();
        Check.Equal("Nougat64 Größe Nougat64 s21u aga dx 4096 4", string.Join(" ", instance.Name,
            instance.DisplayName, instance.ImageName, instance.DeviceProfile, instance.GraphicsEngine, instance.GraphicsRenderer,
            instance.Ram, instance.Cpu));
        Check.Called("bridgeConfGetInstances", "bridgeConfGetInstances");
        App app = session.Apps("ü").Single();
        Check.Equal("com.größe Main 第二 -5 1.0β a.png", string.Join(" ", app.Package, app.Activity,
                    app.AppLabel, app.VersionCode, app.VersionName, app.IconFilePath));
        Check.Equal("Größe", session.InstancesAsync().Result.Single().DisplayName);
        Check.Equal("第二", session.AppsAsync("ü").Result.Single().AppLabel);
        Check.Called("bridgeGetInstalledApps ü", "bridgeConfGetInstances", "bridgeGetInstalledApps ü");
        Check.Equal(true, session.AppsJson("ü").Contains("\"package\":\"com.größe\""));
        Check.Fails("bridgeGetInstalledApps", -1, () => session.AppsJson("null"));
        Check.Called("bridgeGetInstalledApps ü", "bridgeGetInstalledApps null");
    }
}

class EndTests : SessionTests
{
    public static void TheEndWhileEventsArrive()
    {
        Check.fakeReset();
        Action streamsAndWorkHaveEnded = EventTests.AtTheEnd();
        int count = 0;
        session.AppDisplayed += (instance, package) => Interlocked.Increment(ref count);
        Check.fakeFlood();
        while (Thread.VolatileRead(ref count) < 100) Thread.Yield();
        session.Dispose();
        int last = Thread.VolatileRead(ref count);
        Check.CollectGarbage();
        Check.Equal(last, Thread.VolatileRead(ref count));
        session.Dispose();
        streamsAndWorkHaveEnded();
        Check.Throws<ObjectDisposedException>(() => session.InstancesJson());
        Check.Throws<ObjectDisposedException>(() => conf.Commit());
        Check.Throws<InvalidOperationException>(() => new Session(Client.Helper));
        Check.Called("bridgeApiFini");
        Check.Equal(0, Check.fakeLiveTexts());
    }
}

static class CSharpTest
{
    // The process ends with a listening session. This handler of its end runs after the binding's.
    static int EndOfTheProcess()
    {
        int count = 0;
        var session = new Session(Client.Helper);
        session.AppDisplayed += (instance, package) => ++count;
        session.Listen();
        Check.fakeSend(0);
        AppDomain.CurrentDomain.ProcessExit += (sender, arguments) =>
        {
            Check.fakeSend(0);
            Console.WriteLine("{0} event before the end of the process", count);
        };
        return 0;
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length == 0) PreflightTests.Run();
        Type[] classes =
        {
            typeof(PureTests), typeof(StartTests), typeof(ListeningTests), typeof(CallTests),
            typeof(ConfigurationTests), typeof(EventTests), typeof(EndTests),
        };
        using (SessionTests.data = new DataFolder(SessionTests.Dpi + "=\"240\"", "vtr.mute_all_instances=\"x\""))
        {
            SessionTests.machine = new FakeMachine(SessionTests.data.Path);
            if (arguments.Length > 0) return EndOfTheProcess();
            foreach (Type tests in classes) Check.Run(tests);
        }
        Console.WriteLine(Check.Tests + " tests, " + Check.Count + " checks");
        return 0;
    }
}
