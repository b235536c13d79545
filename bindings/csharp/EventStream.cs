// Streams of events, the alternative to handlers.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>An event with its values. Each kind has its own class.</summary>
    public abstract class BridgeEvent
    {
        internal BridgeEvent()
        {
        }

        /// <summary>Which event it is.</summary>
        public abstract EventKind Kind { get; }
        /// <summary>Its values, in the order of bridge.h.</summary>
        public abstract object[] Values { get; }
    }

    /// <summary>Events in order of arrival, since the call of Session.Events(). Its buffer is limited: if
    /// it overflows, the stream delivers the buffered events and ends with an exception. Several threads
    /// may read.</summary>
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
        /// Throws EventOverflowException after an overflow. A cancelled token ends the wait; no event is
        /// lost.</summary>
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

        /// <summary>Ends the stream. The buffered events can still be read.</summary>
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
