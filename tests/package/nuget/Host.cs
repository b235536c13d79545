// A host of the package for .NET, which sets its folders itself:
//     host.dll DATA-FOLDER
// It prints the instances, and the source line of a failure.

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
