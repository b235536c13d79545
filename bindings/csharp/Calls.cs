// Calls on separate threads, and waits with a limit. A call goes on after the wait for it has ended.

using System;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    internal sealed class Calls
    {
        private readonly object guard = new object();
        private int inside;

        /// <summary>Makes a call on a separate thread. A cancelled token ends the wait, never the call.
        /// The call counts as ended before its task completes, so code that awaits the task may end the
        /// session.</summary>
        internal Task<T> Start<T>(Func<T> call, CancellationToken token)
        {
            if (token.IsCancellationRequested) return Waiting.Cancelled<T>(token);
            lock (guard) ++inside;
            return Waiting.OnAThread(() =>
            {
                try
                {
                    return call();
                }
                finally
                {
                    Ended();
                }
            }, token);
        }

        private void Ended()
        {
            lock (guard)
            {
                --inside;
                Monitor.PulseAll(guard);
            }
        }

        internal void WaitForAll()
        {
            lock (guard)
                while (inside > 0) Monitor.Wait(guard);
        }
    }

    internal static class Waiting
    {
        /// <summary>Runs a function on a separate thread. A cancelled token ends the wait only.</summary>
        internal static Task<T> OnAThread<T>(Func<T> function, CancellationToken token)
        {
            if (token.IsCancellationRequested) return Cancelled<T>(token);
            var result = new TaskCompletionSource<T>(TaskCreationOptions.RunContinuationsAsynchronously);
            Task.Factory.StartNew(() =>
            {
                try
                {
                    result.SetResult(function());
                }
                catch (Exception exception)
                {
                    Fail(result, exception);
                }
            }, CancellationToken.None, TaskCreationOptions.LongRunning, TaskScheduler.Default);
            return For(result.Task, Timeout.InfiniteTimeSpan, token, "");
        }

        internal static async Task<T> For<T>(Task<T> task, TimeSpan limit, CancellationToken token,
                                             string what)
        {
            using (var over = CancellationTokenSource.CreateLinkedTokenSource(token))
            {
                Task first = await Task.WhenAny(task, Task.Delay(limit, over.Token)).ConfigureAwait(false);
                if (first != task)
                {
                    token.ThrowIfCancellationRequested();
                    throw new TimeoutException(what + " did not arrive within " + limit);
                }
                over.Cancel();
            }
            return await task.ConfigureAwait(false);
        }

        internal static Task<T> Cancelled<T>(CancellationToken token)
        {
            return For(new TaskCompletionSource<T>().Task, Timeout.InfiniteTimeSpan, token, "");
        }

        /// <summary>Fails a task, and marks its exception as observed: the host may never read
        /// it.</summary>
        internal static void Fail<T>(TaskCompletionSource<T> source, Exception failure)
        {
            if (!source.TrySetException(failure)) return;
            GC.KeepAlive(source.Task.Exception);
        }
    }
}
