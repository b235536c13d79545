// Scenarios with calls that continue inside the library, and with awaited events.

using System;
using System.Threading;
using System.Threading.Tasks;
using QXBridge;

static partial class DotnetHost
{
    // Another thread holds the configuration's lock during the call.
    static void WhileTheFileIsLocked(Action call)
    {
        using (var free = new ManualResetEventSlim())
        using (var taken = new ManualResetEventSlim())
        {
            var owner = new Thread(() =>
            {
                using (var mutex = new Mutex(false, @"Global\vtr_conf_nvo"))
                {
                    mutex.WaitOne();
                    taken.Set();
                    free.Wait();
                    mutex.ReleaseMutex();
                }
            });
            owner.Start();
            taken.Wait();
            call();
            free.Set();
            owner.Join();
        }
    }

    public static void CommitInside(Session session)
    {
        Task commit = null;
        WhileTheFileIsLocked(() =>
        {
            session.Conf.SetString("vtr.locale", "de-DE");
            commit = session.Conf.CommitAsync();
            using (var cancellation = new CancellationTokenSource())
            {
                Task cancelled = session.Conf.CommitAsync(cancellation.Token);
                cancellation.Cancel();
                Say(Refusal(() => cancelled.GetAwaiter().GetResult()));
            }
            Say("commit is", commit.IsCompleted ? "done" : "inside", "and reads go on:",
                session.Conf.GetString("vtr.locale"));
        });
        commit.GetAwaiter().GetResult();
        Say("committed");
    }

    // Nothing awaits this commit.
    public static void EndDuringACommit(Session session)
    {
        Task end = null;
        WhileTheFileIsLocked(() =>
        {
            session.Conf.SetString("vtr.locale", "de-DE");
            session.Conf.CommitAsync();
            end = Task.Run(() => session.Dispose());
            while (IsLive(session)) Thread.Yield();
            Say("end is", end.Wait(100) ? "done" : "waiting");
        });
        end.Wait();
        Say("ended");
    }

    static async Task Awaiting(Session session)
    {
        EventStream stream = session.Events(EventKind.AppDisplayed);
        await session.ListenAsync(CancellationToken.None, Long);
        Say("listening");
        for (int i = 0; i < 2; ++i)
        {
            var displayed = (AppDisplayed)await stream.ReadAsync();
            Say("displayed", displayed.Package);
            session.Conf.Set(Keys.Global.Locale, displayed.Package);
            await session.Conf.CommitAsync();
        }
        foreach (Instance one in await session.InstancesAsync()) Say("instance", one.Name);
        Task<BridgeEvent> last = stream.ReadAsync();
        session.Dispose();
        Say("last", await last == null ? "end" : "event");
    }

    // The continuation of an event runs on another thread than the events, and may end the session.
    public static void AwaitingAndEnding(Session session)
    {
        Awaiting(session).Wait();
    }
}
