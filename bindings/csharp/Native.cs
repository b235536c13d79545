// The Windows functions that the binding calls, and the conversion of UTF-8 texts.

using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;

namespace QXBridge
{
    internal static partial class Native
    {
        [DllImport("kernel32.dll", CharSet = CharSet.Unicode, SetLastError = true)]
        internal static extern IntPtr LoadLibraryExW(string fileName, IntPtr file, uint flags);
        [DllImport("kernel32.dll", CharSet = CharSet.Unicode, SetLastError = true)]
        internal static extern IntPtr CreateFileW(string path, uint access, uint sharing,
            IntPtr security, uint disposition, uint flags, IntPtr template);
        [DllImport("kernel32.dll", CharSet = CharSet.Unicode, SetLastError = true)]
        internal static extern bool WaitNamedPipeW(string path, uint milliseconds);
        [DllImport("kernel32.dll", SetLastError = true)]
        internal static extern bool GetNamedPipeServerProcessId(IntPtr pipe, out uint processId);
        [DllImport("kernel32.dll")]
        internal static extern bool CloseHandle(IntPtr handle);
        [DllImport("kernel32.dll")]
        internal static extern uint GetCurrentProcessId();
        [DllImport("advapi32.dll", CharSet = CharSet.Unicode)]
        internal static extern int RegOpenKeyExW(IntPtr root, string path, uint options, uint access,
            out IntPtr key);
        [DllImport("advapi32.dll", CharSet = CharSet.Unicode)]
        internal static extern int RegQueryValueExW(IntPtr key, string name, IntPtr reserved,
            out uint type, byte[] data, ref uint size);
        [DllImport("advapi32.dll")]
        internal static extern int RegCloseKey(IntPtr key);
        [DllImport("advapi32.dll", CharSet = CharSet.Unicode)]
        internal static extern int RegCreateKeyExW(IntPtr root, string path, uint reserved, string type,
            uint options, uint access, IntPtr security, out IntPtr key, out uint disposition);
        [DllImport("advapi32.dll", CharSet = CharSet.Unicode)]
        internal static extern int RegSetValueExW(IntPtr key, string name, uint reserved, uint type,
            byte[] data, uint size);
        [DllImport("advapi32.dll", CharSet = CharSet.Unicode)]
        internal static extern int RegDeleteTreeW(IntPtr root, string path);
        [DllImport("advapi32.dll")]
        internal static extern int RegOverridePredefKey(IntPtr root, IntPtr key);
    }

    /// <summary>Converts UTF-8 texts. The marshaller would use the system's code page.</summary>
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
}
