// A host of the C# binding with the real library, in .NET for Windows:
//     dotnet_host.dll LIBRARY DATA-FOLDER INSTALL-FOLDER SCENARIO [LOG]
// SCENARIO is a public method below. If it has a parameter, it gets a session that ends after it. The host
// prints a line for each outcome, which DotnetTest.cpp expects, and "finished".

using System;
using System.ComponentModel;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Threading;
using QXBridge;

static partial class DotnetHost
{
    // No other test serves this name at the same time.
    const Client Self = Client.Uninstaller;

    static readonly StreamWriter Output =
        new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true, NewLine = "\n" };
    static readonly TimeSpan Long = TimeSpan.FromSeconds(60); // the machine may be busy
    static readonly SemaphoreSlim Arrived = new SemaphoreSlim(0);

    static string dataFolder, installFolder, logFile;

    static void Say(params object[] words)
    {
        lock (Output) Output.WriteLine(string.Join(" ", words));
    }

    static void SayFields(string name, params object[] fields)
    {
        Say(name, string.Join("|", fields));
    }

    // The type and the details of the exception that a call throws.
    static string Refusal(Action call)
    {
        try
        {
            call();
            return "no refusal";
        }
        catch (OperationCanceledException)
        {
            return "cancelled";
        }
        catch (Exception exception)
        {
            return exception.GetType().Name + ": " + Details(exception);
        }
    }

    static string Details(Exception exception)
    {
        var failed = exception as BridgeException;
        if (failed != null) return failed.Operation + " " + failed.Code;
        var listening = exception as ListenException;
        if (listening != null) return listening.ProcessId + " " + listening.Message;
        var argument = exception as ArgumentNullException;
        if (argument != null) return argument.ParamName;
        var windows = exception as Win32Exception;
        if (windows != null) return windows.NativeErrorCode + " " + windows.Message.Replace(OwnId, "ID");
        return exception.Message;
    }

    static void CollectGarbage()
    {
        for (int n = 0; n < 1000; ++n) GC.KeepAlive(new byte[9 + n % 7]);
        GC.Collect();
        GC.WaitForPendingFinalizers();
    }

    static Session StartSession()
    {
        Sandbox.Use(dataFolder, installFolder);
        return new Session(Self);
    }

    static void Listen(Session session)
    {
        session.Listen(Long);
        Say("listening");
    }

    static void WaitForEvents(int count)
    {
        for (; count > 0; --count)
        {
            if (!Arrived.Wait(TimeSpan.FromSeconds(30))) Say("no event within 30 seconds");
        }
    }

    static void ListenFor(Session session, int events)
    {
        Listen(session);
        WaitForEvents(events);
    }

    // Listens until a handler has run a hundred times, and returns a function with the count.
    static Func<int> ListenForAHundred(Session session)
    {
        int count = 0;
        session.AppDisplayed += (instance, package) =>
        {
            if (Interlocked.Increment(ref count) == 100) Arrived.Release();
        };
        ListenFor(session, 1);
        return () => Volatile.Read(ref count);
    }

    static void SayDisplayedApps(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            SayFields("appDisplayed", instance, package);
            Arrived.Release();
        };
    }

    public static void Listings(Session session)
    {
        Say("instances", session.InstancesJson());
        Say("apps", session.AppsJson("Nougat64"));
        Say("no apps", session.AppsJson("Nougat32"));
        Say(Refusal(() => session.AppsJson("Broken")));
    }

    static void SayValues(Configuration conf)
    {
        Say("name", conf.GetString("vtr.instance.Nougat64.display_name"));
        Say("dpi", conf.GetI32("vtr.instance.Nougat64.dpi"));
        Say("adb", conf.GetBool("vtr.enable_adb_access"));
        Say("folders", string.Join("|", conf.GetMultiString("vtr.shared_folders")));
    }

    public static void Settings(Session session)
    {
        Configuration conf = session.Conf;
        SayValues(conf);
        conf.SetString("vtr.instance.Nougat64.display_name", "\"Ünï\" \\ 第二 😀");
        conf.SetI32("vtr.instance.Nougat64.dpi", int.MinValue);
        conf.SetBool("vtr.enable_adb_access", true);
        conf.SetMultiString("vtr.shared_folders", "Bilder", "Größe");
        SayValues(conf);
        conf.Commit();
        Say("committed");
    }

    public static void FailingCommits(Session session)
    {
        Configuration conf = session.Conf;
        conf.SetString("vtr.locale", "two\nlines");
        Say(Refusal(conf.Commit));
        conf.SetString("vtr.locale", new string('x', 5000));
        Say(Refusal(conf.Commit));
        conf.SetString("vtr.locale", "de-DE");
        Say(Refusal(() => conf.CommitToFile(dataFolder + @"\vantrel.conf\x")));
        conf.CommitToFile(dataFolder + @"\Größe.conf");
        Say("committed");
    }

    public static void AllNineEvents(Session session)
    {
        session.AppInstalled += app => SayFields("appInstalled", app.Instance, app.Package, app.Activity,
            app.AppLabel, app.VersionCode, app.VersionName, app.IconFilePath, app.IsUpdate ? 1 : 0);
        session.AppUninstalled += (instance, package) => SayFields("appUninstalled", instance, package);
        session.ApkInstallCompleted += (instance, status, file) =>
            SayFields("apkInstallCompleted", instance, status, file);
        session.InstanceListUpdated += () => Say("instanceListUpdated");
        session.InstallImageProgress += (image, status, progress) => SayFields("installImageProgress",
            image, status, progress.ToString("F3", System.Globalization.CultureInfo.InvariantCulture));
        session.CreateInstanceCompleted += (status, instance) =>
            SayFields("createInstanceCompleted", status, instance);
        session.InstanceConfigurationChanged += instance => Say("instanceConfigurationChanged", instance);
        session.AppDisplayed += (instance, package) => SayFields("appDisplayed", instance, package);
        session.AccountListUpdated += (instance, email, action) =>
            SayFields("accountListUpdated", instance, email, action);
        session.AccountListUpdated += (instance, email, action) => Arrived.Release();
        ListenFor(session, 1);
    }

    public static void ThrowingHandler(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            if (package == "p1") throw new InvalidOperationException("the host's own");
        };
        session.AppDisplayed += (instance, package) =>
        {
            Say("next handler", package);
            Arrived.Release();
        };
        session.HandlerFailed += exception => Say("failed:", exception.Message);
        session.HandlerFailed += exception => { throw exception; };
        ListenFor(session, 2);
    }

    // Every fiftieth handler waits for a garbage collection; another one runs during the next events.
    public static void Collections(Session session)
    {
        const int Events = 1000;
        var collected = new SemaphoreSlim(0);
        int inOrder = 0;
        session.AppDisplayed += (instance, package) =>
        {
            if (package == "p" + (inOrder + 1)) ++inOrder;
            if (inOrder % 50 != 0) return;
            Arrived.Release();
            collected.Wait();
        };
        CollectGarbage();
        Listen(session);
        for (int i = 0; i < Events / 50; ++i)
        {
            WaitForEvents(1);
            CollectGarbage();
            collected.Release();
            CollectGarbage();
        }
        Say("in order", inOrder);
    }

    public static void EndAmongEvents(Session session)
    {
        Func<int> count = ListenForAHundred(session);
        session.Dispose();
        int last = count();
        for (int i = 0; i < 20; ++i) CollectGarbage();
        Say(count() == last ? "silent since the end" : "called after the end");
    }

    public static void Programs(Session session)
    {
        SayDisplayedApps(session);
        Listen(session);
        session.LaunchApp("DotnetTest", "com.größe");
        WaitForEvents(1);
        session.ShutdownPlayer("DotnetTest", true);
    }

    public static void MissingProgram(Session session)
    {
        Say(Refusal(() => session.LaunchApp("Nougat64", "p")));
    }

    public static void ExitInHandler(Session session)
    {
        session.AppDisplayed += (instance, package) => Environment.Exit(3);
        Listen(session);
        Thread.Sleep(Timeout.Infinite);
    }

    public static void ExitInHandlerDuringDispose(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            Arrived.Release();
            while (IsLive(session)) Thread.Yield();
            Environment.Exit(3);
        };
        ListenFor(session, 1);
        session.Dispose();
    }

    static bool IsLive(Session session)
    {
        return !Refusal(() => session.InstancesJson()).StartsWith("ObjectDisposedException");
    }

    // Leaves a handler that never returns, and a session that is not disposed of.
    public static void StuckHandler()
    {
        Session session = StartSession();
        session.AppDisplayed += (instance, package) =>
        {
            Arrived.Release();
            Thread.Sleep(Timeout.Infinite);
        };
        ListenFor(session, 1);
    }

    public static void MainEndsAmongEvents()
    {
        ListenForAHundred(StartSession());
    }

    public static void SecondSession(Session session)
    {
        SayDisplayedApps(session);
        session.Listen(Long);
        string refusal = Refusal(() => new Session(Self));
        ListenFor(session, 1);
        Say("while it runs:", refusal);
        session.Dispose();
        Say("after its end:", Refusal(() => new Session(Self)));
    }

    public static void DisposeInHandler(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            Say("handler", package);
            session.Dispose();
        };
        session.HandlerFailed += exception =>
        {
            Say("failed:", exception.Message);
            Arrived.Release();
        };
        ListenFor(session, 2);
        Say("adb", session.Conf.GetBool("vtr.enable_adb_access"));
    }

    public static void SecondListener(Session session)
    {
        Say(Refusal(() => session.Listen(Long)));
    }

    public static void WrongKeys(Session session)
    {
        Configuration conf = session.Conf;
        session.AppDisplayed += (instance, package) =>
        {
            Say("handler:", Refusal(() => conf.GetString("vtr.no_such_key")));
            Arrived.Release();
        };
        ListenFor(session, 1);
        Say(Refusal(() => conf.GetString("vtr.no_such_key")));
        Say(Refusal(() => conf.GetI32("vtr.locale")));
        Say(Refusal(() => conf.GetI64("vtr.locale")));
        Say(Refusal(() => conf.SetI64("vtr.locale", 1L << 40)));
        Say("adb", conf.GetBool("vtr.enable_adb_access"));
    }

    public static void FatalLaunch(Session session)
    {
        session.LaunchApp("N", "p");
        Say("still here");
    }

    public static void FatalLaunchInHandler(Session session)
    {
        session.AppDisplayed += (instance, package) => session.LaunchApp("N", "p");
        ListenFor(session, 1);
        Say("still here");
    }

    public static void OwnLog()
    {
        Sandbox.Use(dataFolder, installFolder);
        using (var session = new Session(Self, true, logFile)) Say("instances", session.InstancesJson());
    }

    static void Play(MethodInfo scenario)
    {
        if (scenario.GetParameters().Length == 0)
        {
            ((Action)scenario.CreateDelegate(typeof(Action)))();
            return;
        }
        var play = (Action<Session>)scenario.CreateDelegate(typeof(Action<Session>));
        using (Session session = StartSession()) play(session);
    }

    static int Main(string[] arguments)
    {
        try
        {
            Session.Load(arguments[0]);
            dataFolder = arguments[1];
            installFolder = arguments[2];
            logFile = arguments.ElementAtOrDefault(4);
            Play(typeof(DotnetHost).GetMethod(arguments[3]));
        }
        catch (Exception exception)
        {
            Say(exception.GetType().Name + ":", exception.Message);
            return 1;
        }
        Say("finished");
        return 0;
    }
}
