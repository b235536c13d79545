// Listening, streams and work with an outcome, over the library's stand-in.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;
using QXBridge;

static class EventTests
{
    static readonly TimeSpan Short = TimeSpan.FromMilliseconds(20);

    // What fakeSend(1) sends.
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

    internal static void BeforeListening(Session session)
    {
        Work<AppDisplayed> work = session.LaunchApp("Nougat64", "p");
        Check.Throws<InvalidOperationException>("Listen() comes first: no event says how the work ends",
                                                () => work.FinishedAsync());
        Check.Equal(1, session.WaitingCount);
        Check.fakeAnswer(2);
        Check.Fails("bridgeLaunchApp", 2, () => session.LaunchApp("Nougat64", "p"));
        Check.fakeAnswer(0);
        Check.Equal(1, session.WaitingCount);
        Check.Called("bridgeLaunchApp Nougat64 p", "bridgeLaunchApp Nougat64 p");
    }

    internal static void Listening(Session session, FakeMachine machine)
    {
        string logPath = System.IO.Path.Combine(machine.Registry["UserDefinedDir"], "Logs", "Player.log");
        machine.Server = new PipeServer { ProcessId = 1234 };
        ListenException refused = Check.Throws<ListenException>(() => session.Listen());
        Check.Equal("process 1234 has the events of client \"Helper\"", refused.Message);
        Check.Equal(1234, refused.ProcessId);
        Check.Equal(@"\\.\pipe\vtr_Helper_bridge_nvo 10", machine.Pipe + " " + machine.Limit.TotalSeconds);
        Check.Throws<InvalidOperationException>(() => session.LaunchApp("Nougat64", "p").FinishedAsync());
        Check.Called("bridgeRegisterCallbacks", "bridgeLaunchApp Nougat64 p");
        machine.Server = new PipeServer { Error = 2 };
        Check.Throws<ListenException>(
            "nobody has the events of client \"Helper\"; the log " + logPath + " has the cause",
            () => session.Listen(TimeSpan.FromSeconds(3)));
        Check.Equal(3.0, machine.Limit.TotalSeconds);
        machine.Server = new PipeServer { Error = 5 };
        Check.Throws<ListenException>(
            "another process has the events of client \"Helper\", and cannot be asked (Windows error 5)",
            () => session.Listen());
        machine.Server = new PipeServer { Error = 2 };
        Check.Throws<ListenException>(() => session.ListenAsync().Wait());
        Check.Equal(10.0, machine.Limit.TotalSeconds);
        Check.Throws<ListenException>(
            () => session.ListenAsync(CancellationToken.None, TimeSpan.FromSeconds(4)).Wait());
        Check.Equal(4.0, machine.Limit.TotalSeconds);
        Check.Throws<TaskCanceledException>(() => session.ListenAsync(new CancellationToken(true)).Wait());
        machine.Server = new PipeServer { ProcessId = machine.OwnProcessId };
        session.ListenAsync().Wait();
        machine.Pipe = null;
        session.Listen();
        Check.Equal(null, machine.Pipe);
        Check.Called();
    }

    internal static void Run(Session session)
    {
        AStreamHasTheEventsInOrder(session);
        AStreamOfKinds(session);
        AReaderWaitsForTheNextEvent(session);
        ACancelledReaderLosesNoEvent(session);
        AStreamThatIsFullEnds(session);
        AStreamThatIsDisposedEnds(session);
        ListenInAHandlerIsRefused(session);
        WorkEndsWithItsEvent(session);
        WorkOfAnotherKindGoesOn(session);
        InstancesAreCreatedInTheOrderOfTheCalls(session);
        ProgressOfAnImage(session);
        ACallIsNotMadeForACancelledToken(session);
        Check.fakeReset();
    }

    static void AStreamHasTheEventsInOrder(Session session)
    {
        int before = session.WaitingCount;
        using (EventStream stream = session.Events())
        {
            Check.fakeSend(1);
            Check.Equal(string.Join("\n", AllNine), Read(stream, 9));
            Check.Equal(false, stream.ReadAsync().IsCompleted);
            Check.Equal(before + 1, session.WaitingCount);
        }
        Check.Equal(before, session.WaitingCount);
    }

    static void AStreamOfKinds(Session session)
    {
        using (EventStream stream = session.Events(EventKind.AppDisplayed, EventKind.AppUninstalled))
        {
            Check.fakeSend(1);
            Check.Equal(AllNine[1] + "\n" + AllNine[7], Read(stream, 2));
            Check.Equal(false, stream.ReadAsync().IsCompleted);
        }
        Check.Throws<ArgumentNullException>(() => session.Events(null));
        Check.Throws<ArgumentOutOfRangeException>(() => session.Events(0));
    }

    static void AReaderWaitsForTheNextEvent(Session session)
    {
        using (EventStream stream = session.Events(EventKind.AppInstalled, EventKind.AppDisplayed))
        {
            Task<BridgeEvent> first = stream.ReadAsync(), second = stream.ReadAsync();
            Check.fakeSend(1);
            Check.Equal(AllNine[0] + "\n" + AllNine[7], Shown(first.Result) + "\n" + Shown(second.Result));
        }
    }

    static void ACancelledReaderLosesNoEvent(Session session)
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

    static void AStreamThatIsFullEnds(Session session)
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
            Check.Equal(string.Join("\n", AllNine), Read(exact, 9));
            Check.Equal(false, exact.ReadAsync().IsCompleted);
        }
    }

    static void AStreamThatIsDisposedEnds(Session session)
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

    static void ListenInAHandlerIsRefused(Session session)
    {
        string thrown = "nothing";
        AppHandler listen = (instance, package) =>
        {
            try { session.Listen(); } catch (Exception exception) { thrown = exception.Message; }
        };
        session.AppDisplayed += listen;
        Check.fakeSend(1);
        session.AppDisplayed -= listen;
        Check.Equal("Listen() must not be called inside a handler", thrown);
    }

    static void WorkEndsWithItsEvent(Session session)
    {
        int before = session.WaitingCount;
        Work<AppDisplayed> launch = session.LaunchApp("Nougat64", "😀");
        Work<AppDisplayed> twin = session.LaunchApp("Nougat64", "😀");
        Work<AppUninstalled> removal = session.UninstallApp("Nougat64", "com.größe");
        Work<ApkInstallCompleted> apk = session.InstallApk("Nougat64", "C:\\П.apk");
        Task<AppDisplayed> waiting = launch.FinishedAsync();
        Check.Throws<TimeoutException>("AppDisplayed did not come within 00:00:00.0200000",
                                       () => launch.FinishedAsync(Short).Wait());
        var cancellation = new CancellationTokenSource();
        Task<AppDisplayed> cancelled = launch.FinishedAsync(Timeout.InfiniteTimeSpan, cancellation.Token);
        cancellation.Cancel();
        Check.Throws<OperationCanceledException>(() => Rethrow(cancelled));
        Check.fakeSend(1);
        Check.Equal("AppDisplayed Nougat64|😀", Shown(waiting.Result));
        Check.Throws<TimeoutException>(() => twin.FinishedAsync(Short).Wait());
        Check.fakeSend(1);
        Check.Equal("AppDisplayed Nougat64|😀", Shown(twin.FinishedAsync().Result));
        Check.Equal(AllNine[1], Shown(removal.FinishedAsync().Result));
        Check.Equal(-1, apk.FinishedAsync().Result.Status);
        Check.Equal(before, session.WaitingCount);
    }

    static void Rethrow(Task task)
    {
        try
        {
            task.GetAwaiter().GetResult();
        }
        catch (OperationCanceledException)
        {
            throw new OperationCanceledException();
        }
    }

    static void WorkOfAnotherKindGoesOn(Session session)
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
        foreach (Func<TimeSpan, Task> finished in others)
            Check.Throws<TimeoutException>(() => finished(Short).Wait());
    }

    static void InstancesAreCreatedInTheOrderOfTheCalls(Session session)
    {
        Work<CreateInstanceCompleted>[] works = Enumerable.Range(1, 3).Select(
            i => session.CreateFreshInstance("Nougat64", i, 1024, "e", "r", "p")).ToArray();
        for (int i = 0; i < 3; ++i)
        {
            Check.Throws<TimeoutException>(() => works[i].FinishedAsync(Short).Wait());
            Check.fakeSend(1);
            Check.Equal("CreateInstanceCompleted -2|Nougat64_1", Shown(works[i].FinishedAsync().Result));
        }
    }

    static void ProgressOfAnImage(Session session)
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
        Check.Throws<TimeoutException>(() => work.FinishedAsync(Short).Wait());
    }

    static void ACallIsNotMadeForACancelledToken(Session session)
    {
        Check.fakeReset();
        var cancelled = new CancellationToken(true);
        Check.Throws<TaskCanceledException>(() => session.Conf.CommitAsync(cancelled).Wait());
        Check.Called();
        session.Conf.CommitAsync().Wait();
        session.Conf.CommitToFileAsync("p").Wait();
        Check.Called("bridgeConfCommit", "bridgeConfCommitToFile p");
    }

    // After the end of the session.
    internal static Action AtTheEnd(Session session)
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
