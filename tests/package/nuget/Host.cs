// A host of the package for .NET, which names its folders itself:
//     host.dll DATA-FOLDER
// It prints the instances, and where in the sources a failure came from.

using System;
using System.IO;
using QXBridge;

static class Host
{
    static void Main(string[] arguments)
    {
        Console.SetOut(new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true, NewLine = "\n" });
        Session.UseFolders(arguments[0], @"C:\None");
        using (var session = new Session(Client.Helper))
        {
            foreach (Instance one in session.Instances()) Console.WriteLine(one.Name + " " + one.DisplayName);
            try
            {
                session.LaunchApp("Nougat64", "com.example.app");
            }
            catch (BridgeException exception)
            {
                Console.WriteLine(exception.File + "\n" + exception.StackTrace);
            }
        }
    }
}
