// The parts of the C# binding that need no library: keys, the configuration file, JSON and messages.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Text;
using QXBridge;

static class PureTests
{
    public static void GlobalKeysKnowTheirProperty()
    {
        Key<bool> adb = Keys.Global.EnableAdbAccess;
        Check.Equal("vtr.enable_adb_access bool 0 False", string.Join(" ", adb, adb.Type, adb.DefaultText,
            adb.Default));
        Check.Equal(60, Keys.Global.MimMaxFps.Default);
        Check.Equal("vtr.mim.max_fps", Keys.Global.MimMaxFps.Text);
        Check.Equal("frames per second", Keys.Global.MimMaxFps.Unit);
        Check.Equal("", Keys.Global.StatusRawMode.DefaultText);
        Check.Equal("Documents|Pictures|InputMapper|VtrSharedFolder",
                    string.Join("|", Keys.Global.SharedFolders.Default));
        Check.Equal("grid", Keys.Global.MimInstanceArrangementLayout.Default);
    }

    public static void InstanceKeysKnowTheirProperty()
    {
        Key<int> dpi = Keys.Instance("Nougat64").Dpi;
        Check.Equal("vtr.instance.Nougat64.dpi i32 240 dots per inch",
                    string.Join(" ", dpi.Text, dpi.Type, dpi.Default, dpi.Unit));
        Check.Equal("vtr.instance.Nougat64.status.adb_port", Keys.Instance("Nougat64").StatusAdbPort.Text);
        Check.Equal(0, Keys.Instance("Nougat64").StatusAdbPort.Default);
        Check.Equal("x86 x64 arm arm64", string.Join(" ", Keys.Instance("Nougat64").AbiList.Allowed));
        Check.Equal(-1, Keys.Instance("Nougat64").BootDuration.Default);
        Check.Throws<ArgumentNullException>(() => Keys.Instance(null));
        Check.Refused("there is no key \"vtr.instance.A.B.dpi\"; did you mean \"vtr.instance.A.dpi\"?",
                      () => GC.KeepAlive(Keys.Instance("A.B").Dpi));
    }

    public static void EveryPropertyHasAKey()
    {
        var texts = new List<string>();
        foreach (object keys in new object[] { Keys.Global, Keys.Instance("I") })
            texts.AddRange(keys.GetType().GetProperties().Select(one => ((Key)one.GetValue(keys)).Text));
        IEnumerable<string> all = Tables.Keys.Select(
            one => (one.Scope == "global" ? "vtr." : "vtr.instance.I.") + one.Name);
        Check.Equal(string.Join("\n", all), string.Join("\n", texts));
    }

    public static void AMistypedKeyIsSuggested()
    {
        Action<string, string> suggests = (key, suggestion) =>
            Check.Refused("there is no key \"" + key + "\"" + suggestion, () => Catalogue.Find(key));
        suggests("vtr.locael", "; did you mean \"vtr.locale\"?");
        suggests("vrt.locale", "; did you mean \"vtr.locale\"?");
        suggests("vtr.Locale", "; did you mean \"vtr.locale\"?");
        suggests("vtr.instance.Nougat64.dpii", "; did you mean \"vtr.instance.Nougat64.dpi\"?");
        suggests("vtr.shared_fol", "");
        suggests("vtr.shared_fold", "; did you mean \"vtr.shared_folders\"?");
        suggests("vtr.lo", "");
        suggests("vtr.lcl", "");
        suggests("", "");
        suggests("vtr.instance.Nougat64", "");
        KeyException refused = Check.Throws<KeyException>(() => Catalogue.Find("vtr.locael"));
        Check.Equal("vtr.locael vtr.locale", refused.Key + " " + refused.Suggestion);
    }

    public static void AWrongTypeIsReported()
    {
        const string Dpi = "vtr.instance.Nougat64.dpi";
        Check.Refused("\"" + Dpi + "\" is an i32, not a bool", () => Catalogue.Find(Dpi, "bool"));
        Check.Refused("\"vtr.locale\" is a string, not an i64", () => Catalogue.Find("vtr.locale", "i64"));
        Check.Refused("\"vtr.shared_folders\" is a multi-string, not a string",
                      () => Catalogue.Find("vtr.shared_folders", "string"));
        Check.Equal("i32", Catalogue.Find(Dpi, "i32").Type);
    }

    static string Parsed(string text)
    {
        return string.Join(";", ConfFile.Parse(Encoding.UTF8.GetBytes(text))
            .Select(one => one.Key.Substring("vtr.".Length) + "=" + one.Value));
    }

    public static void FileIsReadAsTheLibraryReadsIt()
    {
        Check.Equal("", Parsed(""));
        Check.Equal("locale=a;country=Größe", Parsed("vtr.locale=\"a\"\nvtr.country=\"Größe\"\n"));
        Check.Equal("locale=b", Parsed("vtr.locale=\"a\"\nvtr.locale=\"b\"\n"));
        Check.Equal("locale=a=\"b", Parsed("vtr.locale=\"a=\"b\""));
        Check.Equal("locale=a\"", Parsed("vtr.locale=\"a\"\r\n"));
        Check.Equal("locale=;country=", Parsed("vtr.locale=\nvtr.country=\"\n"));
        Check.Equal("locale=a", Parsed("vtr.locale=\"a\0b\"\n"));
        Check.Equal("instance.A_1.dpi=7", Parsed("vtr.instance.A_1.dpi=\"7\"\n"));
    }

    public static void FileEndsAtALineThatDoesNotLoad()
    {
        const string Next = "\nvtr.country=\"c\"\n";
        Check.Equal("locale=a", Parsed("vtr.locale=\"a\"\nno line" + Next));
        Check.Equal("locale=a", Parsed("vtr.locale=\"a\"\n" + Next));
        Check.Equal("locale=a", Parsed("vtr.locale=\"a\"\nvtr.no_such_key=\"b\"" + Next));
        Check.Equal("", Parsed("\uFEFFvtr.locale=\"a\"" + Next));
        string longest = new string('x', 4096 - "vtr.locale=\"\"".Length);
        Check.Equal("locale=" + longest + ";country=c", Parsed("vtr.locale=\"" + longest + "\"" + Next));
        Check.Equal("", Parsed("vtr.locale=\"" + longest + "x\"" + Next));
    }

    public static void NumbersAreReadAsTheLibraryReadsThem()
    {
        Readable("i32", true, "", "0", "-0", "+7", " \t\n7", "12abc", "0000", "99999999999", "-1");
        Readable("i32", false, "abc", " ", "+", "-", "+-7", "0x10", "--7", "٣");
        Readable("bool", true, "0", "1");
        Readable("bool", false, "", "true", "2", " 1", "01");
        Readable("string", true, "abc");
    }

    static void Readable(string type, bool expected, params string[] texts)
    {
        foreach (string text in texts)
            Check.Equal("\"" + text + "\" " + expected, "\"" + text + "\" " + Catalogue.IsReadable(type, text));
    }

    static string Shown(object value)
    {
        var list = value as List<object>;
        if (list != null) return "[" + string.Join(",", list.Select(Shown)) + "]";
        return Convert.ToString(value ?? "null", CultureInfo.InvariantCulture);
    }

    public static void JsonValues()
    {
        Check.Equal("[]", Shown(Json.Read("[ ]")));
        Check.Equal("[1,-2.5,300,0]", Shown(Json.Read(" [1, -2.5,3e2\n,\t0] ")));
        Check.Equal("[True,False,null,[a]]", Shown(Json.Read("[true,false,null,[\"a\"]]")));
        Check.Equal("\"\\/\b\f\n\r\t ü 日 😀",
            Json.Read("\"\\\"\\\\\\/\\b\\f\\n\\r\\t \\u00fc 日 \\ud83d\\uDE00\""));
        JsonObject one = Json.Objects("[{\"a\":\"x\",\"b\":7,\"a\":\"y\"}]").Single();
        Check.Equal("y 7", one.Text("a") + " " + one.Number("b"));
        Check.Throws<FormatException>("JSON: there is no member \"c\"", () => one.Text("c"));
        Check.Throws<FormatException>("JSON: \"b\" is not a text", () => one.Text("b"));
        Check.Throws<FormatException>("JSON: \"a\" is not an integer of 32 bits", () => one.Number("a"));
        Check.Throws<FormatException>(() => Json.Objects("[{\"a\":2147483648}]")[0].Number("a"));
        Check.Throws<FormatException>(() => Json.Objects("[1]"));
        Check.Throws<FormatException>(() => Json.Objects("{}"));
    }

    public static void MalformedJson()
    {
        foreach (string text in new[] {
            "", "[", "[1", "[1,]", "[,1]", "{\"a\"}", "{\"a\":}", "{a:1}", "tru", "nul", "01", "1.", "1e", "-",
            "+1", "\"a", "\"\\x\"", "\"\\u12\"", "\"\\u12g4\"", "\"\n\"", "1 2", "[1}", "'a'", "NaN" })
            Check.Equal(text, Check.Throws<FormatException>(() => Json.Read(text)) == null ? "" : text);
        Check.Throws<FormatException>("JSON: cannot be read at character 4", () => Json.Read("[1,]"));
        Check.Throws<FormatException>(() => Json.Read(new string('[', 100000)));
    }

    public static void ErrorsCarryTheirCause()
    {
        var commit = new BridgeException("bridgeConfCommit", 2, "D\\vantrel.conf", "D\\Player.log");
        Check.Equal("bridgeConfCommit failed with 2 (XERR_NOENT: no such file or folder) for " +
                    "D\\vantrel.conf; the log D\\Player.log has the cause", commit.Message);
        Check.Equal("bridgeConfCommit 2 XERR_NOENT no such file or folder D\\vantrel.conf D\\Player.log",
            string.Join(" ", commit.Operation, commit.Code, commit.Name, commit.Text, commit.File,
                commit.LogPath));
        Check.Equal("f failed with 100740 (Windows error 740); the log has the cause",
                    new BridgeException("f", 100740, null, "").Message);
        Check.Equal("", new BridgeException("f", 100740, null, "").Name);
        Check.Equal("f failed with 5000 (unknown code); the log L has the cause",
                    new BridgeException("f", 5000, null, "L").Message);
    }
}
