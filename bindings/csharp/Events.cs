// Events: handlers, streams, and the check that this process receives them.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>Handles the installation or the update of an app.</summary>
    public delegate void AppInstalledHandler(AppInstalled app);
    /// <summary>Handles an event of an app.</summary>
    public delegate void AppHandler(string instance, string package);
    /// <summary>Handles the end of an APK installation.</summary>
    public delegate void ApkInstallCompletedHandler(string instance, int status, string apkFilePath);
    /// <summary>Handles a change of the list of instances.</summary>
    public delegate void InstanceListUpdatedHandler();
    /// <summary>Handles the progress of an image's installation.</summary>
    public delegate void InstallImageProgressHandler(string imageName, int status, double progress);
    /// <summary>Handles a new instance, or one that could not be created.</summary>
    public delegate void CreateInstanceCompletedHandler(int status, string instance);
    /// <summary>Handles an event of an instance.</summary>
    public delegate void InstanceHandler(string instance);
    /// <summary>Handles a change of an instance's accounts.</summary>
    public delegate void AccountListUpdatedHandler(string instance, string emailId, int action);

    public sealed partial class Session
    {
        private const int WaitsForItsServer = 10; // seconds

        // The library keeps pointers to these delegates until the process ends.
        private static readonly List<Delegate> Kept = new List<Delegate>();

        [ThreadStatic] private static bool isEventThread;

        private readonly object eventsLock = new object();
        private readonly Watches watches = new Watches();
        private EventStream[] streams = new EventStream[0]; // replaced at each change
        private bool registered;
        private volatile bool listening;

        /// <summary>An app was installed or updated. After Listen(), handlers run on the library's event
        /// thread, one after another.</summary>
        public event AppInstalledHandler AppInstalled;
        /// <summary>An app was uninstalled.</summary>
        public event AppHandler AppUninstalled;
        /// <summary>The installation of an APK file has ended.</summary>
        public event ApkInstallCompletedHandler ApkInstallCompleted;
        /// <summary>The list of instances changed. The configuration has been reloaded.</summary>
        public event InstanceListUpdatedHandler InstanceListUpdated;
        /// <summary>Progress of an image's installation.</summary>
        public event InstallImageProgressHandler InstallImageProgress;
        /// <summary>An instance was created, or could not be.</summary>
        public event CreateInstanceCompletedHandler CreateInstanceCompleted;
        /// <summary>The configuration of an instance changed. It has been reloaded.</summary>
        public event InstanceHandler InstanceConfigurationChanged;
        /// <summary>An app came to the front.</summary>
        public event AppHandler AppDisplayed;
        /// <summary>The accounts of an instance changed.</summary>
        public event AccountListUpdatedHandler AccountListUpdated;

        /// <summary>Receives the exceptions of handlers, which go no further.</summary>
        public event Action<Exception> HandlerFailed;

        /// <summary>Starts the event server and waits until this process receives the events. Throws
        /// ListenException when another process receives them, or none does within the limit of 10 seconds.
        /// A second call changes nothing.</summary>
        public void Listen(TimeSpan? limit = null)
        {
            Register();
            if (!listening) RequireOwnServer(LimitOf(limit));
        }

        /// <summary>Listen() without blocking. Handlers are called from here on. A cancelled token ends the
        /// wait.</summary>
        public Task ListenAsync(CancellationToken token = default(CancellationToken), TimeSpan? limit = null)
        {
            Register();
            return Waiting.OnAThread(() =>
            {
                if (!listening) RequireOwnServer(LimitOf(limit));
                return true;
            }, token);
        }

        /// <summary>The number of streams and works that wait for events.</summary>
        internal int WaitingCount
        {
            get { lock (eventsLock) return streams.Length + watches.Count; }
        }

        internal bool IsListening
        {
            get { return listening; }
        }

        private static TimeSpan LimitOf(TimeSpan? limit)
        {
            return limit ?? TimeSpan.FromSeconds(WaitsForItsServer);
        }

        private void Register()
        {
            Check();
            if (isEventThread)
                throw new InvalidOperationException("Listen() must not be called inside a handler");
            lock (eventsLock)
            {
                if (registered) return;
                registered = true;
                AppDomain.CurrentDomain.ProcessExit += OnProcessExit;
                Delegate[] callbacks = EventCallbacks.Register(Arrived);
                lock (Kept) Kept.AddRange(callbacks);
            }
        }

        // When another process serves the name, the library only logs an error.
        private void RequireOwnServer(TimeSpan limit)
        {
            PipeServer server = Machine.Current.ServerOf(@"\\.\pipe\vtr_" + client + "_bridge_nvo", limit);
            if (server.Error == 0 && server.ProcessId == Machine.Current.OwnProcessId)
            {
                listening = true;
                return;
            }
            throw new ListenException(Describe(server), server.ProcessId);
        }

        private string Describe(PipeServer server)
        {
            string has = " has the events of client \"" + client + "\"";
            if (server.Error == 0) return "process " + server.ProcessId + has;
            if (server.Error == Machine.FileNotFound) return "no process" + has + Places.LogHint(Places.LogPath);
            return "another process" + has + ", and its id cannot be read (Windows error " + server.Error + ")";
        }

        /// <summary>A stream of the events of these kinds, or of all kinds, from now on. It buffers up to
        /// 10,000 events.</summary>
        public EventStream Events(params EventKind[] kinds)
        {
            return Events(10000, kinds);
        }

        /// <summary>The same with another buffer size.</summary>
        public EventStream Events(int limit, params EventKind[] kinds)
        {
            if (limit < 1) throw new ArgumentOutOfRangeException("limit");
            if (kinds == null) throw new ArgumentNullException("kinds");
            Check();
            var stream = new EventStream((EventKind[])kinds.Clone(), limit, Forget);
            lock (eventsLock) streams = streams.Concat(new[] { stream }).ToArray();
            return stream;
        }

        private void Forget(EventStream stream)
        {
            lock (eventsLock) streams = streams.Where(one => one != stream).ToArray();
        }

        private void EndEvents()
        {
            EventStream[] all;
            lock (eventsLock)
            {
                all = streams;
                streams = new EventStream[0];
            }
            foreach (EventStream stream in all) stream.End();
            watches.End();
        }

        // Events must not enter a runtime that has exited. The end of the process does not wait: a handler
        // may never return, or may itself have called Environment.Exit.
        private void OnProcessExit(object sender, EventArgs arguments)
        {
            Native.bridgeRegisterCallbacks(null, null, null, null, null, null, null, null, null);
        }

        // Runs on the library's event thread. No exception may leave it.
        private void Arrived(BridgeEvent one)
        {
            isEventThread = true;
            try
            {
                PassOn(one);
            }
            catch (Exception exception)
            {
                Report(exception);
            }
            CallHandlers(one);
        }

        // Runs before the handlers: they may read the loaded values, and may block.
        private void PassOn(BridgeEvent one)
        {
            bool isAfterALoad = one is InstanceListUpdated || one is InstanceConfigurationChanged;
            if (isAfterALoad) known.Load();
            EventStream[] all;
            lock (eventsLock) all = streams;
            foreach (EventStream stream in all) stream.Arrived(one);
            watches.Arrived(one);
        }

        private void CallHandlers(BridgeEvent one)
        {
            switch (one.Kind)
            {
                case EventKind.AppInstalled:
                    Guard(AppInstalled, handler => handler((AppInstalled)one));
                    break;
                case EventKind.AppUninstalled:
                    var uninstalled = (AppUninstalled)one;
                    Guard(AppUninstalled, handler => handler(uninstalled.Instance, uninstalled.Package));
                    break;
                case EventKind.ApkInstallCompleted:
                    var apk = (ApkInstallCompleted)one;
                    Guard(ApkInstallCompleted, handler => handler(apk.Instance, apk.Status, apk.ApkFilePath));
                    break;
                case EventKind.InstanceListUpdated:
                    Guard(InstanceListUpdated, handler => handler());
                    break;
                case EventKind.InstallImageProgress:
                    var image = (InstallImageProgress)one;
                    Guard(InstallImageProgress,
                          handler => handler(image.ImageName, image.Status, image.Progress));
                    break;
                case EventKind.CreateInstanceCompleted:
                    var created = (CreateInstanceCompleted)one;
                    Guard(CreateInstanceCompleted, handler => handler(created.Status, created.Instance));
                    break;
                case EventKind.InstanceConfigurationChanged:
                    var changed = (InstanceConfigurationChanged)one;
                    Guard(InstanceConfigurationChanged, handler => handler(changed.Instance));
                    break;
                case EventKind.AppDisplayed:
                    var displayed = (AppDisplayed)one;
                    Guard(AppDisplayed, handler => handler(displayed.Instance, displayed.Package));
                    break;
                case EventKind.AccountListUpdated:
                    var account = (AccountListUpdated)one;
                    Guard(AccountListUpdated,
                          handler => handler(account.Instance, account.EmailId, account.Action));
                    break;
            }
        }

        // After an exception of one handler the next is still called.
        private void Guard<T>(T handlers, Action<T> call) where T : class
        {
            if (handlers == null) return;
            foreach (Delegate handler in ((Delegate)(object)handlers).GetInvocationList())
            {
                try
                {
                    call((T)(object)handler);
                }
                catch (Exception exception)
                {
                    Report(exception);
                }
            }
        }

        private void Report(Exception exception)
        {
            try
            {
                Action<Exception> failed = HandlerFailed;
                if (failed != null) failed(exception);
            }
            catch (Exception)
            {
                // There is nowhere to report a failure of the report.
            }
        }
    }
}
