// The exceptions of the binding, besides those of the base library.

using System;
using System.Collections.Generic;
using System.Linq;

namespace QXBridge
{
    /// <summary>A function of the library returned a code other than 0, or no text.</summary>
    public sealed class BridgeException : Exception
    {
        private const int WindowsErrors = 100000;

        internal BridgeException(string operation, int code, string file, string logPath)
            : base(Describe(operation, code, file, logPath))
        {
            Operation = operation;
            Code = code;
            Name = NameOf(code);
            Text = TextOf(code);
            File = file;
            LogPath = logPath;
        }

        /// <summary>The name of the function in bridge.h.</summary>
        public string Operation { get; private set; }
        /// <summary>The code that it returned. Result has names for some.</summary>
        public int Code { get; private set; }
        /// <summary>The code's name, such as "XERR_NOENT"; empty for a Windows error.</summary>
        public string Name { get; private set; }
        /// <summary>The text of the code, such as "no such file or folder".</summary>
        public string Text { get; private set; }
        /// <summary>The file of the operation; null when there is none.</summary>
        public string File { get; private set; }
        /// <summary>The path of the library's log; empty for standard output.</summary>
        public string LogPath { get; private set; }

        private static string Describe(string operation, int code, string file, string logPath)
        {
            string name = NameOf(code);
            return operation + " failed with " + code + " (" + (name.Length == 0 ? "" : name + ": ") +
                TextOf(code) + ")" + (file == null ? "" : " for " + file) +
                Places.LogHint(logPath);
        }

        private static string NameOf(int code)
        {
            return Tables.Codes.Where(one => one.Number == code).Select(one => one.Name)
                .FirstOrDefault() ?? "";
        }

        private static string TextOf(int code)
        {
            if (code >= WindowsErrors) return "Windows error " + (code - WindowsErrors);
            return Tables.Codes.Where(one => one.Number == code).Select(one => one.Text)
                .FirstOrDefault() ?? "unknown code";
        }
    }

    /// <summary>A key, instance or value with which the library would end the process, or which it would
    /// wrongly accept. The library was not called.</summary>
    public sealed class KeyException : ArgumentException
    {
        internal KeyException(string message, string key, string suggestion) : base(message)
        {
            Key = key;
            Suggestion = suggestion;
        }

        /// <summary>The key or instance that caused the error.</summary>
        public string Key { get; private set; }
        /// <summary>The nearest known name; null when none is near.</summary>
        public string Suggestion { get; private set; }
    }

    /// <summary>A reason for which the library would not start, and its remedy.</summary>
    public sealed class Problem
    {
        internal Problem(string what, string remedy)
        {
            What = what;
            Remedy = remedy;
        }

        /// <summary>What is wrong.</summary>
        public string What { get; private set; }
        /// <summary>How to correct it.</summary>
        public string Remedy { get; private set; }

        /// <summary>"what: remedy".</summary>
        public override string ToString()
        {
            return What + ": " + Remedy;
        }
    }

    /// <summary>A check before the start failed. The library was not started.</summary>
    public sealed class PreflightException : Exception
    {
        internal PreflightException(IList<Problem> problems) : base(string.Join("\n", problems))
        {
            Problems = problems;
        }

        /// <summary>All problems.</summary>
        public IList<Problem> Problems { get; private set; }
    }

    /// <summary>This process receives no events: another process receives those of this client, or none
    /// does.</summary>
    public sealed class ListenException : Exception
    {
        internal ListenException(string message, int processId) : base(message)
        {
            ProcessId = processId;
        }

        /// <summary>The process that receives the events; 0 when it is not known.</summary>
        public int ProcessId { get; private set; }
    }

    /// <summary>More events arrived than a stream can buffer. The buffered ones were delivered.</summary>
    public sealed class EventOverflowException : Exception
    {
        internal EventOverflowException(int limit)
            : base("more than " + limit + " events were waiting: the stream has ended")
        {
            Limit = limit;
        }

        /// <summary>The size of the stream's buffer.</summary>
        public int Limit { get; private set; }
    }
}
