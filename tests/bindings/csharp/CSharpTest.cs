// The C# binding over a library that writes down how it was called. Every check counts; the first
// that fails ends the test.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using QXBridge;

static class CSharpTest
{
    [DllImport("QX-Bridge.dll")] static extern IntPtr fakeCalls();
    [DllImport("QX-Bridge.dll")] static extern void fakeReset();
    [DllImport("QX-Bridge.dll")] static extern void fakeAnswer(int code);
    [DllImport("QX-Bridge.dll")] static extern int fakeLiveTexts();
    [DllImport("QX-Bridge.dll")] static extern IntPtr fakeClient();
    [DllImport("QX-Bridge.dll")] static extern void fakeSend(int full);
    [DllImport("QX-Bridge.dll")] static extern void fakeFlood();

    static int checks;

    static string Text(IntPtr memory)
    {
        var bytes = new List<byte>();
        for (int i = 0; Marshal.ReadByte(memory, i) != 0; ++i) bytes.Add(Marshal.ReadByte(memory, i));
        return Encoding.UTF8.GetString(bytes.ToArray());
    }

    static void Equal(object expected, object actual)
    {
        ++checks;
        if (Equals(expected, actual)) return;
        Console.Error.WriteLine("expected: " + expected + "\nactual:   " + actual + "\n" + Environment.StackTrace);
        Environment.Exit(1);
    }

    // The calls since the last time.
    static void Called(params string[] expected)
    {
        Equal(string.Join("\n", expected), Text(fakeCalls()).TrimEnd('\n'));
        fakeReset();
    }

    static void Throws<T>(Action call) where T : Exception
    {
        string thrown = "nothing";
        try { call(); } catch (Exception exception) { thrown = exception.GetType().Name; }
        Equal(typeof(T).Name, thrown);
    }

    static void Fails(string operation, int code, Action call)
    {
        string thrown = "nothing";
        try { call(); } catch (BridgeException exception) { thrown = exception.Operation + " " + exception.Code; }
        Equal(operation + " " + code, thrown);
    }

    static void CollectGarbage()
    {
        for (int i = 0; i < 20; ++i)
        {
            for (int n = 0; n < 1000; ++n) GC.KeepAlive(new byte[9 + n % 7]);
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }
    }

    static void Initialisation()
    {
        fakeAnswer(22);
        Fails("bridgeApiInit", 22, () => new Session(Client.Launcher));
        Fails("bridgeApiInitEx", 22, () => new Session(Client.LogCollector, true, null));
        Fails("bridgeApiInitEx", 22, () => new Session(Client.Uninstaller, false, "C:\\ü.log"));
        fakeAnswer(0);
        Called("bridgeApiInit Launcher", "bridgeApiInitEx LogCollector 1 0 (null)",
               "bridgeApiInitEx Uninstaller 0 0 C:\\ü.log");
    }

    // The first session that starts, and the only one.
    static Session TheSession()
    {
        var session = new Session(Client.Helper);
        CollectGarbage();
        Equal("Helper", Text(fakeClient()));
        Throws<InvalidOperationException>(() => new Session(Client.Launcher));
        Throws<InvalidOperationException>(() => new Session(Client.Launcher, true, null));
        Called("bridgeApiInit Helper");
        return session;
    }

    static void Reading(Configuration conf)
    {
        Equal(true, conf.GetBool("true"));
        Equal(false, conf.GetBool("false"));
        Equal(-2147483647, conf.GetI32("ü"));
        Equal(-9007199254740993L, conf.GetI64("k"));
        Equal("Größe 日本 😀", conf.GetString("k"));
        Equal("", conf.GetString("empty"));
        Equal("Bilder|Größe", string.Join("|", conf.GetMultiString("k")));
        Equal(0, conf.GetMultiString("empty").Length);
        Fails("bridgeConfGetString", -1, () => conf.GetString("null"));
        Throws<ArgumentNullException>(() => conf.GetString(null));
        Throws<ArgumentException>(() => conf.GetString("a\0b"));
        Called("bridgeConfGetBool true", "bridgeConfGetBool false", "bridgeConfGetI32 ü", "bridgeConfGetI64 k",
               "bridgeConfGetString k", "bridgeConfGetString empty", "bridgeConfGetMultiString k",
               "bridgeConfGetMultiString empty", "bridgeConfGetString null");
    }

    static void Writing(Configuration conf)
    {
        conf.SetBool("k", true);
        conf.SetBool("k", false);
        conf.SetI32("k", int.MinValue);
        conf.SetI64("k", long.MinValue);
        conf.SetString("k", "第二");
        conf.SetMultiString("k", "a", "ü");
        conf.SetMultiString("k");
        conf.Commit();
        conf.CommitToFile("C:\\ü.conf");
        Throws<ArgumentException>(() => conf.SetMultiString("k", "a,b"));
        Throws<ArgumentNullException>(() => conf.SetMultiString("k", "a", null));
        Throws<ArgumentNullException>(() => conf.SetMultiString("k", null));
        Called("bridgeConfSetBool k 1", "bridgeConfSetBool k 0", "bridgeConfSetI32 k -2147483648",
               "bridgeConfSetI64 k -9223372036854775808", "bridgeConfSetString k 第二",
               "bridgeConfSetMultiString k a,ü", "bridgeConfSetMultiString k ", "bridgeConfCommit",
               "bridgeConfCommitToFile C:\\ü.conf");
        fakeAnswer(7);
        Fails("bridgeConfSetBool", 7, () => conf.SetBool("k", true));
        Fails("bridgeConfSetI32", 7, () => conf.SetI32("k", 1));
        Fails("bridgeConfSetI64", 7, () => conf.SetI64("k", 1));
        Fails("bridgeConfSetString", 7, () => conf.SetString("k", ""));
        Fails("bridgeConfSetMultiString", 7, () => conf.SetMultiString("k"));
        Fails("bridgeConfCommit", 7, () => conf.Commit());
        Fails("bridgeConfCommitToFile", 7, () => conf.CommitToFile("p"));
        fakeAnswer(0);
        fakeReset();
    }

    static void Programs(Session session)
    {
        Action[] calls =
        {
            () => session.LaunchApp("N", "ü"),
            () => session.LaunchAppStore("N", "s", "p"),
            () => session.LaunchUrl("N", "u"),
            () => session.InstallApk("N", "f"),
            () => session.UninstallApp("N", "p"),
            () => session.InstallImage("I"),
            () => session.CreateFreshInstance("I", 2, 2048, "aga", "dx", "s21"),
            () => session.ShutdownPlayer("N", true),
        };
        foreach (Action call in calls) call();
        session.ShutdownPlayer("N", false);
        session.Shutdown();
        Called("bridgeLaunchApp N ü", "bridgeLaunchAppStore N s p", "bridgeLaunchUrl N u", "bridgeInstallApk N f",
               "bridgeUninstallApp N p", "bridgeInstallImage I", "bridgeCreateFreshInstance I 2 2048 aga dx s21",
               "bridgePlrShutdown N 1", "bridgePlrShutdown N 0", "bridgeShutdown");
        fakeAnswer(2);
        foreach (Action call in calls) Throws<BridgeException>(call);
        fakeAnswer(0);
        fakeReset();
    }

    // Functions whose method has another name than theirs, or that have none.
    static readonly Dictionary<string, string> Methods = new Dictionary<string, string>
    {
        { "bridgeConfGetInstances", "InstancesJson" }, { "bridgeGetInstalledApps", "AppsJson" },
        { "bridgePlrShutdown", "ShutdownPlayer" }, { "bridgeRegisterCallbacks", "Listen" },
        { "bridgeApiInit", null }, { "bridgeApiInitEx", null }, { "bridgeApiFini", null },
        { "bridgeFreeMemory", null },
    };

    // A value of a parameter's type: a text is its name.
    static object ValueOf(ParameterInfo parameter)
    {
        if (parameter.ParameterType == typeof(int)) return 7;
        if (parameter.ParameterType == typeof(long)) return 7L;
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

    static void CalledByItsMethod(Session session, string function)
    {
        string name;
        if (!Methods.TryGetValue(function, out name)) name = function.Substring("bridge".Length);
        if (name == null) return;
        object target = session;
        if (!Methods.ContainsKey(function) && name.StartsWith("Conf"))
        {
            target = session.Conf;
            name = name.Substring("Conf".Length);
        }
        MethodInfo method = target.GetType().GetMethod(name);
        Equal(function + " has a method", function + (method == null ? " has none: " + name : " has a method"));
        object[] values = Array.ConvertAll(method.GetParameters(), ValueOf);
        method.Invoke(target, values);
        Called(string.Join(" ", new[] { function }.Concat(Array.ConvertAll(values, Shown))));
    }

    static void EachFunctionByItsMethod(Session session)
    {
        Type native = typeof(Session).Assembly.GetType("QXBridge.Native");
        int functions = 0;
        foreach (MethodInfo method in native.GetMethods(BindingFlags.NonPublic | BindingFlags.Static))
        {
            if (!method.Name.StartsWith("bridge")) continue;
            CalledByItsMethod(session, method.Name);
            ++functions;
        }
        Equal(true, functions > Methods.Count);
    }

    static void Listings(Session session)
    {
        Equal(true, session.InstancesJson().Contains("\"displayName\":\"Größe\""));
        Equal(true, session.AppsJson("ü").Contains("\"package\":\"com.größe\""));
        Fails("bridgeGetInstalledApps", -1, () => session.AppsJson("null"));
        Called("bridgeConfGetInstances", "bridgeGetInstalledApps ü", "bridgeGetInstalledApps null");
    }

    static void Events(Session session)
    {
        var seen = new List<string>();
        session.AppInstalled += app => seen.Add(string.Join("|", app.Instance, app.Package, app.Activity,
            app.AppLabel, app.VersionCode, app.VersionName, app.IconFilePath, app.IsUpdate));
        session.AppUninstalled += (instance, package) => seen.Add(instance + "|" + package);
        session.ApkInstallCompleted += (instance, status, file) => seen.Add(instance + "|" + status + "|" + file);
        session.InstanceListUpdated += () => seen.Add("list");
        session.InstallImageProgress += (image, status, progress) =>
            seen.Add(image + "|" + status + "|" + (progress == 33.125 || progress == 0));
        session.CreateInstanceCompleted += (status, instance) => seen.Add(status + "|" + instance);
        session.InstanceConfigurationChanged += instance => seen.Add(instance);
        session.AppDisplayed += (instance, package) => { throw new InvalidOperationException("the host's own"); };
        session.AppDisplayed += (instance, package) => seen.Add(instance + "|" + package);
        session.AccountListUpdated += (instance, email, action) => seen.Add(instance + "|" + email + "|" + action);
        session.HandlerFailed += exception => seen.Add("failed: " + exception.Message);
        session.HandlerFailed += exception => { throw exception; };
        session.Listen();  // again: it changes nothing
        Called();
        CollectGarbage();
        fakeSend(1);
        Equal("Nougat64|com.größe|Main|第二 App|-5|1.0β|C:\\Ü.png|True\n" +
              "Nougat64|com.größe\nNougat64|-1|C:\\П.apk\nlist\nNougat32|1|True\n-2|Nougat64_1\nNougat64\n" +
              "failed: the host's own\nNougat64|😀\nNougat64|jürgen@example.com|2", string.Join("\n", seen));
        seen.Clear();
        fakeSend(0);
        Equal("||||0|||False\n|\n|0|\nlist\n|0|True\n0|\n\nfailed: the host's own\n|\n||0", string.Join("\n", seen));
    }

    // A handler may not wait for itself.
    static void DisposeInHandler(Session session)
    {
        string thrown = "nothing";
        AccountListUpdatedHandler dispose = (instance, email, action) =>
        {
            try { session.Dispose(); } catch (Exception exception) { thrown = exception.GetType().Name; }
        };
        session.AccountListUpdated += dispose;
        fakeReset();
        fakeSend(0);
        session.AccountListUpdated -= dispose;
        Equal("InvalidOperationException", thrown);
        session.Conf.Commit();
        Called("bridgeConfCommit");
    }

    // The end while another thread's events arrive.
    static void End(Session session)
    {
        fakeReset();
        int count = 0;
        session.AppDisplayed += (instance, package) => Interlocked.Increment(ref count);
        fakeFlood();
        while (Thread.VolatileRead(ref count) < 100) Thread.Yield();
        session.Dispose();
        int last = Thread.VolatileRead(ref count);
        CollectGarbage();
        Equal(last, Thread.VolatileRead(ref count));
        session.Dispose();
        Throws<ObjectDisposedException>(() => session.InstancesJson());
        Throws<ObjectDisposedException>(() => session.Conf.Commit());
        Throws<InvalidOperationException>(() => new Session(Client.Helper));
        Called("bridgeApiFini");
        Equal(0, fakeLiveTexts());
    }

    // Leaves a session that listens. The handler here runs after the binding's own.
    static int EndOfTheProcess()
    {
        int count = 0;
        var session = new Session(Client.Helper);
        session.AppDisplayed += (instance, package) => ++count;
        session.Listen();
        fakeSend(0);
        AppDomain.CurrentDomain.ProcessExit += (sender, arguments) =>
        {
            fakeSend(0);
            Console.WriteLine("{0} event before the end of the process", count);
        };
        return 0;
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length > 0) return EndOfTheProcess();
        Initialisation();
        Session session = TheSession();
        Reading(session.Conf);
        Writing(session.Conf);
        Programs(session);
        Listings(session);
        EachFunctionByItsMethod(session);
        Events(session);
        DisposeInHandler(session);
        End(session);
        Console.WriteLine(checks + " checks");
        return 0;
    }
}
