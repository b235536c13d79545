// A small host in C#: example.exe [EVENTS], beside QX-Bridge.dll
// Lists the instances, reads a setting, waits for so many events (none without the number), ends.
// Compile it together with the files of bindings/csharp, for 64 bits.

using System;
using System.IO;
using System.Text;
using System.Threading;
using QXBridge;

static class Program
{
    // What the console's code page lacks would be printed as "?".
    static void PrintUtf8()
    {
        try
        {
            Console.OutputEncoding = new UTF8Encoding(false);
        }
        catch (IOException) // there is no console
        {
            Console.SetOut(new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true });
        }
    }

    static int Main(string[] arguments)
    {
        int events = arguments.Length > 0 ? int.Parse(arguments[0]) : 0;
        PrintUtf8();
        try
        {
            using (var arrived = new SemaphoreSlim(0))
            using (var session = new Session(Client.Helper))
            {
                Console.WriteLine("instances " + session.InstancesJson());
                Console.WriteLine("locale " + session.Conf.GetString("vtr.locale"));

                // Handlers run on the library's thread.
                session.AppInstalled += app =>
                {
                    Console.WriteLine("installed {0} {1}: {2} {3}", app.Instance, app.Package, app.AppLabel,
                                      app.VersionName);
                    arrived.Release();
                };
                session.AppDisplayed += (instance, package) =>
                {
                    Console.WriteLine("displayed {0} {1}", instance, package);
                    arrived.Release();
                };
                session.Listen();
                Console.WriteLine("listening");
                while (events-- > 0 && arrived.Wait(TimeSpan.FromSeconds(30))) { }
            } // the session ends first: from then on no handler runs
        }
        catch (BridgeException exception)
        {
            Console.Error.WriteLine("the library does not start: " + exception.Message);
            return 1;
        }
        Console.WriteLine("finished");
        return 0;
    }
}
