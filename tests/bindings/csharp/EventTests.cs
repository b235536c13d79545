// Listening, handlers, streams and work with an outcome, with the stand-in of the library.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;
using QXBridge;

class ListeningTests : SessionTests
{
    public static void WorkHasNoOutcomeBeforeListening()
    {
        Work<AppDisplayed> work = session.LaunchApp("Nougat64", "p");
        Check.Throws<InvalidOperationException>("call Listen() first: without it no event reports the outcome",
                                                () => work.FinishedAsync());
        Check.Equal(1, session.WaitingCount);
        Check.fakeAnswer(2);
        Check.Fails("bridgeLaunchApp", 2, () => session.LaunchApp("Nougat64", "p"));
        Check.fakeAnswer(0);
        Check.Equal(1, session.WaitingCount);
        Check.Called("bridgeLaunchApp Nougat64 p", "bridgeLaunchApp Nougat64 p");
    }

    // Listening fails with the server's process and this message, after a wait of `limit` seconds.
    static void Fails(PipeServer server, string message, double limit, Action listen)
    {
        machine.Server = server;
        ListenException refused = Check.Throws<ListenException>(listen);
        Check.Equal(server.ProcessId + " " + message, refused.ProcessId + " " + refused.Message);
        Check.Equal(limit, machine.Limit.TotalSeconds);
    }

    public static void ListeningFails()
    {
        Fails(new PipeServer { ProcessId = 1234 }, "process 1234 has the events of client \"Helper\"", 10,
              () => session.Listen());
        Check.Equal(@"\\.\pipe\vtr_Helper_bridge_nvo", machine.Pipe);
        Check.Throws<InvalidOperationException>(() => session.LaunchApp("Nougat64", "p").FinishedAsync());
        Check.Called("bridgeRegisterCallbacks", "bridgeLaunchApp Nougat64 p");
        var missing = new PipeServer { Error = 2 };
        string nobody = "no process has the events of client \"Helper\"; the log " + data.LogPath + " has the cause";
        Fails(missing, nobody, 3, () => session.Listen(TimeSpan.FromSeconds(3)));
        Fails(missing, nobody, 10, () => session.ListenAsync().Wait());
        Fails(missing, nobody, 4, () => session.ListenAsync(CancellationToken.None, TimeSpan.FromSeconds(4)).Wait());
        Fails(new PipeServer { Error = 5 },
              "another process has the events of client \"Helper\", and its id cannot be read (Windows error 5)", 10,
              () => session.Listen());
        Check.Throws<TaskCanceledException>(() => session.ListenAsync(new CancellationToken(true)).Wait());
        Check.Called();
    }

    public static void ListeningSucceedsOnce()
    {
        machine.Server = new PipeServer { ProcessId = machine.OwnProcessId };
        session.ListenAsync().Wait();
        machine.Pipe = null;
        session.Listen();
        Check.Equal(null, machine.Pipe);
        Check.Called();
    }
}

class EventTests : SessionTests
{
    static readonly TimeSpan Short = TimeSpan.FromMilliseconds(20);

    // The events of fakeSend(1).
    static readonly string[] AllNine =
    {
        "AppInstalled Nougat64|com.größe|Main|第二 App|-5|1.0β|C:\\Ü.png|True",
        "AppUninstalled Nougat64|com.größe", "ApkInstallCompleted Nougat64|-1|C:\\П.apk",
        "InstanceListUpdated ",
        "InstallImageProgress Nougat32|1|33.125", "CreateInstanceCompleted -2|Nougat64_1",
        "InstanceConfigurationChanged Nougat64", "AppDisplayed Nougat64|😀",
        "AccountListUpdated Nougat64|jürgen@example.com|2",
    };

    static string Shown(BridgeEvent one)
    {
        if (one == null) return "end";
        return one.Kind + " " + string.Join("|", one.Values.Select(
            value => Convert.ToString(value, CultureInfo.InvariantCulture)));
    }

    static string Read(EventStream stream, int count)
    {
        return string.Join("\n", Enumerable.Range(0, count).Select(i => Shown(stream.ReadAsync().Result)));
    }

    // The stream holds these events and no others.
    static void Holds(EventStream stream, params string[] expected)
    {
        Check.Equal(string.Join("\n", expected), Read(stream, expected.Length));
        Check.Equal(false, stream.ReadAsync().IsCompleted);
    }

    static void StillRuns(Func<TimeSpan, Task> finished)
    {
        Check.Throws<TimeoutException>(() => finished(Short).Wait());
    }

    // The exception of a call inside a handler.
    static string ThrownInAHandler(Action call)
    {
        Exception thrown = null;
        AppHandler handler = (instance, package) => thrown = Check.ThrownBy(call);
        session.AppDisplayed += handler;
        Check.fakeSend(1);
        session.AppDisplayed -= handler;
        return thrown.GetType().Name + ": " + thrown.Message;
    }

    public static void AStreamHasTheEventsInOrder()
    {
        int before = session.WaitingCount;
        using (EventStream stream = session.Events())
        {
            Check.fakeSend(1);
            Holds(stream, AllNine);
            Check.Equal(before + 1, session.WaitingCount);
        }
        Check.Equal(before, session.WaitingCount);
    }

    public static void AStreamOfKinds()
    {
        using (EventStream stream = session.Events(EventKind.AppDisplayed, EventKind.AppUninstalled))
        {
            Check.fakeSend(1);
            Holds(stream, AllNine[1], AllNine[7]);
        }
        Check.Throws<ArgumentNullException>(() => session.Events(null));
        Check.Throws<ArgumentOutOfRangeException>(() => session.Events(0));
    }

    public static void AReaderWaitsForTheNextEvent()
    {
        using (EventStream stream = session.Events(EventKind.AppInstalled, EventKind.AppDisplayed))
        {
            Task<BridgeEvent> first = stream.ReadAsync(), second = stream.ReadAsync();
            Check.fakeSend(1);
            Check.Equal(AllNine[0] + "\n" + AllNine[7], Shown(first.Result) + "\n" + Shown(second.Result));
        }
    }

    public static void ACancelledReaderLosesNoEvent()
    {
        using (EventStream stream = session.Events(EventKind.AppDisplayed))
        using (var cancellation = new CancellationTokenSource())
        {
            Task<BridgeEvent> reader = stream.ReadAsync(cancellation.Token);
            cancellation.Cancel();
            Check.Throws<TaskCanceledException>(() => reader.Wait());
            Check.Throws<TaskCanceledException>(() => stream.ReadAsync(cancellation.Token).Wait());
            Check.fakeSend(1);
            Check.Equal(AllNine[7], Read(stream, 1));
        }
    }

    public static void AStreamThatIsFullEnds()
    {
        int before = session.WaitingCount;
        EventStream stream = session.Events(2);
        Check.fakeSend(1);
        Check.Equal(before, session.WaitingCount);
        Check.Equal(AllNine[0] + "\n" + AllNine[1], Read(stream, 2));
        for (int i = 0; i < 2; ++i)
            Check.Equal(2, Check.Throws<EventOverflowException>(() => stream.ReadAsync().Wait()).Limit);
        using (EventStream exact = session.Events(9))
        {
            Check.fakeSend(1);
            Holds(exact, AllNine);
        }
    }

    public static void AStreamThatIsDisposedEnds()
    {
        EventStream stream = session.Events(EventKind.AppDisplayed);
        Check.fakeSend(1);
        stream.Dispose();
        Check.fakeSend(1);
        Check.Equal(AllNine[7] + "\nend\nend", Read(stream, 3));
        EventStream waiting = session.Events();
        Task<BridgeEvent> reader = waiting.ReadAsync();
        waiting.Dispose();
        Check.Equal("end", Shown(reader.Result));
    }

    public static void ListenInAHandlerIsRefused()
    {
        Check.Equal("InvalidOperationException: Listen() must not be called inside a handler",
                    ThrownInAHandler(() => session.Listen()));
    }

    public static void DisposeInAHandlerIsRefusedAndTheSessionGoesOn()
    {
        Check.Equal("InvalidOperationException: Dispose() must not be called inside a handler",
                    ThrownInAHandler(session.Dispose));
        Check.fakeReset();
        conf.Commit();
        Check.Called("bridgeConfCommit");
    }

    public static void WorkEndsWithItsEvent()
    {
        int before = session.WaitingCount;
        Work<AppDisplayed> launch = session.LaunchApp("Nougat64", "😀");
        Work<AppDisplayed> twin = session.LaunchApp("Nougat64", "😀");
        Work<AppUninstalled> removal = session.UninstallApp("Nougat64", "com.größe");
        Work<ApkInstallCompleted> apk = session.InstallApk("Nougat64", "C:\\П.apk");
        Task<AppDisplayed> waiting = launch.FinishedAsync();
        Check.Throws<TimeoutException>("AppDisplayed did not arrive within 00:00:00.0200000",
                                       () => launch.FinishedAsync(Short).Wait());
        var cancellation = new CancellationTokenSource();
        Task<AppDisplayed> cancelled = launch.FinishedAsync(Timeout.InfiniteTimeSpan, cancellation.Token);
        cancellation.Cancel();
        Check.Equal(true, Check.ThrownBy(() => cancelled.GetAwaiter().GetResult()) is OperationCanceledException);
        Check.fakeSend(1);
        Check.Equal("AppDisplayed Nougat64|😀", Shown(waiting.Result));
        StillRuns(twin.FinishedAsync);
        Check.fakeSend(1);
        Check.Equal("AppDisplayed Nougat64|😀", Shown(twin.FinishedAsync().Result));
        Check.Equal(AllNine[1], Shown(removal.FinishedAsync().Result));
        Check.Equal(-1, apk.FinishedAsync().Result.Status);
        Check.Equal(before, session.WaitingCount);
    }

    public static void WorkOfAnotherKindStillRuns()
    {
        Func<TimeSpan, Task>[] others =
        {
            session.LaunchApp("Nougat64", "p").FinishedAsync,
            session.LaunchApp("Nougat32", "😀").FinishedAsync,
            session.UninstallApp("Nougat64", "p").FinishedAsync,
            session.InstallApk("N", "C:\\П.apk").FinishedAsync,
            session.InstallApk("Nougat64", "C:\\p.apk").FinishedAsync,
            session.InstallImage("Nougat64").FinishedAsync,
        };
        Check.fakeSend(1);
        foreach (Func<TimeSpan, Task> finished in others) StillRuns(finished);
    }

    public static void InstancesAreCreatedInTheOrderOfTheCalls()
    {
        Work<CreateInstanceCompleted>[] works = Enumerable.Range(1, 3).Select(
            i => session.CreateFreshInstance("Nougat64", i, 1024, "e", "r", "p")).ToArray();
        for (int i = 0; i < 3; ++i)
        {
            StillRuns(works[i].FinishedAsync);
            Check.fakeSend(1);
            Check.Equal("CreateInstanceCompleted -2|Nougat64_1", Shown(works[i].FinishedAsync().Result));
        }
    }

    public static void ProgressOfAnImage()
    {
        var seen = new List<string>();
        Action<Exception> failed = exception => seen.Add(exception.Message);
        session.HandlerFailed += failed;
        Work<InstallImageProgress> work = session.InstallImage("Nougat32", one =>
        {
            seen.Add(Shown(one));
            if (seen.Count == 1) throw new InvalidOperationException("the function's own");
        });
        Check.fakeSend(1);
        session.HandlerFailed -= failed;
        Check.Equal(AllNine[4] + "\nthe function's own", string.Join("\n", seen));
        StillRuns(work.FinishedAsync);
    }

    public static void ACancelledTokenPreventsTheCall()
    {
        Check.fakeReset();
        var cancelled = new CancellationToken(true);
        Check.Throws<TaskCanceledException>(() => conf.CommitAsync(cancelled).Wait());
        Check.Called();
        conf.CommitAsync().Wait();
        conf.CommitToFileAsync("p").Wait();
        Check.Called("bridgeConfCommit", "bridgeConfCommitToFile p");
    }

    public static void HandlersGetTheirValuesAndOneThatThrowsStopsNoOther()
    {
        Check.fakeReset();
        var seen = new List<string>();
        session.AppInstalled += app => seen.Add(string.Join("|", app.Instance, app.Package, app.Activity,
            app.AppLabel, app.VersionCode, app.VersionName, app.IconFilePath, app.IsUpdate));
        session.AppUninstalled += (instance, package) => seen.Add(instance + "|" + package);
        session.ApkInstallCompleted += (instance, status, file) =>
            seen.Add(instance + "|" + status + "|" + file);
        session.InstanceListUpdated += () => seen.Add("list");
        session.InstallImageProgress += (image, status, progress) =>
            seen.Add(image + "|" + status + "|" + (progress == 33.125 || progress == 0));
        session.CreateInstanceCompleted += (status, instance) => seen.Add(status + "|" + instance);
        session.InstanceConfigurationChanged += instance => seen.Add(instance);
        session.AppDisplayed += (instance, package) =>
            { throw new InvalidOperationException("the host's own"); };
        session.AppDisplayed += (instance, package) => seen.Add(instance + "|" + package);
        session.AccountListUpdated += (instance, email, action) =>
            seen.Add(instance + "|" + email + "|" + action);
        session.HandlerFailed += exception => seen.Add("failed: " + exception.Message);
        session.HandlerFailed += exception => { throw exception; };
        session.Listen();  // again, which changes nothing
        session.ListenAsync().Wait();
        Check.Called();
        Check.CollectGarbage();
        Check.fakeSend(1);
        Check.Equal("Nougat64|com.größe|Main|第二 App|-5|1.0β|C:\\Ü.png|True\n" +
              "Nougat64|com.größe\nNougat64|-1|C:\\П.apk\nlist\nNougat32|1|True\n-2|Nougat64_1\nNougat64\n" +
              "failed: the host's own\nNougat64|😀\nNougat64|jürgen@example.com|2", string.Join("\n", seen));
        seen.Clear();
        Check.fakeSend(0);
        Check.Equal("||||0|||False\n|\n|0|\nlist\n|0|True\n0|\n\nfailed: the host's own\n|\n||0",
            string.Join("\n", seen));
    }

    // Starts a stream and work, and returns the checks after the end of the session.
    internal static Action AtTheEnd()
    {
        EventStream stream = session.Events();
        Task<BridgeEvent> reader = stream.ReadAsync();
        Task<AppUninstalled> work = session.UninstallApp("Nougat64", "never").FinishedAsync();
        Check.Called("bridgeUninstallApp Nougat64 never");
        return () =>
        {
            GC.KeepAlive(reader.Result);
            Check.Equal(0, session.WaitingCount);
            while (stream.ReadAsync().Result != null) { }
            Check.Throws<ObjectDisposedException>(() => work.Wait());
            Check.Throws<ObjectDisposedException>(() => session.Events());
            Check.Throws<ObjectDisposedException>(() => session.Listen());
            Check.Throws<ObjectDisposedException>(() => session.LaunchApp("Nougat64", "p"));
        };
    }
}
