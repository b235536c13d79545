// A host of the C# binding over the real library, in .NET for Windows:
//     dotnet_host.dll LIBRARY DATA-FOLDER INSTALL-FOLDER SCENARIO [ARGUMENT]
// It prints what it meets, a line each. DotnetTest.cpp says what that has to be.

using System;
using System.Collections.Generic;
using System.IO;
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

    static void Say(params object[] words)
    {
        lock (Output) Output.WriteLine(string.Join(" ", words));
    }

    static void SayFields(string name, params object[] fields)
    {
        Say(name, string.Join("|", fields));
    }

    static void SayFailure(Action call)
    {
        try
        {
            call();
            Say("no failure");
        }
        catch (BridgeException exception)
        {
            Say(exception.Operation, exception.Code);
        }
    }

    static void CollectGarbage()
    {
        for (int n = 0; n < 1000; ++n) GC.KeepAlive(new byte[9 + n % 7]);
        GC.Collect();
        GC.WaitForPendingFinalizers();
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

    static void Listings(Session session)
    {
        Say("instances", session.InstancesJson());
        Say("apps", session.AppsJson("Nougat64"));
        Say("no apps", session.AppsJson("Nougat32"));
        SayFailure(() => session.AppsJson("Broken"));
    }

    static void SayValues(Configuration conf)
    {
        Say("name", conf.GetString("vtr.instance.Nougat64.display_name"));
        Say("dpi", conf.GetI32("vtr.instance.Nougat64.dpi"));
        Say("adb", conf.GetBool("vtr.enable_adb_access"));
        Say("folders", string.Join("|", conf.GetMultiString("vtr.shared_folders")));
    }

    static void Settings(Configuration conf)
    {
        SayValues(conf);
        conf.SetString("vtr.instance.Nougat64.display_name", "\"Ünï\" \\ 第二 😀");
        conf.SetI32("vtr.instance.Nougat64.dpi", int.MinValue);
        conf.SetBool("vtr.enable_adb_access", true);
        conf.SetMultiString("vtr.shared_folders", "Bilder", "Größe");
        SayValues(conf);
        conf.Commit();
        Say("committed");
    }

    static void FailingCommits(Configuration conf, string dataFolder)
    {
        conf.SetString("vtr.locale", "two\nlines");
        SayFailure(conf.Commit);
        conf.SetString("vtr.locale", new string('x', 5000));
        SayFailure(conf.Commit);
        conf.SetString("vtr.locale", "de-DE");
        SayFailure(() => conf.CommitToFile(dataFolder + @"\vantrel.conf\x"));
        conf.CommitToFile(dataFolder + @"\Größe.conf");
        Say("committed");
    }

    static void AllNineEvents(Session session)
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
        Listen(session);
        WaitForEvents(1);
    }

    static void ThrowingHandler(Session session)
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
        Listen(session);
        WaitForEvents(2);
    }

    // Every fiftieth handler waits for a collection. Another one runs beside the events that follow.
    static void Collections(Session session, int events)
    {
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
        for (int i = 0; i < events / 50; ++i)
        {
            WaitForEvents(1);
            CollectGarbage();
            collected.Release();
            CollectGarbage();
        }
        Say("in order", inOrder);
    }

    static void EndAmongEvents(Session session)
    {
        int count = 0;
        session.AppDisplayed += (instance, package) =>
        {
            if (Interlocked.Increment(ref count) == 100) Arrived.Release();
        };
        Listen(session);
        WaitForEvents(1);
        session.Dispose();
        int last = Volatile.Read(ref count);
        for (int i = 0; i < 20; ++i) CollectGarbage();
        Say(Volatile.Read(ref count) == last ? "silent since the end" : "called after the end");
    }

    static void Programs(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            SayFields("appDisplayed", instance, package);
            Arrived.Release();
        };
        Listen(session);
        session.LaunchApp("DotnetTest", "com.größe");
        WaitForEvents(1);
        session.ShutdownPlayer("DotnetTest", true);
    }

    static void ExitInHandler(Session session)
    {
        session.AppDisplayed += (instance, package) => Environment.Exit(3);
        Listen(session);
        Thread.Sleep(Timeout.Infinite);
    }

    static void ExitInHandlerDuringDispose(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            Arrived.Release();
            while (SessionLives(session)) Thread.Yield();
            Environment.Exit(3);
        };
        Listen(session);
        WaitForEvents(1);
        session.Dispose();
    }

    static bool SessionLives(Session session)
    {
        try
        {
            session.InstancesJson();
            return true;
        }
        catch (ObjectDisposedException)
        {
            return false;
        }
    }

    // Leaves a handler that never returns.
    static void StuckHandler(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            Arrived.Release();
            Thread.Sleep(Timeout.Infinite);
        };
        Listen(session);
        WaitForEvents(1);
    }

    // Leaves while one event follows the other.
    static void AmongEvents(Session session)
    {
        int count = 0;
        session.AppDisplayed += (instance, package) =>
        {
            if (Interlocked.Increment(ref count) == 100) Arrived.Release();
        };
        Listen(session);
        WaitForEvents(1);
    }

    static void SecondSession(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            SayFields("appDisplayed", instance, package);
            Arrived.Release();
        };
        session.Listen(Long);
        string refusal = RefusalOfASession();
        Listen(session);
        WaitForEvents(1);
        Say("while it runs:", refusal);
        session.Dispose();
        Say("after its end:", RefusalOfASession());
    }

    static string RefusalOfASession()
    {
        try
        {
            new Session(Self);
            return "no refusal";
        }
        catch (InvalidOperationException exception)
        {
            return exception.Message;
        }
    }

    static void DisposeInHandler(Session session)
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
        Listen(session);
        WaitForEvents(2);
        Say("adb", session.Conf.GetBool("vtr.enable_adb_access"));
    }

    static void LaunchInAHandler(Session session)
    {
        session.AppDisplayed += (instance, package) => session.LaunchApp("N", "p");
        Listen(session);
        WaitForEvents(1);
    }

    static string RefusalOf(Action call)
    {
        try
        {
            call();
            return "no refusal";
        }
        catch (KeyException exception)
        {
            return exception.Message;
        }
    }

    static void SecondListener(Session session)
    {
        try
        {
            session.Listen(Long);
        }
        catch (ListenException exception)
        {
            Say(exception.ProcessId, exception.Message);
        }
    }

    static void WrongKeys(Session session)
    {
        session.AppDisplayed += (instance, package) =>
        {
            Say("handler:", RefusalOf(() => session.Conf.GetString("vtr.no_such_key")));
            Arrived.Release();
        };
        Listen(session);
        WaitForEvents(1);
        Say(RefusalOf(() => session.Conf.GetString("vtr.no_such_key")));
        Say(RefusalOf(() => session.Conf.GetI32("vtr.locale")));
        Say(RefusalOf(() => session.Conf.GetI64("vtr.locale")));
        Say(RefusalOf(() => session.Conf.SetI64("vtr.locale", 1L << 40)));
        Say("adb", session.Conf.GetBool("vtr.enable_adb_access"));
    }

    static void Fatal(Session session, string kind)
    {
        var kinds = new Dictionary<string, Action>
        {
            { "no install folder", () => session.LaunchApp("N", "p") },
            { "in a handler", () => LaunchInAHandler(session) },
        };
        kinds[kind]();
        Say("still here");
    }

    static void OwnLog(string logFile)
    {
        using (var session = new Session(Self, true, logFile)) Say("instances", session.InstancesJson());
    }

    static void Play(Session session, string dataFolder, string scenario, string argument)
    {
        switch (scenario)
        {
            case "listings": Listings(session); break;
            case "settings": Settings(session.Conf); break;
            case "failing commits": FailingCommits(session.Conf, dataFolder); break;
            case "nine events": AllNineEvents(session); break;
            case "throwing handler": ThrowingHandler(session); break;
            case "collections": Collections(session, int.Parse(argument)); break;
            case "end among events": EndAmongEvents(session); break;
            case "second session": SecondSession(session); break;
            case "dispose in handler": DisposeInHandler(session); break;
            case "programs": Programs(session); break;
            case "no program": SayFailure(() => session.LaunchApp("Nougat64", "p")); break;
            case "second listener": SecondListener(session); break;
            case "wrong keys": WrongKeys(session); break;
            case "commit inside": CommitInside(session); break;
            case "end during a commit": EndDuringACommit(session); break;
            case "awaiting": AwaitingAndEnding(session); break;
            case "fatal": Fatal(session, argument); break;
            case "exit in handler": ExitInHandler(session); break;
            case "exit in handler during dispose": ExitInHandlerDuringDispose(session); break;
            default: Say("no such scenario", scenario); break;
        }
    }

    // Those that do not end their session.
    static bool PlayWithoutEnd(string scenario)
    {
        var scenarios = new Dictionary<string, Action<Session>>
        {
            { "stuck handler", StuckHandler },
            { "among events", AmongEvents },
        };
        Action<Session> play;
        if (!scenarios.TryGetValue(scenario, out play)) return false;
        play(new Session(Self));
        return true;
    }

    static void Run(string dataFolder, string scenario, string argument)
    {
        if (PlayWithoutEnd(scenario)) return;
        if (scenario == "own log")
        {
            OwnLog(argument);
            return;
        }
        using (var session = new Session(Self)) Play(session, dataFolder, scenario, argument);
    }

    static int Main(string[] arguments)
    {
        try
        {
            Session.Load(arguments[0]);
            if (!PlayFolders(arguments[3], arguments[1], arguments[2]))
            {
                Sandbox.Use(arguments[1], arguments[2]);
                Run(arguments[1], arguments[3], arguments.Length > 4 ? arguments[4] : "");
            }
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
