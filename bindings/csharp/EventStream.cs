// Events to be read instead of handled.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>An event with its values. Each kind has a class of its own.</summary>
    public abstract class BridgeEvent
    {
        internal BridgeEvent()
        {
        }

        /// <summary>Which event it is.</summary>
        public abstract EventKind Kind { get; }
        /// <summary>Its values, in the order that bridge.h has them in.</summary>
        public abstract object[] Values { get; }
    }

    /// <summary>Events in the order of their arrival, from Session.Events() on. It holds so many that
    /// nobody has read yet; one more ends it, after those were read. Several threads may read.</summary>
    public sealed class EventStream : IDisposable
    {
        private readonly object guard = new object();
        private readonly Queue<BridgeEvent> waiting = new Queue<BridgeEvent>();
        private readonly LinkedList<TaskCompletionSource<BridgeEvent>> readers =
            new LinkedList<TaskCompletionSource<BridgeEvent>>();
        private readonly EventKind[] kinds;
        private readonly int limit;
        private readonly Action<EventStream> forget;
        private bool overflowed, ended;

        internal EventStream(EventKind[] kinds, int limit, Action<EventStream> forget)
        {
            this.kinds = kinds;
            this.limit = limit;
            this.forget = forget;
        }

        /// <summary>The next event; null after the last one, when the session or the stream has ended.
        /// EventOverflowException when the stream had no room for an event. A token that is cancelled ends
        /// the wait and loses no event.</summary>
        public Task<BridgeEvent> ReadAsync(CancellationToken token = default(CancellationToken))
        {
            var reader = new TaskCompletionSource<BridgeEvent>(
                TaskCreationOptions.RunContinuationsAsynchronously);
            lock (guard)
            {
                if (token.IsCancellationRequested) reader.SetCanceled();
                else if (waiting.Count > 0) reader.SetResult(waiting.Dequeue());
                else if (overflowed) reader.SetException(new EventOverflowException(limit));
                else if (ended) reader.SetResult(null);
                else WaitFor(readers.AddLast(reader), token);
            }
            return reader.Task;
        }

        private void WaitFor(LinkedListNode<TaskCompletionSource<BridgeEvent>> node, CancellationToken token)
        {
            if (!token.CanBeCanceled) return;
            CancellationTokenRegistration registration = token.Register(() => Cancel(node));
            node.Value.Task.ContinueWith(task => registration.Dispose(), TaskScheduler.Default);
        }

        private void Cancel(LinkedListNode<TaskCompletionSource<BridgeEvent>> node)
        {
            lock (guard)
            {
                if (node.List == null) return; // an event came first
                readers.Remove(node);
                node.Value.SetCanceled();
            }
        }

        /// <summary>Ends the stream: what has arrived can still be read.</summary>
        public void Dispose()
        {
            forget(this);
            End();
        }

        internal void End()
        {
            lock (guard)
            {
                ended = true;
                foreach (var reader in readers) reader.SetResult(null);
                readers.Clear();
            }
        }

        internal void Arrived(BridgeEvent one)
        {
            if (kinds.Length > 0 && !kinds.Contains(one.Kind)) return;
            lock (guard)
            {
                if (ended) return;
                if (readers.Count > 0)
                {
                    TaskCompletionSource<BridgeEvent> reader = readers.First.Value;
                    readers.RemoveFirst();
                    reader.SetResult(one);
                    return;
                }
                if (waiting.Count < limit)
                {
                    waiting.Enqueue(one);
                    return;
                }
                overflowed = ended = true;
            }
            forget(this);
        }
    }
}
