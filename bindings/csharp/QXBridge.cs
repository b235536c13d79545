// QX-Bridge.dll for C#: configuration, instances, apps, programs and events. To be compiled into the host
// with QXBridge.generated.cs; needs nothing but the base library. bridge.h has the conventions.

using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace QXBridge
{
    /// <summary>Who the host is. Two hosts of one kind share a server name: only the first gets
    /// events.</summary>
    public enum Client
    {
        Launcher,
        Installer,
        LogCollector,
        Helper,
        Uninstaller,
    }

    /// <summary>A function of the library answered with a code other than 0, or without its
    /// text.</summary>
    public sealed class BridgeException : Exception
    {
        internal BridgeException(string operation, int code)
            : base(operation + " failed with " + code + "; the log has the cause")
        {
            Operation = operation;
            Code = code;
        }

        /// <summary>The function, as bridge.h calls it.</summary>
        public string Operation { get; private set; }
        public int Code { get; private set; }
    }

    public delegate void AppInstalledHandler(AppInstalled app);
    public delegate void AppHandler(string instance, string package);
    public delegate void ApkInstallCompletedHandler(string instance, int status, string apkFilePath);
    public delegate void InstanceListUpdatedHandler();
    public delegate void InstallImageProgressHandler(string imageName, int status, double progress);
    public delegate void CreateInstanceCompletedHandler(int status, string instance);
    public delegate void InstanceHandler(string instance);
    public delegate void AccountListUpdatedHandler(string instance, string emailId, int action);

    internal static partial class Native
    {
        [DllImport("kernel32.dll", CharSet = CharSet.Unicode, SetLastError = true)]
        internal static extern IntPtr LoadLibraryExW(string fileName, IntPtr file, uint flags);
    }

    /// <summary>UTF-8 texts by hand: the marshaller's own would be of the system's code page.</summary>
    internal static class Utf8
    {
        private static readonly Dictionary<string, IntPtr> Kept = new Dictionary<string, IntPtr>();

        internal static byte[] Bytes(string text, string name)
        {
            if (text == null) throw new ArgumentNullException(name);
            if (text.IndexOf('\0') >= 0) throw new ArgumentException("a text must not contain NUL", name);
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        internal static string Text(IntPtr memory)
        {
            int length = 0;
            while (Marshal.ReadByte(memory, length) != 0) ++length;
            byte[] bytes = new byte[length];
            Marshal.Copy(memory, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        /// <summary>Memory that is never freed: the library keeps the address.</summary>
        internal static IntPtr Forever(string text)
        {
            lock (Kept)
            {
                IntPtr memory;
                if (Kept.TryGetValue(text, out memory)) return memory;
                byte[] bytes = Bytes(text, "text");
                memory = Marshal.AllocHGlobal(bytes.Length);
                Marshal.Copy(bytes, 0, memory, bytes.Length);
                Kept.Add(text, memory);
                return memory;
            }
        }
    }

    /// <summary>Typed access by full key: "vtr.&lt;name&gt;" or
    /// "vtr.instance.&lt;instance&gt;.&lt;name&gt;". Set methods stage a change; the file has it after
    /// Commit(). A key that does not exist, or one of another type, ends the process.</summary>
    public sealed class Configuration
    {
        private readonly Session session;

        internal Configuration(Session session)
        {
            this.session = session;
        }

        public bool GetBool(string key)
        {
            session.Check();
            return Native.bridgeConfGetBool(Utf8.Bytes(key, "key")) != 0;
        }
        public int GetI32(string key)
        {
            session.Check();
            return Native.bridgeConfGetI32(Utf8.Bytes(key, "key"));
        }
        public long GetI64(string key)
        {
            session.Check();
            return Native.bridgeConfGetI64(Utf8.Bytes(key, "key"));
        }
        public string GetString(string key)
        {
            session.Check();
            return Session.Taken("bridgeConfGetString", Native.bridgeConfGetString(Utf8.Bytes(key, "key")));
        }
        public string[] GetMultiString(string key)
        {
            session.Check();
            string stored = Session.Taken("bridgeConfGetMultiString",
                Native.bridgeConfGetMultiString(Utf8.Bytes(key, "key")));
            return stored.Length == 0 ? new string[0] : stored.Split(',');
        }

        public void SetBool(string key, bool value)
        {
            session.Check();
            Session.Require("bridgeConfSetBool",
                Native.bridgeConfSetBool(Utf8.Bytes(key, "key"), value ? (byte)1 : (byte)0));
        }
        public void SetI32(string key, int value)
        {
            session.Check();
            Session.Require("bridgeConfSetI32", Native.bridgeConfSetI32(Utf8.Bytes(key, "key"), value));
        }
        public void SetI64(string key, long value)
        {
            session.Check();
            Session.Require("bridgeConfSetI64", Native.bridgeConfSetI64(Utf8.Bytes(key, "key"), value));
        }
        public void SetString(string key, string value)
        {
            session.Check();
            Session.Require("bridgeConfSetString",
                Native.bridgeConfSetString(Utf8.Bytes(key, "key"), Utf8.Bytes(value, "value")));
        }
        public void SetMultiString(string key, params string[] elements)
        {
            session.Check();
            if (elements == null) throw new ArgumentNullException("elements");
            foreach (string element in elements)
            {
                if (element == null) throw new ArgumentNullException("elements", "an element is null");
                if (element.IndexOf(',') >= 0)
                    throw new ArgumentException("an element must not contain \",\"", "elements");
            }
            Session.Require("bridgeConfSetMultiString", Native.bridgeConfSetMultiString(
                Utf8.Bytes(key, "key"), Utf8.Bytes(string.Join(",", elements), "elements")));
        }

        public void Commit()
        {
            session.Check();
            Session.Require("bridgeConfCommit", Native.bridgeConfCommit());
        }
        /// <summary>Writes the whole configuration with the staged changes into another file. Afterwards
        /// nothing is staged: a later Commit() does not bring these changes to the product's file.</summary>
        public void CommitToFile(string path)
        {
            session.Check();
            Session.Require("bridgeConfCommitToFile", Native.bridgeConfCommitToFile(Utf8.Bytes(path, "path")));
        }
    }

    /// <summary>The library, from its initialisation to its end; one per process, also after its end: a
    /// second one throws InvalidOperationException. Its methods may be called from any thread, except
    /// Dispose(), during which no other call may run.</summary>
    public sealed class Session : IDisposable
    {
        // The library keeps pointers to these delegates until the process ends.
        private static readonly List<Delegate> Kept = new List<Delegate>();

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

        [ThreadStatic] private static bool isEventThread;

        private volatile bool disposed;
        private bool listening;

        /// <summary>Loads the library from a place that Windows does not search by itself, with the
        /// Qt DLLs beside it. Call it first. A relative path is one from the current folder.</summary>
        public static void Load(string path)
        {
            string absolute = Path.GetFullPath(path);
            if (Native.LoadLibraryExW(absolute, IntPtr.Zero, LoadFromItsFolder) == IntPtr.Zero)
                throw new DllNotFoundException(absolute + ": error " + Marshal.GetLastWin32Error());
        }

        /// <summary>Starts the library with the product's configuration file and log.</summary>
        public Session(Client client)
        {
            Start("bridgeApiInit", () => Native.bridgeApiInit(Utf8.Forever(client.ToString())));
            Conf = new Configuration(this);
        }

        /// <summary>Starts it without the file, or with another log (null: the product's own). A log
        /// that cannot be opened is fatal.</summary>
        public Session(Client client, bool noConfFile, string logFilePath)
        {
            Start("bridgeApiInitEx", () => Native.bridgeApiInitEx(Utf8.Forever(client.ToString()),
                noConfFile ? (byte)1 : (byte)0, 0,
                logFilePath == null ? null : Utf8.Bytes(logFilePath, "logFilePath")));
            Conf = new Configuration(this);
        }

        // A second start would take over the callbacks; one after the end would bring no events.
        private static void Start(string operation, Func<int> start)
        {
            lock (Lock)
            {
                if (life == Life.Running)
                    throw new InvalidOperationException("there is a session already: a process has one");
                if (life == Life.Ended)
                    throw new InvalidOperationException(
                        "the session has ended: the library starts once in a process");
                Require(operation, start());
                life = Life.Running;
            }
        }

        // No further event may enter a runtime that is gone. The end of the process waits for nothing,
        // as a handler may never return, or have asked for the end itself.
        private void OnProcessExit(object sender, EventArgs arguments)
        {
            Native.bridgeRegisterCallbacks(null, null, null, null, null, null, null, null, null);
        }

        /// <summary>Stops the library, once and for all, and waits for a handler that runs: do not call
        /// it on a thread that a handler waits for. Inside a handler it stops nothing and throws
        /// InvalidOperationException.</summary>
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
            Native.bridgeApiFini();
        }

        public Configuration Conf { get; private set; }

        /// <summary>The events. Handlers run on the library's event thread, one after another, from
        /// Listen() on.</summary>
        public event AppInstalledHandler AppInstalled;
        public event AppHandler AppUninstalled;
        public event ApkInstallCompletedHandler ApkInstallCompleted;
        public event InstanceListUpdatedHandler InstanceListUpdated;
        public event InstallImageProgressHandler InstallImageProgress;
        public event CreateInstanceCompletedHandler CreateInstanceCompleted;
        public event InstanceHandler InstanceConfigurationChanged;
        public event AppHandler AppDisplayed;
        public event AccountListUpdatedHandler AccountListUpdated;

        /// <summary>Gets what a handler threw, which goes no further.</summary>
        public event Action<Exception> HandlerFailed;

        /// <summary>Starts the event server. A second call changes nothing.</summary>
        public void Listen()
        {
            Check();
            if (listening) return;
            listening = true;
            AppDomain.CurrentDomain.ProcessExit += OnProcessExit;
            Native.bridgeRegisterCallbacks(
                Keep<Native.bridgeOnAppInstalled>((instance, package, activity, appLabel, versionCode,
                                                   versionName, iconFilePath, isUpdate) =>
                    Guard(AppInstalled, handler => handler(new AppInstalled
                    {
                        Instance = Utf8.Text(instance),
                        Package = Utf8.Text(package),
                        Activity = Utf8.Text(activity),
                        AppLabel = Utf8.Text(appLabel),
                        VersionCode = versionCode,
                        VersionName = Utf8.Text(versionName),
                        IconFilePath = Utf8.Text(iconFilePath),
                        IsUpdate = isUpdate != 0,
                    }))),
                Keep<Native.bridgeOnAppUninstalled>((instance, package) =>
                    Guard(AppUninstalled, handler => handler(Utf8.Text(instance), Utf8.Text(package)))),
                Keep<Native.bridgeOnApkInstallCompleted>((instance, status, apkFilePath) =>
                    Guard(ApkInstallCompleted,
                          handler => handler(Utf8.Text(instance), status, Utf8.Text(apkFilePath)))),
                Keep<Native.bridgeOnInstanceListUpdated>(() =>
                    Guard(InstanceListUpdated, handler => handler())),
                Keep<Native.bridgeInstallImageProgress>((imageName, status, progress) =>
                    Guard(InstallImageProgress, handler => handler(Utf8.Text(imageName), status, progress))),
                Keep<Native.bridgeOnCreateInstanceCompleted>((status, instance) =>
                    Guard(CreateInstanceCompleted, handler => handler(status, Utf8.Text(instance)))),
                Keep<Native.bridgeOnInstanceConfigurationChanged>(instance =>
                    Guard(InstanceConfigurationChanged, handler => handler(Utf8.Text(instance)))),
                Keep<Native.bridgeOnAppDisplayed>((instance, package) =>
                    Guard(AppDisplayed, handler => handler(Utf8.Text(instance), Utf8.Text(package)))),
                Keep<Native.bridgeOnAccountListUpdated>((instance, emailId, action) =>
                    Guard(AccountListUpdated,
                          handler => handler(Utf8.Text(instance), Utf8.Text(emailId), action))));
        }

        /// <summary>The instances as JSON, as bridge.h describes it.</summary>
        public string InstancesJson()
        {
            Check();
            return Taken("bridgeConfGetInstances", Native.bridgeConfGetInstances());
        }
        /// <summary>The apps of an instance as JSON, as bridge.h describes it.</summary>
        public string AppsJson(string instance)
        {
            Check();
            return Taken("bridgeGetInstalledApps",
                         Native.bridgeGetInstalledApps(Utf8.Bytes(instance, "instance")));
        }

        public void LaunchApp(string instance, string package)
        {
            Check();
            Require("bridgeLaunchApp", Native.bridgeLaunchApp(
                Utf8.Bytes(instance, "instance"), Utf8.Bytes(package, "package")));
        }
        public void LaunchAppStore(string instance, string store, string package)
        {
            Check();
            Require("bridgeLaunchAppStore", Native.bridgeLaunchAppStore(Utf8.Bytes(instance, "instance"),
                Utf8.Bytes(store, "store"), Utf8.Bytes(package, "package")));
        }
        public void LaunchUrl(string instance, string url)
        {
            Check();
            Require("bridgeLaunchUrl", Native.bridgeLaunchUrl(
                Utf8.Bytes(instance, "instance"), Utf8.Bytes(url, "url")));
        }
        public void InstallApk(string instance, string apkFilePath)
        {
            Check();
            Require("bridgeInstallApk", Native.bridgeInstallApk(
                Utf8.Bytes(instance, "instance"), Utf8.Bytes(apkFilePath, "apkFilePath")));
        }
        public void UninstallApp(string instance, string package)
        {
            Check();
            Require("bridgeUninstallApp", Native.bridgeUninstallApp(
                Utf8.Bytes(instance, "instance"), Utf8.Bytes(package, "package")));
        }
        public void InstallImage(string imageName)
        {
            Check();
            Require("bridgeInstallImage", Native.bridgeInstallImage(Utf8.Bytes(imageName, "imageName")));
        }
        /// <summary>Creates an instance; ram in MiB.</summary>
        public void CreateFreshInstance(string imageName, int cpu, int ram, string graphicEngine,
                                        string graphicRenderer, string deviceProfile)
        {
            Check();
            Require("bridgeCreateFreshInstance", Native.bridgeCreateFreshInstance(
                Utf8.Bytes(imageName, "imageName"), Decimal(cpu), Decimal(ram),
                Utf8.Bytes(graphicEngine, "graphicEngine"), Utf8.Bytes(graphicRenderer, "graphicRenderer"),
                Utf8.Bytes(deviceProfile, "deviceProfile")));
        }

        public void ShutdownPlayer(string instance, bool flag)
        {
            Check();
            Require("bridgePlrShutdown", Native.bridgePlrShutdown(
                Utf8.Bytes(instance, "instance"), flag ? (byte)1 : (byte)0));
        }
        /// <summary>Asks the multi-instance manager and every player to shut down.</summary>
        public void Shutdown()
        {
            Check();
            Native.bridgeShutdown();
        }

        internal void Check()
        {
            if (disposed) throw new ObjectDisposedException("QXBridge.Session");
        }

        internal static void Require(string operation, int code)
        {
            if (code != Result.Success) throw new BridgeException(operation, code);
        }

        /// <summary>A copy of a text of the library's, which gets it back.</summary>
        internal static string Taken(string operation, IntPtr memory)
        {
            if (memory == IntPtr.Zero) throw new BridgeException(operation, Result.Failure);
            try
            {
                return Utf8.Text(memory);
            }
            finally
            {
                Native.bridgeFreeMemory(memory);
            }
        }

        private static byte[] Decimal(int number)
        {
            return Utf8.Bytes(number.ToString(System.Globalization.CultureInfo.InvariantCulture), "number");
        }

        private static T Keep<T>(T callback) where T : class
        {
            lock (Kept) Kept.Add((Delegate)(object)callback);
            return callback;
        }

        // No exception may reach the library's thread. One handler's does not keep the next from
        // its call.
        private void Guard<T>(T handlers, Action<T> call) where T : class
        {
            if (handlers == null) return;
            isEventThread = true;
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
                // The report's own failure has nowhere to go.
            }
        }
    }
}
