// Plays the steps of a scenario over the C# binding and the real library, in .NET for Windows:
//     dotnet_scenario.dll LIBRARY DATA-FOLDER INSTALL-FOLDER STEP...
// A step is one argument, its parts joined by tabs. Each prints its outcome; "finished" comes last.
// QX_SCENARIO_VERSION is the product's version.

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
            { "preflight", Preflight }, { "init", Init }, { "get", Get }, { "set", Set },
            { "gettyped", GetTyped }, { "addinstance", AddInstance }, { "commit", Commit },
            { "committofile", CommitToFile }, { "instances", Instances }, { "apps", Apps },
            { "listen", Listen }, { "launch", Launch }, { "installapk", InstallApk },
            { "uninstall", Uninstall }, { "installimage", InstallImage }, { "create", Create },
            { "events", Events }, { "overflow", Overflow }, { "fini", parts => Fini() },
        };
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

    void Init(string[] parts)
    {
        session = new Session(ClientOf(parts[1]));
        Say("started");
    }

    // The type that the catalogue has; a wrong key is the method's to refuse.
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
            case "bool": Say(type, session.Conf.GetBool(key)); break;
            case "i32": Say(type, session.Conf.GetI32(key)); break;
            case "i64": Say(type, session.Conf.GetI64(key)); break;
            case "string": Say(type, session.Conf.GetString(key)); break;
            default: Say(type, string.Join("|", session.Conf.GetMultiString(key))); break;
        }
    }

    void Set(string[] parts)
    {
        string key = parts[1], value = parts.Length > 2 ? parts[2] : "";
        switch (parts.Length > 3 ? parts[3] : TypeOf(key))
        {
            case "bool": session.Conf.SetBool(key, value == "true"); break;
            case "i32": session.Conf.SetI32(key, int.Parse(value, CultureInfo.InvariantCulture)); break;
            case "i64": session.Conf.SetI64(key, long.Parse(value, CultureInfo.InvariantCulture)); break;
            case "string": session.Conf.SetString(key, value); break;
            default: session.Conf.SetMultiString(key, value.Split('|')); break;
        }
        Say("set");
    }

    void GetTyped(string[] parts)
    {
        bool adb = session.Conf.Get(Keys.Global.EnableAdbAccess);
        int dpi = session.Conf.Get(Keys.Instance("Nougat64").Dpi);
        Say("typed", adb, dpi);
    }

    void AddInstance(string[] parts)
    {
        session.Conf.AddInstance(parts.Length > 1 ? parts[1] : "");
        Say("added");
    }

    void Commit(string[] parts)
    {
        session.Conf.Commit();
        Say("committed");
    }

    void CommitToFile(string[] parts)
    {
        session.Conf.CommitToFile(parts[1]);
        Say("committed");
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

    static T Outcome<T>(Work<T> work, string[] parts) where T : BridgeEvent
    {
        TimeSpan limit = parts[parts.Length - 1] == "short" ? Short : Long;
        return work.FinishedAsync(limit).GetAwaiter().GetResult();
    }

    void Launch(string[] parts)
    {
        AppDisplayed shown = Outcome(session.LaunchApp(parts[1], parts[2]), parts);
        Say("displayed", shown.Instance, shown.Package);
    }

    void InstallApk(string[] parts)
    {
        Say("installed", Outcome(session.InstallApk(parts[1], parts[2]), parts).Status);
    }

    void Uninstall(string[] parts)
    {
        Outcome(session.UninstallApp(parts[1], parts[2]), parts);
        Say("uninstalled");
    }

    void InstallImage(string[] parts)
    {
        Say("image", Outcome(session.InstallImage(parts[1]), parts).Status);
    }

    void Create(string[] parts)
    {
        CreateInstanceCompleted created =
            Outcome(session.CreateFreshInstance(parts[1], 2, 2048, "aga", "gl", ""), parts);
        Say("created", created.Status, created.Instance);
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

    void Fini()
    {
        session.Dispose();
        Say("ended");
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
