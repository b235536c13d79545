// What the C# binding checks before it starts the library.

using System;
using System.IO;
using System.Linq;
using QXBridge;

static class PreflightTests
{
    static DataFolder data;
    static FakeMachine machine;

    // Each test starts with a data folder without problems.
    internal static void Run()
    {
        Check.Run(typeof(PreflightTests), test =>
        {
            using (data = new DataFolder())
            {
                machine = new FakeMachine(data.Path);
                test();
            }
        });
    }

    static string[] Found(Client client = Client.Helper, bool noConfFile = false, string log = null)
    {
        return Session.Preflight(client, noConfFile, log).Select(one => one.What).ToArray();
    }

    static void Finds(string what, Client client = Client.Helper, bool noConfFile = false, string log = null)
    {
        Check.Equal(what, string.Join("\n", Found(client, noConfFile, log)));
    }

    public static void NothingIsWrong()
    {
        foreach (Client client in Enum.GetValues(typeof(Client))) Finds("", client);
        Check.Equal("create in " + data.Of("Logs"), machine.Tried.Distinct().Single());
        machine.Tried.Clear();
        File.WriteAllText(data.LogPath, "before\n");
        Finds("");
        Check.Equal("append " + data.LogPath, machine.Tried.Single());
    }

    public static void TheRegistryValue()
    {
        const string Value =
            "the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo \"UserDefinedDir\" is missing";
        machine.Registry["UserDefinedDir"] = "";
        Finds(Value, Client.Launcher);
        machine.Registry.Clear();
        Finds(Value, Client.Launcher);
        Check.Equal(Value + ": install the product, or set it to a data folder (reg add " +
                    "HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d C:\\Data)",
                    Session.Preflight(Client.Helper).Single().ToString());
    }

    public static void TheDataFolder()
    {
        machine.Registry["UserDefinedDir"] = data.Of("none");
        Finds("the data folder " + data.Of("none") + " does not exist", Client.Launcher);
    }

    public static void TheLogFolder()
    {
        Directory.Delete(data.Of("Logs"));
        Finds("the folder " + data.Of("Logs") + " does not exist");
        Check.Equal(0, machine.Tried.Count);
        Finds("", log: data.Of("own.log"));
    }

    public static void TheLog()
    {
        machine.OpenError = 5;
        string what = "the log " + data.LogPath + " cannot be opened (Windows error 5)";
        Finds(what);
        File.WriteAllText(data.LogPath, "");
        machine.OpenError = 32;
        Finds(what.Replace("error 5", "error 32"));
    }

    public static void ALogOfItsOwn()
    {
        string own = data.Of("new") + "/own.log"; // "/" creates no folder
        Finds("the log " + own + " cannot be opened (Windows error 3)", log: own);
        Finds("", log: "");
        Check.Equal(0, machine.Tried.Count);
        Finds("", log: data.Of("own.log"));
        Finds("", log: "own\\name.log");
        Check.Equal("create in " + data.Path + "\ncreate in " + Directory.GetCurrentDirectory(),
                    string.Join("\n", machine.Tried));
    }

    public static void TheConfiguration()
    {
        File.WriteAllBytes(data.ConfPath, new byte[] { 0xEF, 0xBB, 0xBF, (byte)'v' });
        Finds("the configuration file " + data.ConfPath + " begins with a byte order mark");
        File.WriteAllBytes(data.ConfPath, new byte[] { 0xEF, 0xBB });
        Finds("");
        File.Delete(data.ConfPath);
        Finds("the configuration file " + data.ConfPath + " does not exist");
        Finds("", noConfFile: true);
        Directory.CreateDirectory(data.ConfPath);
        Finds("the configuration file " + data.ConfPath + " cannot be read");
    }

    public static void TheVersionOfALauncher()
    {
        machine.Registry["Version"] = "5.1";
        Finds("");
        Finds("the product's version is \"5.1\", and the library's is \"" + Tables.Version + "\"",
              Client.Launcher);
        machine.Registry.Remove("Version");
        Finds("the product's version is \"\", and the library's is \"" + Tables.Version + "\"",
              Client.Launcher);
    }

    public static void SeveralProblems()
    {
        machine.Registry["Version"] = "5.1";
        Directory.Delete(data.Of("Logs"));
        File.Delete(data.ConfPath);
        Check.Equal("Logs does not exist|vantrel.conf does not exist|the product's version is \"5.1\"",
            string.Join("|", Found(Client.Launcher).Select(
                (what, i) => i < 2 ? what.Substring(what.LastIndexOf(data.Path) + data.Path.Length + 1)
                                   : what.Split(',')[0])));
    }

    // Without the file, and with its own log, a host needs no data folder.
    public static void WithoutTheFileAndWithALogOfItsOwn()
    {
        machine.Registry.Clear();
        Finds("", Client.Helper, true, data.Of("own.log"));
        Check.Equal(1, Found(Client.Helper, true).Length);
        Check.Equal(1, Found(Client.Helper, false, data.Of("own.log")).Length);
    }

    public static void ASessionDoesNotStart()
    {
        Directory.Delete(data.Of("Logs"));
        File.Delete(data.ConfPath);
        PreflightException refused =
            Check.Throws<PreflightException>(() => new Session(Client.Helper));
        Check.Equal(2, refused.Problems.Count);
        Check.Equal(refused.Problems[0] + "\n" + refused.Problems[1], refused.Message);
        Check.Throws<PreflightException>(() => new Session(Client.Helper, false, null));
        Check.Called();
    }
}
