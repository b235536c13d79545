// Work that a program was started for, and the event that reports its outcome.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>Started work. It ends with an event; an event ends the oldest work that it matches, whether
    /// the host waits for it or not. A handler must not block on it: the event cannot arrive before the
    /// handler returns.</summary>
    public sealed class Work<T> where T : BridgeEvent
    {
        private readonly Session session;
        private readonly Task<T> outcome;

        internal Work(Session session, Task<T> outcome)
        {
            this.session = session;
            this.outcome = outcome;
        }

        /// <summary>Waits for the event without a limit.</summary>
        public Task<T> FinishedAsync()
        {
            return FinishedAsync(Timeout.InfiniteTimeSpan, CancellationToken.None);
        }

        /// <summary>Waits for the event. Throws TimeoutException after the limit; the work goes on.</summary>
        public Task<T> FinishedAsync(TimeSpan limit)
        {
            return FinishedAsync(limit, CancellationToken.None);
        }

        /// <summary>Waits for the event. Throws TimeoutException after the limit,
        /// OperationCanceledException when the token is cancelled and ObjectDisposedException when the
        /// session ends; the work goes on. Throws InvalidOperationException at once when Listen() has not
        /// succeeded.</summary>
        public Task<T> FinishedAsync(TimeSpan limit, CancellationToken token)
        {
            if (!outcome.IsCompleted && !session.IsListening)
                throw new InvalidOperationException("call Listen() first: without it no event reports the outcome");
            return Waiting.For(outcome, limit, token, typeof(T).Name);
        }
    }

    /// <summary>Waits for one event.</summary>
    internal abstract class Watch
    {
        /// <summary>Returns whether this was the event.</summary>
        internal abstract bool Sees(BridgeEvent one);
        internal abstract void End();
    }

    internal sealed class Watch<T> : Watch where T : BridgeEvent
    {
        private readonly TaskCompletionSource<T> outcome =
            new TaskCompletionSource<T>(TaskCreationOptions.RunContinuationsAsynchronously);
        private readonly Func<T, bool> isTheEnd;

        internal Watch(Func<T, bool> isTheEnd)
        {
            this.isTheEnd = isTheEnd;
        }

        internal Task<T> Outcome
        {
            get { return outcome.Task; }
        }

        internal override bool Sees(BridgeEvent one)
        {
            var mine = one as T;
            return mine != null && isTheEnd(mine) && outcome.TrySetResult(mine);
        }

        internal override void End()
        {
            Waiting.Fail(outcome, new ObjectDisposedException("QXBridge.Session"));
        }
    }

    /// <summary>All watches, in the order of their calls. An event ends the first that it
    /// matches.</summary>
    internal sealed class Watches
    {
        private readonly LinkedList<Watch> watches = new LinkedList<Watch>();

        internal void Add(Watch watch)
        {
            lock (watches) watches.AddLast(watch);
        }

        internal void Remove(Watch watch)
        {
            lock (watches) watches.Remove(watch);
        }

        // Sees() runs without the lock, because a progress function may start other work.
        internal void Arrived(BridgeEvent one)
        {
            Watch[] all;
            lock (watches) all = watches.ToArray();
            foreach (Watch watch in all)
            {
                if (!watch.Sees(one)) continue;
                Remove(watch);
                return;
            }
        }

        internal void End()
        {
            lock (watches)
            {
                foreach (Watch watch in watches) watch.End();
                watches.Clear();
            }
        }

        internal int Count
        {
            get { lock (watches) return watches.Count; }
        }
    }
}
