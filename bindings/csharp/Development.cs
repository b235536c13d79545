// Folders for development: gives this process its own HKEY_LOCAL_MACHINE, without administrator rights.

using System;
using System.ComponentModel;
using System.Text;

namespace QXBridge
{
    public sealed partial class Session
    {
        /// <summary>For development: makes this process use these folders instead of those in the registry,
        /// without administrator rights. Call it before the start. The process gets its own
        /// HKEY_LOCAL_MACHINE, a volatile key below HKEY_CURRENT_USER, with UserDefinedDir, InstallDir (which
        /// gets a missing final "\") and this library's Version; an empty folder is left out. The
        /// rest of HKEY_LOCAL_MACHINE is hidden from this process; programs that it starts see the real
        /// one. The key is deleted when the process exits, or, after a fatal error, at the next log-off.
        /// Throws Win32Exception when a Windows function fails, InvalidOperationException after the
        /// start.</summary>
        public static void UseFolders(string dataFolder, string installFolder)
        {
            if (dataFolder == null) throw new ArgumentNullException("dataFolder");
            if (installFolder == null) throw new ArgumentNullException("installFolder");
            lock (Lock)
            {
                if (life != Life.NotStarted)
                    throw new InvalidOperationException("UseFolders() must be called before the start");
                DevelopmentKey.Use(dataFolder, installFolder);
            }
        }
    }

    internal static class DevelopmentKey
    {
        private static readonly IntPtr CurrentUser = new IntPtr(unchecked((int)0x80000001));

        private const uint Volatile = 1;
        private const uint ReadAndWriteThe64BitView = 0x20019 | 0x20006 | 0x0100;
        private const uint TextType = 1;

        // Guarded by Session's lock.
        private static bool goesAtTheEnd;

        private static string Path
        {
            get { return @"Software\QX-Bridge\Development-" + Native.GetCurrentProcessId(); }
        }

        /// <summary>Writes the values first, so that a failure leaves HKEY_LOCAL_MACHINE alone.</summary>
        internal static void Use(string dataFolder, string installFolder)
        {
            Delete(); // of an earlier call, or of a process that had this id
            DeleteAtTheEnd();
            IntPtr root = Create(Path);
            try
            {
                Write(dataFolder, installFolder);
                Require(Native.RegOverridePredefKey(Machine.LocalMachine, root), "RegOverridePredefKey",
                        "HKEY_LOCAL_MACHINE");
            }
            finally
            {
                Native.RegCloseKey(root);
            }
        }

        private static void DeleteAtTheEnd()
        {
            if (goesAtTheEnd) return;
            goesAtTheEnd = true;
            AppDomain.CurrentDomain.ProcessExit += (sender, arguments) => Delete();
        }

        private static void Delete()
        {
            Native.RegDeleteTreeW(CurrentUser, Path);
        }

        private static void Write(string dataFolder, string installFolder)
        {
            string path = Path + @"\" + Machine.ProductKey;
            IntPtr product = Create(path);
            try
            {
                Set(product, path, "UserDefinedDir", dataFolder);
                Set(product, path, "InstallDir", WithBackslash(installFolder));
                Set(product, path, "Version", Tables.Version);
            }
            finally
            {
                Native.RegCloseKey(product);
            }
        }

        private static string WithBackslash(string folder)
        {
            bool isDone = folder.Length == 0 || folder.EndsWith(@"\", StringComparison.Ordinal);
            return isDone ? folder : folder + @"\";
        }

        private static IntPtr Create(string path)
        {
            IntPtr key;
            uint disposition;
            Require(Native.RegCreateKeyExW(CurrentUser, path, 0, null, Volatile, ReadAndWriteThe64BitView,
                                           IntPtr.Zero, out key, out disposition),
                    "RegCreateKeyExW", @"HKEY_CURRENT_USER\" + path);
            return key;
        }

        private static void Set(IntPtr key, string path, string name, string text)
        {
            if (text.Length == 0) return;
            byte[] bytes = Encoding.Unicode.GetBytes(text + "\0");
            Require(Native.RegSetValueExW(key, name, 0, TextType, bytes, (uint)bytes.Length),
                    "RegSetValueExW", @"HKEY_CURRENT_USER\" + path + @"\" + name);
        }

        private static void Require(int error, string operation, string what)
        {
            if (error != 0)
                throw new Win32Exception(error, operation + " for " + what + ": Windows error " + error);
        }
    }
}
