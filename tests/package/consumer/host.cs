using System;
using QXBridge;

static class Host
{
    static void Main(string[] arguments)
    {
        Session.Load(arguments[0]);
        using (var session = new Session(Client.Helper)) Console.WriteLine(session.InstancesJson());
    }
}
