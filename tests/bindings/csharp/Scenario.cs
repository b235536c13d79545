// Plays the steps of a scenario with the C# binding and the real library, in .NET for Windows:
//     dotnet_scenario.dll LIBRARY DATA-FOLDER INSTALL-FOLDER STEP...
// Tabs separate the words of a step, which scenarios.txt describes. QX_SCENARIO_VERSION is the product's version.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Threading.Tasks;
using QXBridge;

sealed class Scenario : IDisposable
{
    static readonly StreamWriter Output =
        new StreamWriter(Console.OpenStandardOutput()) { AutoFlush = true, NewLine = "\n" };

    static readonly TimeSpan Short = TimeSpan.FromMilliseconds(100), Long = TimeSpan.FromSeconds(30);

    private readonly Dictionary<string, Action<string[]>> words;
    private Session session;
    private EventStream events, limited, counted; // opened before listening

    Scenario()
    {
        words = new Dictionary<string, Action<string[]>>
        {
            { "preflight", Preflight }, { "get", Get }, { "set", Set }, { "instances", Instances }, { "apps", Apps },
            { "listen", Listen }, { "events", Events }, { "overflow", Overflow },
            { "init", parts => { session = new Session(ClientOf(parts[1])); Say("started"); } },
            { "gettyped", parts => SayTyped(Conf.Get(Keys.Global.EnableAdbAccess),
                                            Conf.Get(Keys.Instance("Nougat64").Dpi)) },
            { "addinstance", parts => { Conf.AddInstance(parts[1]); Say("added"); } },
            { "commit", parts => { Conf.Commit(); Say("committed"); } },
            { "committofile", parts => { Conf.CommitToFile(parts[1]); Say("committed"); } },
            { "launch", parts => SayOutcome(session.LaunchApp(parts[1], parts[2]), parts,
                                            one => "displayed " + one.Instance + " " + one.Package) },
            { "installapk", parts => SayOutcome(session.InstallApk(parts[1], parts[2]), parts,
                                                one => "installed " + one.Status) },
            { "uninstall", parts => SayOutcome(session.UninstallApp(parts[1], parts[2]), parts,
                                               one => "uninstalled") },
            { "installimage", parts => SayOutcome(session.InstallImage(parts[1]), parts, one => "image " + one.Status) },
            { "create", parts => SayOutcome(session.CreateFreshInstance(parts[1], 2, 2048, "aga", "gl", ""), parts,
                                            one => "created " + one.Status + " " + one.Instance) },
            { "fini", parts => { session.Dispose(); Say("ended"); } },
        };
    }

    Configuration Conf
    {
        get { return session.Conf; }
    }

    static void Say(params object[] values)
    {
        Output.WriteLine(string.Join(" ", values.Select(Shown)));
    }

    static string Shown(object value)
    {
        if (value is bool) return (bool)value ? "true" : "false";
        return Convert.ToString(value, CultureInfo.InvariantCulture);
    }

    static void SayFailure(Exception exception)
    {
        var failed = exception as BridgeException;
        if (failed != null) Say("error", failed.Code, failed.Name);
        else if (exception is KeyException) Say("key error", exception.Message);
        else if (exception is TimeoutException) Say("time-out");
        else if (exception is ListenException) Say("listen error");
        else if (exception is PreflightException)
            Say("preflight", ((PreflightException)exception).Problems.Count);
        else Say(exception.GetType().Name, exception.Message);
    }

    void Preflight(string[] parts)
    {
        Client client = parts.Length > 1 ? ClientOf(parts[1]) : Client.Uninstaller;
        IList<Problem> problems = Session.Preflight(client);
        foreach (Problem problem in problems) Say("problem", problem.What);
        if (problems.Count == 0) Say("fine");
    }

    static Client ClientOf(string name)
    {
        return (Client)Enum.Parse(typeof(Client), name);
    }

    // An unknown key is read as a text, which the method refuses.
    static string TypeOf(string key)
    {
        Tables.Key declared;
        return Catalogue.TryFind(key, out declared) ? declared.Type : "string";
    }

    void Get(string[] parts)
    {
        string key = parts[1], type = parts.Length > 2 ? parts[2] : TypeOf(parts[1]);
        switch (type)
        {
            case "bool": Say(type, Conf.GetBool(key)); break;
            case "i32": Say(type, Conf.GetI32(key)); break;
            case "i64": Say(type, Conf.GetI64(key)); break;
            case "string": Say(type, Conf.GetString(key)); break;
            default: Say(type, string.Join("|", Conf.GetMultiString(key))); break;
        }
    }

    void Set(string[] parts)
    {
        string key = parts[1], value = parts.Length > 2 ? parts[2] : "";
        switch (parts.Length > 3 ? parts[3] : TypeOf(key))
        {
            case "bool": Conf.SetBool(key, value == "true"); break;
            case "i32": Conf.SetI32(key, int.Parse(value, CultureInfo.InvariantCulture)); break;
            case "i64": Conf.SetI64(key, long.Parse(value, CultureInfo.InvariantCulture)); break;
            case "string": Conf.SetString(key, value); break;
            default: Conf.SetMultiString(key, value.Split('|')); break;
        }
        Say("set");
    }

    void Instances(string[] parts)
    {
        foreach (Instance one in session.Instances())
            Say("instance", one.Name, one.DisplayName, one.ImageName, one.Ram, one.Cpu);
    }

    void Apps(string[] parts)
    {
        foreach (App one in session.Apps(parts[1])) Say("app", one.Package, one.AppLabel, one.VersionCode);
    }

    void Listen(string[] parts)
    {
        events = session.Events();
        limited = session.Events(2);
        counted = session.Events();
        session.Listen(Long);
        Say("listening");
    }

    static void SayTyped(bool adb, int dpi)
    {
        Say("typed", adb, dpi);
    }

    static void SayOutcome<T>(Work<T> work, string[] parts, Func<T, string> show) where T : BridgeEvent
    {
        TimeSpan limit = parts[parts.Length - 1] == "short" ? Short : Long;
        Say(show(work.FinishedAsync(limit).GetAwaiter().GetResult()));
    }

    static BridgeEvent Next(EventStream stream)
    {
        Task<BridgeEvent> next = stream.ReadAsync();
        Task first = Task.WhenAny(next, Task.Delay(Long)).GetAwaiter().GetResult();
        if (first != next) throw new TimeoutException();
        return next.GetAwaiter().GetResult();
    }

    static string ShownValue(object value)
    {
        if (value is bool) return (bool)value ? "1" : "0";
        if (value is double) return ((double)value).ToString("F3", CultureInfo.InvariantCulture);
        return Shown(value);
    }

    static void SayEvent(BridgeEvent one)
    {
        string name = one.Kind.ToString();
        string line = "event " + char.ToLowerInvariant(name[0]) + name.Substring(1) + " " +
            string.Join("|", one.Values.Select(ShownValue));
        Say(line.TrimEnd(' '));
    }

    void Events(string[] parts)
    {
        for (int i = int.Parse(parts[1]); i > 0; --i) SayEvent(Next(events));
    }

    void Overflow(string[] parts)
    {
        for (int i = 0; i < 5; ++i) Next(counted);
        try
        {
            for (;;) SayEvent(Next(limited));
        }
        catch (EventOverflowException)
        {
            Say("overflow");
        }
    }

    void Play(string step)
    {
        string[] parts = step.Split('\t');
        try
        {
            words[parts[0]](parts);
        }
        catch (Exception exception)
        {
            SayFailure(exception);
        }
    }

    public void Dispose()
    {
        if (session != null) session.Dispose();
    }

    static int Main(string[] arguments)
    {
        Session.Load(arguments[0]);
        string version = Environment.GetEnvironmentVariable("QX_SCENARIO_VERSION");
        Sandbox.Use(arguments[1], arguments[2], version);
        using (var scenario = new Scenario())
        {
            foreach (string step in arguments.Skip(3)) scenario.Play(step);
        }
        Say("finished");
        return 0;
    }
}
