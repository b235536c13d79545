// Reads vantrel.conf as the library does: key="value" lines, up to the first malformed line.

using System;
using System.Collections.Generic;
using System.IO;
using System.Text;

namespace QXBridge
{
    internal static class ConfFile
    {
        private const int LongestLine = 4096;
        private static readonly UTF8Encoding Encoding = new UTF8Encoding(false);

        /// <summary>The values by key; empty when the file does not exist. Throws IOException or
        /// UnauthorizedAccessException when it cannot be read.</summary>
        internal static Dictionary<string, string> Read(string path)
        {
            if (!File.Exists(path)) return new Dictionary<string, string>();
            return Parse(Bytes(path, int.MaxValue));
        }

        internal static bool BeginsWithAMark(string path)
        {
            byte[] bytes = Bytes(path, 3);
            return bytes.Length == 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF;
        }

        // Opened with every kind of sharing, so that another program's commit can replace the file.
        private static byte[] Bytes(string path, int most)
        {
            using (var file = new FileStream(path, FileMode.Open, FileAccess.Read,
                                             FileShare.ReadWrite | FileShare.Delete))
            {
                byte[] bytes = new byte[Math.Min(file.Length, most)];
                int done = 0;
                for (int got = 1; done < bytes.Length && got > 0; done += got)
                    got = file.Read(bytes, done, bytes.Length - done);
                Array.Resize(ref bytes, done);
                return bytes;
            }
        }

        /// <summary>The last value of a key counts. Stops where a load of the library stops, at the first
        /// malformed line or unknown key.</summary>
        internal static Dictionary<string, string> Parse(byte[] bytes)
        {
            var values = new Dictionary<string, string>();
            for (int start = 0, end; start < bytes.Length; start = end + 1)
            {
                end = Array.IndexOf(bytes, (byte)'\n', start);
                if (end < 0) end = bytes.Length;
                int equals = Array.IndexOf(bytes, (byte)'=', start, end - start);
                if (equals < 0 || end - start > LongestLine) break;
                string key = Encoding.GetString(bytes, start, equals - start);
                Tables.Key declared;
                if (!Catalogue.TryFind(key, out declared)) break;
                values[key] = ValueOf(bytes, equals + 2, end - 1);
            }
            return values;
        }

        // The value is between two characters, usually quotes, and ends at a NUL.
        private static string ValueOf(byte[] bytes, int start, int end)
        {
            if (end <= start) return "";
            int nul = Array.IndexOf(bytes, (byte)0, start, end - start);
            return Encoding.GetString(bytes, start, (nul < 0 ? end : nul) - start);
        }
    }
}
