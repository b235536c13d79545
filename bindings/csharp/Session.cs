// QX-Bridge.dll for C#: configuration, instances, apps, programs and events. Compile all files of this
// folder into the host; they need nothing but the base library. bridge.h has the conventions. Start
// here; Configuration.cs, Programs.cs, Listings.cs and Events.cs have the rest of what a host calls.

using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;

namespace QXBridge
{
    /// <summary>Who the host is. Two hosts of one kind share a server name: only the first gets
    /// events.</summary>
    public enum Client
    {
        /// <summary>The launcher, whose version has to be the product's.</summary>
        Launcher,
        /// <summary>The installer.</summary>
        Installer,
        /// <summary>The log collector.</summary>
        LogCollector,
        /// <summary>A helper.</summary>
        Helper,
        /// <summary>The uninstaller.</summary>
        Uninstaller,
    }

    /// <summary>The library, from its initialisation to its end; one per process, also after its end: a
    /// second one throws InvalidOperationException. Its methods may be called from any thread, except
    /// Dispose(), during which no other call may run.</summary>
    public sealed partial class Session : IDisposable
    {
        private const uint LoadFromItsFolder = 0x00000100 | 0x00001000;

        private enum Life
        {
            NotStarted,
            Running,
            Ended,
        }

        // Guards what follows, which is of the process, as the library is.
        private static readonly object Lock = new object();
        private static Life life;

        private readonly Client client;
        private readonly KnownInstances known;
        private volatile bool disposed;

        /// <summary>Loads the library from a place that Windows does not search by itself, with the
        /// Qt DLLs beside it. Call it first. A relative path is one from the current folder.</summary>
        public static void Load(string path)
        {
            string absolute = Path.GetFullPath(path);
            if (Native.LoadLibraryExW(absolute, IntPtr.Zero, LoadFromItsFolder) == IntPtr.Zero)
                throw new DllNotFoundException(absolute + ": error " + Marshal.GetLastWin32Error());
        }

        /// <summary>What would keep the library from starting; empty when nothing would. The same
        /// arguments as the constructors, which look first, too.</summary>
        public static IList<Problem> Preflight(Client client, bool noConfFile = false,
                                               string logFilePath = null)
        {
            return QXBridge.Preflight.Run(client, new Places(noConfFile, logFilePath));
        }

        /// <summary>Starts the library with the product's configuration file and log.
        /// PreflightException, with the problems, where that would fail or end the process.</summary>
        public Session(Client client) : this(client, new Places(false, null))
        {
            Start("bridgeApiInit", () => Native.bridgeApiInit(Utf8.Forever(client.ToString())));
        }

        /// <summary>Starts it without the file, or with another log (null: the product's own; empty:
        /// standard output).</summary>
        public Session(Client client, bool noConfFile, string logFilePath)
            : this(client, new Places(noConfFile, logFilePath))
        {
            Start("bridgeApiInitEx", () => Native.bridgeApiInitEx(Utf8.Forever(client.ToString()),
                noConfFile ? (byte)1 : (byte)0, 0,
                logFilePath == null ? null : Utf8.Bytes(logFilePath, "logFilePath")));
        }

        private Session(Client client, Places places)
        {
            this.client = client;
            Places = places;
            Calls = new Calls();
            known = new KnownInstances(places.ConfPath);
            Conf = new Configuration(this, known);
        }

        // A second start would take over the callbacks; one after the end would bring no events.
        private void Start(string operation, Func<int> start)
        {
            lock (Lock)
            {
                if (life == Life.Running)
                    throw new InvalidOperationException("there is a session already: a process has one");
                if (life == Life.Ended)
                    throw new InvalidOperationException(
                        "the session has ended: the library starts once in a process");
                IList<Problem> problems = QXBridge.Preflight.Run(client, Places);
                if (problems.Count > 0) throw new PreflightException(problems);
                known.Load();
                Require(operation, start(), Places.ConfPath);
                life = Life.Running;
            }
        }

        /// <summary>Stops the library, once and for all, and waits for a handler that runs: do not call
        /// it on a thread that a handler waits for. Waits for calls that go on inside, too. Inside a handler
        /// it stops nothing and throws InvalidOperationException.</summary>
        public void Dispose()
        {
            lock (Lock)
            {
                if (disposed) return;
                if (isEventThread)
                    throw new InvalidOperationException("Dispose() must not be called inside a handler");
                disposed = true;
                life = Life.Ended;
            }
            AppDomain.CurrentDomain.ProcessExit -= OnProcessExit;
            Calls.WaitForAll();
            Native.bridgeApiFini();
            EndEvents();
        }

        /// <summary>The configuration.</summary>
        public Configuration Conf { get; private set; }

        internal Places Places { get; private set; }
        internal Calls Calls { get; private set; }

        internal void Check()
        {
            if (disposed) throw new ObjectDisposedException("QXBridge.Session");
        }

        internal void Require(string operation, int code, string file = null)
        {
            if (code != Result.Success) throw new BridgeException(operation, code, file, Places.LogPath);
        }

        /// <summary>A copy of a text of the library's, which gets it back.</summary>
        internal string Taken(string operation, IntPtr memory)
        {
            string text = TextOf(memory);
            if (text == null) throw new BridgeException(operation, Result.Failure, null, Places.LogPath);
            return text;
        }

        /// <summary>The same; null for null.</summary>
        internal static string TextOf(IntPtr memory)
        {
            if (memory == IntPtr.Zero) return null;
            try
            {
                return Utf8.Text(memory);
            }
            finally
            {
                Native.bridgeFreeMemory(memory);
            }
        }
    }
}
