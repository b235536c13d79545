using System;
using QXBridge;

static class Host {
    static void Main(string[] arguments) {
        if (Console.IsOutputRedirected) // UTF-8 instead of the console's code page
            Console.SetOut(new System.IO.StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true });
        if (arguments.Length > 0) Session.Load(arguments[0]);
        using (var session = new Session(Client.Helper)) Console.WriteLine(session.InstancesJson());
    }
}
