// A small host in C#: example.exe [EVENTS], beside QX-Bridge.dll
// Lists the instances, reads a setting, waits for EVENTS events (default 0), and ends.
// Compile it together with the files of bindings/csharp, for 64-bit Windows:
//     csc -platform:x64 -out:example.exe Program.cs ..\..\bindings\csharp\*.cs

using System;
using System.IO;
using System.Text;
using System.Threading;
using System.Threading.Tasks;
using QXBridge;

static class Program
{
    // Otherwise .NET prints "?" for characters that the console's code page lacks.
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

    static void PrintInstances(Session session)
    {
        foreach (Instance one in session.Instances())
            Console.WriteLine("instance {0} {1}", one.Name, one.DisplayName);
        Console.WriteLine("locale " + session.Conf.Get(Keys.Global.Locale));
    }

    // Handlers such as Session.AppInstalled are the alternative to a stream.
    static async Task PrintEvents(Session session, int count)
    {
        using (EventStream stream = session.Events(EventKind.AppInstalled, EventKind.AppDisplayed))
        using (var limit = new CancellationTokenSource(TimeSpan.FromSeconds(30)))
        {
            await session.ListenAsync(limit.Token);
            Console.WriteLine("listening");
            for (; count > 0; --count) Print(await stream.ReadAsync(limit.Token));
        }
    }

    static void Print(BridgeEvent one)
    {
        var installed = one as AppInstalled;
        if (installed != null)
            Console.WriteLine("installed {0} {1}: {2} {3}", installed.Instance, installed.Package,
                              installed.AppLabel, installed.VersionName);
        var displayed = one as AppDisplayed;
        if (displayed != null) Console.WriteLine("displayed {0} {1}", displayed.Instance, displayed.Package);
    }

    static int Failed(string what, Exception exception)
    {
        Console.Error.WriteLine(what + ": " + exception.Message);
        return 1;
    }

    static int Main(string[] arguments)
    {
        int events = arguments.Length > 0 ? int.Parse(arguments[0]) : 0;
        PrintUtf8();
        try
        {
            using (var session = new Session(Client.Helper))
            {
                PrintInstances(session);
                PrintEvents(session, events).GetAwaiter().GetResult();
            }
        }
        catch (PreflightException exception)
        {
            return Failed("the library would not start", exception);
        }
        catch (BridgeException exception)
        {
            return Failed("the library does not start", exception);
        }
        catch (ListenException exception)
        {
            return Failed("no event will come", exception);
        }
        Console.WriteLine("finished");
        return 0;
    }
}
