// The registry, files and pipe of a machine, as a test sets them.

using System;
using System.Collections.Generic;
using QXBridge;

sealed class FakeMachine : Machine
{
    internal readonly Dictionary<string, string> Registry = new Dictionary<string, string>();
    internal readonly List<string> Tried = new List<string>();
    internal int OpenError;
    internal PipeServer Server = new PipeServer { ProcessId = 7 };
    internal string Pipe;
    internal TimeSpan Limit;

    internal FakeMachine(string dataFolder)
    {
        Registry["UserDefinedDir"] = dataFolder;
        Registry["InstallDir"] = "C:\\QX\\";
        Registry["Version"] = Tables.Version;
        Current = this;
    }

    internal override string ProductText(string name)
    {
        string text;
        return Registry.TryGetValue(name, out text) ? text : "";
    }

    internal override int TryToAppend(string path)
    {
        Tried.Add("append " + path);
        return OpenError;
    }

    internal override int TryToCreateIn(string folder)
    {
        Tried.Add("create in " + folder);
        return OpenError;
    }

    internal override int OwnProcessId
    {
        get { return 7; }
    }

    internal override PipeServer ServerOf(string pipe, TimeSpan limit)
    {
        Pipe = pipe;
        Limit = limit;
        return Server;
    }
}
