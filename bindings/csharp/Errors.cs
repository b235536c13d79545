// What the binding throws, beside the base library's own exceptions.

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

        /// <summary>The function, as bridge.h calls it.</summary>
        public string Operation { get; private set; }
        /// <summary>The code that it returned; Result names some.</summary>
        public int Code { get; private set; }
        /// <summary>The code's name, such as "XERR_NOENT"; empty for an error of Windows.</summary>
        public string Name { get; private set; }
        /// <summary>The code in words, such as "no such file or folder".</summary>
        public string Text { get; private set; }
        /// <summary>The file that the operation was about; null where there is none.</summary>
        public string File { get; private set; }
        /// <summary>The library's log; empty when it goes to standard output.</summary>
        public string LogPath { get; private set; }

        private static string Describe(string operation, int code, string file, string logPath)
        {
            string name = NameOf(code);
            return operation + " failed with " + code + " (" + (name.Length == 0 ? "" : name + ": ") +
                TextOf(code) + ")" + (file == null ? "" : " for " + file) +
                Places.WhereTheCauseIs(logPath);
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

    /// <summary>A key, an instance or a value that the library would end the process for, or that it
    /// would take without a complaint. Nothing was called.</summary>
    public sealed class KeyException : ArgumentException
    {
        internal KeyException(string message, string key, string suggestion) : base(message)
        {
            Key = key;
            Suggestion = suggestion;
        }

        /// <summary>The key or the instance that was refused.</summary>
        public string Key { get; private set; }
        /// <summary>What may have been meant; null where nothing is near.</summary>
        public string Suggestion { get; private set; }
    }

    /// <summary>What keeps the library from starting, and what to do about it.</summary>
    public sealed class Problem
    {
        internal Problem(string what, string remedy)
        {
            What = what;
            Remedy = remedy;
        }

        /// <summary>What is wrong.</summary>
        public string What { get; private set; }
        /// <summary>What mends it.</summary>
        public string Remedy { get; private set; }

        /// <summary>"what: remedy".</summary>
        public override string ToString()
        {
            return What + ": " + Remedy;
        }
    }

    /// <summary>The library was not started, since that would have failed or ended the process.</summary>
    public sealed class PreflightException : Exception
    {
        internal PreflightException(IList<Problem> problems) : base(string.Join("\n", problems))
        {
            Problems = problems;
        }

        /// <summary>Everything that was found.</summary>
        public IList<Problem> Problems { get; private set; }
    }

    /// <summary>No event will come: another process serves this client's name, or nobody does.</summary>
    public sealed class ListenException : Exception
    {
        internal ListenException(string message, int processId) : base(message)
        {
            ProcessId = processId;
        }

        /// <summary>The process that has the events; 0 where none is known.</summary>
        public int ProcessId { get; private set; }
    }

    /// <summary>More events came than a stream had room for. Those before were delivered.</summary>
    public sealed class EventOverflowException : Exception
    {
        internal EventOverflowException(int limit)
            : base("more than " + limit + " events were waiting: the stream has ended")
        {
            Limit = limit;
        }

        /// <summary>How many events the stream had room for.</summary>
        public int Limit { get; private set; }
    }
}
