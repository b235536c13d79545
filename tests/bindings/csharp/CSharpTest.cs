// The C# binding over a library that writes down how it was called. Every check counts; the first
// that fails ends the test.

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Threading;
using System.Threading.Tasks;
using QXBridge;

static class CSharpTest
{
    const string Dpi = "vtr.instance.Nougat64.dpi";

    static FakeMachine machine;
    static DataFolder data;

    static void Initialisation()
    {
        Check.fakeAnswer(22);
        Check.Throws<BridgeException>("bridgeApiInit failed with 22 (XERR_INVAL: an argument was refused) for " +
            data.ConfPath + "; the log " + data.Of("Logs", "Player.log") + " has the cause",
            () => new Session(Client.Launcher));
        Check.Throws<BridgeException>("bridgeApiInitEx failed with 22 (XERR_INVAL: an argument was refused); " +
            "the log " + data.Of("Logs", "Player.log") + " has the cause",
            () => new Session(Client.LogCollector, true, null));
        Check.Fails("bridgeApiInitEx", 22, () => new Session(Client.Uninstaller, false, "ü.log"));
        Check.fakeAnswer(0);
        Check.Called("bridgeApiInit Launcher", "bridgeApiInitEx LogCollector 1 0 (null)",
                     "bridgeApiInitEx Uninstaller 0 0 ü.log");
    }

    // The first session that starts, and the only one.
    static Session TheSession()
    {
        var session = new Session(Client.Helper);
        Check.CollectGarbage();
        Check.Equal("Helper", Check.Text(Check.fakeClient()));
        Check.Throws<InvalidOperationException>(() => new Session(Client.Launcher));
        Check.Throws<InvalidOperationException>(() => new Session(Client.Launcher, true, null));
        Check.Called("bridgeApiInit Helper");
        return session;
    }

    static void Reading(Configuration conf)
    {
        Check.Equal(false, conf.GetBool("vtr.enable_adb_access"));
        Check.Equal(-2147483647, conf.GetI32("vtr.next_vm_id"));
        Check.Equal("Größe 日本 😀", conf.GetString("vtr.locale"));
        Check.Equal("Bilder|Größe", string.Join("|", conf.GetMultiString("vtr.shared_folders")));
        Check.Throws<ArgumentNullException>(() => conf.GetString(null));
        Check.Throws<ArgumentException>(() => conf.GetString("a\0b"));
        Check.Called("bridgeConfGetBool vtr.enable_adb_access", "bridgeConfGetI32 vtr.next_vm_id",
                     "bridgeConfGetString vtr.locale", "bridgeConfGetMultiString vtr.shared_folders");
    }

    // An instance is looked up in the library once.
    static void ReadingAnInstance(Configuration conf)
    {
        Check.Equal("Größe 日本 😀", conf.GetString("vtr.instance.Nougat64.display_name"));
        Check.Equal(-2147483647, conf.GetI32(Dpi));
        Check.Called("bridgeConfGetI32 " + Dpi, "bridgeConfGetString vtr.instance.Nougat64.display_name",
                     "bridgeConfGetI32 " + Dpi);
    }

    static void ReadingByKeys(Configuration conf)
    {
        bool adb = conf.Get(Keys.Global.EnableAdbAccess);
        int dpi = conf.Get(Keys.Instance("Nougat64").Dpi);
        string locale = conf.Get(Keys.Global.Locale);
        string[] folders = conf.Get(Keys.Global.SharedFolders);
        Check.Equal("False -2147483647 Größe 日本 😀 Bilder|Größe",
                    string.Join(" ", adb, dpi, locale, string.Join("|", folders)));
        Check.Called("bridgeConfGetBool vtr.enable_adb_access", "bridgeConfGetI32 " + Dpi,
                     "bridgeConfGetString vtr.locale", "bridgeConfGetMultiString vtr.shared_folders");
        Check.Throws<ArgumentNullException>(() => conf.Get<bool>(null));
        Check.Throws<ArgumentNullException>(() => conf.Set(null, true));
    }

    static void Writing(Configuration conf)
    {
        conf.SetBool("vtr.enable_adb_access", true);
        conf.SetBool("vtr.enable_adb_access", false);
        conf.SetI32("vtr.next_vm_id", int.MinValue);
        conf.SetString("vtr.locale", "第二");
        conf.SetMultiString("vtr.shared_folders", "a", "ü");
        conf.SetMultiString("vtr.shared_folders");
        conf.Commit();
        conf.CommitToFile("C:\\ü.conf");
        Check.Throws<ArgumentException>(() => conf.SetMultiString("vtr.shared_folders", "a,b"));
        Check.Throws<ArgumentNullException>(() => conf.SetMultiString("vtr.shared_folders", "a", null));
        Check.Throws<ArgumentNullException>(() => conf.SetMultiString("vtr.shared_folders", null));
        Check.Throws<ArgumentNullException>(() => conf.SetString("vtr.locale", null));
        Check.Called("bridgeConfSetBool vtr.enable_adb_access 1", "bridgeConfSetBool vtr.enable_adb_access 0",
                     "bridgeConfSetI32 vtr.next_vm_id -2147483648", "bridgeConfSetString vtr.locale 第二",
                     "bridgeConfSetMultiString vtr.shared_folders a,ü", "bridgeConfSetMultiString vtr.shared_folders ",
                     "bridgeConfCommit", "bridgeConfCommitToFile C:\\ü.conf");
    }

    static void WritingByKeys(Configuration conf)
    {
        conf.Set(Keys.Global.EnableAdbAccess, true);
        conf.Set(Keys.Instance("Nougat64").Dpi, 320);
        conf.Set(Keys.Global.Locale, "de-DE");
        conf.Set(Keys.Global.SharedFolders, new[] { "a", "b" });
        Check.Called("bridgeConfSetBool vtr.enable_adb_access 1", "bridgeConfSetI32 " + Dpi + " 320",
                     "bridgeConfSetString vtr.locale de-DE", "bridgeConfSetMultiString vtr.shared_folders a,b");
    }

    static void FailingWrites(Configuration conf)
    {
        Check.fakeAnswer(7);
        Check.Fails("bridgeConfSetBool", 7, () => conf.SetBool("vtr.enable_adb_access", true));
        Check.Fails("bridgeConfSetI32", 7, () => conf.SetI32("vtr.next_vm_id", 1));
        Check.Fails("bridgeConfSetString", 7, () => conf.SetString("vtr.locale", ""));
        Check.Fails("bridgeConfSetMultiString", 7, () => conf.SetMultiString("vtr.shared_folders"));
        string end = "; the log " + data.Of("Logs", "Player.log") + " has the cause";
        Check.Throws<BridgeException>(
            "bridgeConfCommit failed with 7 (XERR_2BIG: too long) for " + data.ConfPath + end, conf.Commit);
        Check.Throws<BridgeException>("bridgeConfCommitToFile failed with 7 (XERR_2BIG: too long) for p" + end,
                                      () => conf.CommitToFile("p"));
        Check.fakeAnswer(0);
        Check.fakeReset();
    }

    static void WrongKeysAreRefusedBeforeTheLibraryIsAsked(Configuration conf)
    {
        Check.Throws<KeyException>("there is no key \"vtr.locael\"; did you mean \"vtr.locale\"?",
                                   () => conf.GetString("vtr.locael"));
        Check.Throws<KeyException>("there is no key \"vtr.locael\"; did you mean \"vtr.locale\"?",
                                   () => conf.SetString("vtr.locael", ""));
        Check.Throws<KeyException>("\"" + Dpi + "\" is an i32, not a bool", () => conf.GetBool(Dpi));
        Check.Throws<KeyException>("\"" + Dpi + "\" is an i32, not a bool", () => conf.SetBool(Dpi, true));
        Check.Throws<KeyException>("\"vtr.locale\" is a string, not a multi-string",
                                   () => conf.SetMultiString("vtr.locale", "a"));
        Check.Throws<KeyException>("\"" + Dpi + "\" is an i32, not an i64", () => conf.GetI64(Dpi));
        Check.Throws<KeyException>("\"" + Dpi + "\" is an i32, not an i64", () => conf.SetI64(Dpi, 1));
        Check.Called();
    }

    static void UnknownInstancesAreRefused(Configuration conf)
    {
        const string Wrong = "there is no instance \"nougat64\"; did you mean \"Nougat64\"?";
        Check.Throws<KeyException>(Wrong, () => conf.GetI32("vtr.instance.nougat64.dpi"));
        Check.Throws<KeyException>(Wrong, () => conf.SetI32("vtr.instance.nougat64.dpi", 1));
        Check.Throws<KeyException>(Wrong, () => conf.Set(Keys.Instance("nougat64").Dpi, 1));
        Check.Throws<KeyException>("there is no instance \"\"", () => conf.GetI32("vtr.instance..dpi"));
        Check.Called();
    }

    static void AnInstanceThatAnotherProgramCreatedIsKnown(Configuration conf)
    {
        data.Write(Dpi + "=\"240\"", "vtr.instance.Nougat64_7.dpi=\"240\"");
        conf.SetI32("vtr.instance.Nougat64_7.dpi", 1);
        Check.Called("bridgeConfSetI32 vtr.instance.Nougat64_7.dpi 1");
    }

    static void AnInstanceThatIsAddedIsKnown(Configuration conf)
    {
        Check.Throws<KeyException>("there is no instance \"Nougat32_new\"",
                                   () => conf.SetI32("vtr.instance.Nougat32_new.dpi", 1));
        conf.AddInstance("Nougat32_new");
        conf.SetI32("vtr.instance.Nougat32_new.dpi", 1);
        Check.Called("bridgeConfSetI32 vtr.instance.Nougat32_new.dpi 1");
    }

    static void ImpossibleInstancesAreNotAdded(Configuration conf)
    {
        Check.Throws<KeyException>("\"Pie64\" is not an image; there are Nougat32, Nougat64",
                                   () => conf.AddInstance("Pie64"));
        Check.Throws<KeyException>(
            "\"Pie64\" is not an image; there are Nougat32, Nougat64",
            () => conf.AddInstance("Pie64_1"));
        foreach (string name in new[] { "", "Nougat64_a.b", "Nougat64_a=b", "Nougat64_a\nb", "Nougat64_\0" })
            Check.Throws<KeyException>("\"" + name + "\" cannot be the name of an instance",
                                       () => conf.AddInstance(name));
        Check.Throws<ArgumentNullException>(() => conf.AddInstance(null));
        Check.Called();
    }

    static void ValuesThatCannotBeReadAreRefused(Session session)
    {
        Configuration conf = session.Conf;
        Check.Throws<KeyException>("\"vtr.status.raw_mode\" has no value and no default",
                                   () => conf.GetBool("vtr.status.raw_mode"));
        data.Write(Dpi + "=\"abc\"", "vtr.enable_adb_access=\"yes\"", "vtr.status.raw_mode=\"1\"",
                   "vtr.mute_all_instances=\"\"", "vtr.instance.Nougat64_7.dpi=\"240\"");
        Check.fakeSend(0);  // the library loads the file
        Check.Throws<KeyException>("\"" + Dpi + "\" has a value that cannot be read: \"abc\"",
                                   () => conf.GetI32(Dpi));
        Check.Throws<KeyException>("\"vtr.enable_adb_access\" has a value that cannot be read: \"yes\"",
                                   () => conf.GetBool("vtr.enable_adb_access"));
        Check.Throws<KeyException>("\"vtr.mute_all_instances\" has a value that cannot be read: \"\"",
                                   () => conf.GetBool("vtr.mute_all_instances"));
        Check.Called();
        AnEmptyCommitLoadsNothing(conf);
        conf.GetBool("vtr.status.raw_mode");
        conf.SetI32(Dpi, 7);  // staged, which a read sees
        conf.GetI32(Dpi);
        conf.SetBool("vtr.feature.macros", true);
        conf.Commit();
        conf.GetBool("vtr.feature.macros");
        conf.GetI32(Dpi);
        Check.Called("bridgeConfGetBool vtr.status.raw_mode", "bridgeConfSetI32 " + Dpi + " 7",
                     "bridgeConfGetI32 " + Dpi, "bridgeConfSetBool vtr.feature.macros 1", "bridgeConfCommit",
                     "bridgeConfGetBool vtr.feature.macros", "bridgeConfGetI32 " + Dpi);
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
        Check.Called("bridgeLaunchApp N ü", "bridgeLaunchAppStore N s p", "bridgeLaunchUrl N u", "bridgeInstallApk N f",
               "bridgeUninstallApp N p", "bridgeInstallImage I", "bridgeCreateFreshInstance I 2 2048 aga dx s21",
               "bridgePlrShutdown N 1", "bridgePlrShutdown N 0", "bridgeShutdown");
        Check.fakeAnswer(2);
        string[] files =
        {
            "C:\\QX\\QX-Player.exe", "C:\\QX\\QX-Player.exe", "C:\\QX\\QX-Player.exe", "f", "C:\\QX\\QX-Player.exe",
            "C:\\QX\\QX-MultiInstanceManager.exe", "C:\\QX\\QX-MultiInstanceManager.exe", null,
        };
        for (int i = 0; i < calls.Length; ++i)
            Check.Equal(files[i], Check.Throws<BridgeException>(calls[i]).File);
        Check.fakeAnswer(0);
        Check.fakeReset();
    }

    // Functions whose method has another name than theirs, or that have none.
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
        { "Bool", "vtr.enable_adb_access" }, { "I32", "vtr.next_vm_id" }, { "MultiString", "vtr.shared_folders" },
        { "String", "vtr.locale" },
    };

    // A value of a parameter's type: a text is its name, unless it is a key.
    static object ValueOf(ParameterInfo parameter)
    {
        if (parameter.IsOptional) return parameter.DefaultValue;
        if (parameter.Name == "key")
            return KeysOfMethods.First(one => parameter.Member.Name.EndsWith(one.Key)).Value;
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
        Check.Equal(function + " has a method", function + (method == null ? " has none: " + name : " has a method"));
        object[] values = Array.ConvertAll(method.GetParameters(), ValueOf);
        method.Invoke(target, values);
        Check.Called(string.Join(" ", new[] { function }.Concat(values.Where(one => one != null).Select(Shown))));
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
        Check.Equal(true, functions > Methods.Count);
    }

    static void Listings(Session session)
    {
        Check.Equal(true, session.InstancesJson().Contains("\"displayName\":\"Größe\""));
        Instance instance = session.Instances().Single();
        Check.Equal("Nougat64 Größe Nougat64 s21u aga dx 4096 4", string.Join(" ", instance.Name, instance.DisplayName,
            instance.ImageName, instance.DeviceProfile, instance.GraphicsEngine, instance.GraphicsRenderer,
            instance.Ram, instance.Cpu));
        Check.Called("bridgeConfGetInstances", "bridgeConfGetInstances");
        App app = session.Apps("ü").Single();
        Check.Equal("com.größe Main 第二 -5 1.0β a.png", string.Join(" ", app.Package, app.Activity, app.AppLabel,
                    app.VersionCode, app.VersionName, app.IconFilePath));
        Check.Equal("Größe", session.InstancesAsync().Result.Single().DisplayName);
        Check.Equal("第二", session.AppsAsync("ü").Result.Single().AppLabel);
        Check.Called("bridgeGetInstalledApps ü", "bridgeConfGetInstances", "bridgeGetInstalledApps ü");
        Check.Equal(true, session.AppsJson("ü").Contains("\"package\":\"com.größe\""));
        Check.Fails("bridgeGetInstalledApps", -1, () => session.AppsJson("null"));
        Check.Called("bridgeGetInstalledApps ü", "bridgeGetInstalledApps null");
    }

    // The library still has the value that cannot be read.
    static void AnEmptyCommitLoadsNothing(Configuration conf)
    {
        conf.Commit();
        data.Write(Dpi + "=\"240\"");
        conf.SetString("vtr.guid", "g");
        conf.SetString("vtr.guid", "");  // the default
        conf.Commit();
        Check.Throws<KeyException>("\"" + Dpi + "\" has a value that cannot be read: \"abc\"",
                                   () => conf.GetI32(Dpi));
        Check.Called("bridgeConfCommit", "bridgeConfSetString vtr.guid g", "bridgeConfSetString vtr.guid ",
                     "bridgeConfCommit");
    }

    static void ACommitThatCannotLoadKeepsWhatIsStaged(Configuration conf)
    {
        data.Write(Dpi + "=\"240\"");
        conf.SetString("vtr.country", "de");
        Check.fakeAnswer(-1);
        Check.Fails("bridgeConfCommit", -1, conf.Commit);
        Check.fakeAnswer(0);
        data.Write(Dpi + "=\"240\"", "vtr.prefer_dedicated_gpu=\"1\"");
        conf.Commit();
        conf.GetBool("vtr.prefer_dedicated_gpu");
        Check.fakeReset();
    }

    static void ListingsOfUnknownImagesAreRefused(Session session)
    {
        const string Wrong = "\"Pie64\" is not an image; there are Nougat32, Nougat64";
        data.Write(Dpi + "=\"240\"", "vtr.instance.Pie64_1.dpi=\"240\"");
        session.InstancesJson();
        Check.Called("bridgeConfGetInstances");
        Check.fakeSend(0);  // the library loads the file
        Check.Throws<KeyException>(Wrong, () => session.InstancesJson());
        Check.Throws<KeyException>(Wrong, () => session.Instances());
        Check.Throws<KeyException>(Wrong, () => GC.KeepAlive(session.InstancesAsync().Result));
        Check.Called();
        data.Write(Dpi + "=\"240\"");
        Check.fakeSend(0);
        session.Instances();
        Check.Called("bridgeConfGetInstances");
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
        session.ListenAsync().Wait();
        Check.Called();
        Check.CollectGarbage();
        Check.fakeSend(1);
        Check.Equal("Nougat64|com.größe|Main|第二 App|-5|1.0β|C:\\Ü.png|True\n" +
              "Nougat64|com.größe\nNougat64|-1|C:\\П.apk\nlist\nNougat32|1|True\n-2|Nougat64_1\nNougat64\n" +
              "failed: the host's own\nNougat64|😀\nNougat64|jürgen@example.com|2", string.Join("\n", seen));
        seen.Clear();
        Check.fakeSend(0);
        Check.Equal("||||0|||False\n|\n|0|\nlist\n|0|True\n0|\n\nfailed: the host's own\n|\n||0", string.Join("\n", seen));
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
        Check.fakeReset();
        Check.fakeSend(0);
        session.AccountListUpdated -= dispose;
        Check.Equal("InvalidOperationException", thrown);
        session.Conf.Commit();
        Check.Called("bridgeConfCommit");
    }

    // The end while another thread's events arrive.
    static void End(Session session)
    {
        Check.fakeReset();
        Action streamsAndWorkHaveEnded = EventTests.AtTheEnd(session);
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
        Check.Throws<ObjectDisposedException>(() => session.Conf.Commit());
        Check.Throws<InvalidOperationException>(() => new Session(Client.Helper));
        Check.Called("bridgeApiFini");
        Check.Equal(0, Check.fakeLiveTexts());
    }

    // Leaves a session that listens. The handler here runs after the binding's own.
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
        data = new DataFolder(Dpi + "=\"240\"");
        using (data)
        {
            machine = new FakeMachine(data.Path);
            if (arguments.Length > 0) return EndOfTheProcess();
            PureTests.Run();
            PreflightTests.Run();
            machine = new FakeMachine(data.Path);
            Initialisation();
            Play(TheSession());
        }
        Console.WriteLine(Check.Count + " checks");
        return 0;
    }

    static void Play(Session session)
    {
        Reading(session.Conf);
        ReadingAnInstance(session.Conf);
        ReadingByKeys(session.Conf);
        Writing(session.Conf);
        WritingByKeys(session.Conf);
        FailingWrites(session.Conf);
        WrongKeysAreRefusedBeforeTheLibraryIsAsked(session.Conf);
        UnknownInstancesAreRefused(session.Conf);
        AnInstanceThatAnotherProgramCreatedIsKnown(session.Conf);
        AnInstanceThatIsAddedIsKnown(session.Conf);
        ImpossibleInstancesAreNotAdded(session.Conf);
        Listings(session);
        EventTests.BeforeListening(session);
        Programs(session);
        EventTests.Listening(session, machine);
        EachFunctionByItsMethod(session);
        ValuesThatCannotBeReadAreRefused(session);
        ACommitThatCannotLoadKeepsWhatIsStaged(session.Conf);
        ListingsOfUnknownImagesAreRefused(session);
        EventTests.Run(session);
        Events(session);
        DisposeInHandler(session);
        End(session);
    }
}
