// System queries that tests replace: the product's registry values, whether a log can be opened, and the
// server of a pipe.

using System;
using System.Diagnostics;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

namespace QXBridge
{
    /// <summary>The server of a pipe: its process, or the error of finding it.</summary>
    internal struct PipeServer
    {
        internal int ProcessId; // 0 when not known
        internal int Error;     // a Windows error; 0 when the process is known
    }

    internal class Machine
    {
        internal static Machine Current = new Machine();

        internal static readonly IntPtr LocalMachine = new IntPtr(unchecked((int)0x80000002));
        private static readonly IntPtr Invalid = new IntPtr(-1);

        internal const string ProductKey = @"SOFTWARE\Vantrel_nvo";
        private const uint QueryThe64BitView = 0x0001 | 0x0100;
        private const uint TextType = 1;

        private const int LongPath = 248;
        private const uint AppendData = 0x0004;
        private const uint ShareAll = 0x0001 | 0x0002 | 0x0004;
        private const uint CreateNew = 1, OpenExisting = 3;
        private const uint ReadAndWrite = 0xC0000000, Delete = 0x00010000;
        private const uint DeleteOnClose = 0x04000000;
        // The server cannot identify the user.
        private const uint Anonymously = 0x00100000;

        internal const int FileNotFound = 2;
        private const int PipeBusy = 231;
        private const int TryAgainAfter = 5; // milliseconds

        /// <summary>A text of the product's key, read as the library reads it; empty when there is
        /// none.</summary>
        internal virtual string ProductText(string name)
        {
            IntPtr key;
            try
            {
                if (Native.RegOpenKeyExW(LocalMachine, ProductKey, 0, QueryThe64BitView, out key) != 0)
                    return "";
            }
            catch (DllNotFoundException) // a system without a registry
            {
                return "";
            }
            try
            {
                return TextOf(key, name);
            }
            finally
            {
                Native.RegCloseKey(key);
            }
        }

        private static string TextOf(IntPtr key, string name)
        {
            uint type, size = 0;
            if (Native.RegQueryValueExW(key, name, IntPtr.Zero, out type, null, ref size) != 0) return "";
            byte[] bytes = new byte[size];
            if (Native.RegQueryValueExW(key, name, IntPtr.Zero, out type, bytes, ref size) != 0) return "";
            return type == TextType ? Encoding.Unicode.GetString(bytes, 0, (int)size).TrimEnd('\0') : "";
        }

        /// <summary>Opens an existing file for appending, with the sharing of the library's log. Returns 0
        /// or the Windows error.</summary>
        internal virtual int TryToAppend(string path)
        {
            return TryToOpen(path, AppendData, OpenExisting, 0);
        }

        /// <summary>Creates a file in a folder and deletes it again. Returns 0 or the Windows
        /// error.</summary>
        internal virtual int TryToCreateIn(string folder)
        {
            string path = Path.Combine(folder, "preflight-" + Guid.NewGuid().ToString("N"));
            return TryToOpen(path, AppendData | Delete, CreateNew, DeleteOnClose);
        }

        private static int TryToOpen(string path, uint access, uint disposition, uint flags)
        {
            IntPtr file = Native.CreateFileW(WindowsPath(path), access, ShareAll, IntPtr.Zero,
                                             disposition, flags, IntPtr.Zero);
            if (file == Invalid) return Marshal.GetLastWin32Error();
            Native.CloseHandle(file);
            return 0;
        }

        // Windows accepts long paths only in this form, which the library uses too.
        private static string WindowsPath(string path)
        {
            string full = Path.GetFullPath(path);
            if (full.Length < LongPath || full.StartsWith(@"\\?\", StringComparison.Ordinal)) return full;
            bool isShare = full.StartsWith(@"\\", StringComparison.Ordinal);
            return isShare ? @"\\?\UNC" + full.Substring(1) : @"\\?\" + full;
        }

        internal virtual int OwnProcessId
        {
            get { return (int)Native.GetCurrentProcessId(); }
        }

        /// <summary>The server of a pipe. Waits up to the limit while there is none.</summary>
        internal virtual PipeServer ServerOf(string pipe, TimeSpan limit)
        {
            Stopwatch waited = Stopwatch.StartNew();
            for (;;)
            {
                IntPtr handle = Native.CreateFileW(pipe, ReadAndWrite, 0, IntPtr.Zero, OpenExisting,
                                                   Anonymously, IntPtr.Zero);
                if (handle != Invalid) return ServerOf(handle);
                int error = Marshal.GetLastWin32Error();
                bool mayCome = error == FileNotFound || error == PipeBusy;
                if (!mayCome || waited.Elapsed >= limit) return new PipeServer { Error = error };
                if (error != PipeBusy || !Native.WaitNamedPipeW(pipe, 100)) Thread.Sleep(TryAgainAfter);
            }
        }

        private static PipeServer ServerOf(IntPtr handle)
        {
            try
            {
                uint processId;
                if (Native.GetNamedPipeServerProcessId(handle, out processId))
                    return new PipeServer { ProcessId = (int)processId };
                return new PipeServer { Error = Marshal.GetLastWin32Error() };
            }
            finally
            {
                Native.CloseHandle(handle);
            }
        }
    }
}
