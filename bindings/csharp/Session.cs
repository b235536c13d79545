// QX-Bridge.dll for C#: configuration, instances, apps, programs and events. Compile all files of this
// folder into the host; they need only the base library. The conventions of bridge.h apply. The rest of
// the interface is in Configuration.cs, Programs.cs, Listings.cs and Events.cs.

using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;

namespace QXBridge
{
    /// <summary>The kind of host. Two hosts of one kind share a server name: only the first receives
    /// events.</summary>
    public enum Client
    {
        /// <summary>The launcher, whose version must equal the product's.</summary>
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

    /// <summary>The library, from its initialisation to its end. A process can have one session; a second
    /// one, even after the end of the first, throws InvalidOperationException. Methods may be called from
    /// any thread, but no other call may run during Dispose().</summary>
    public sealed partial class Session : IDisposable
    {
        private const uint LoadFromItsFolder = 0x00000100 | 0x00001000;

        private enum Life
        {
            NotStarted,
            Running,
            Ended,
        }

        // Guards `life`. Both belong to the process, like the library.
        private static readonly object Lock = new object();
        private static Life life;

        private readonly Client client;
        private readonly KnownInstances known;
        private volatile bool disposed;

        /// <summary>Loads the library from a folder that Windows does not search, with the Qt DLLs beside
        /// it. Call it first. A relative path starts at the current folder.</summary>
        public static void Load(string path)
        {
            string absolute = Path.GetFullPath(path);
            if (Native.LoadLibraryExW(absolute, IntPtr.Zero, LoadFromItsFolder) == IntPtr.Zero)
                throw new DllNotFoundException(absolute + ": error " + Marshal.GetLastWin32Error());
        }

        /// <summary>The problems with which the library would not start; empty when there are none. The
        /// arguments are those of the constructors, which make the same checks.</summary>
        public static IList<Problem> Preflight(Client client, bool noConfFile = false,
                                               string logFilePath = null)
        {
            return QXBridge.Preflight.Run(client, new Places(noConfFile, logFilePath));
        }

        /// <summary>Starts the library with the product's configuration file and log. Throws
        /// PreflightException when that would fail or end the process.</summary>
        public Session(Client client) : this(client, new Places(false, null))
        {
            Start("bridgeApiInit", () => Native.bridgeApiInit(Utf8.Forever(client.ToString())));
        }

        /// <summary>Starts it without the file, or with another log (null for the product's own, empty for
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

        // A second start would replace the callbacks; one after the end would deliver no events.
        private void Start(string operation, Func<int> start)
        {
            lock (Lock)
            {
                if (life == Life.Running)
                    throw new InvalidOperationException("there is already a session: a process has one");
                if (life == Life.Ended)
                    throw new InvalidOperationException(
                        "the session has ended: the library starts once per process");
                IList<Problem> problems = QXBridge.Preflight.Run(client, Places);
                if (problems.Count > 0) throw new PreflightException(problems);
                known.Load();
                Require(operation, start(), Places.ConfPath);
                life = Life.Running;
            }
        }

        /// <summary>Stops the library for the rest of the process. Waits for a running handler and for
        /// running asynchronous calls: do not call it on a thread that a handler waits for. Inside a handler
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

        /// <summary>Copies a text of the library and frees it.</summary>
        internal string TakeText(string operation, IntPtr memory)
        {
            string text = TextOf(memory);
            if (text == null) throw new BridgeException(operation, Result.Failure, null, Places.LogPath);
            return text;
        }

        /// <summary>The same, but returns null for null.</summary>
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
