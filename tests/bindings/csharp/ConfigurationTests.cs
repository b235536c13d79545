// Reads, writes and commits, and the refused ones, with the stand-in of the library.

using System;
using QXBridge;

class ConfigurationTests : SessionTests
{
    const string NotAnImage = "\"Pie64\" is not an image; there are Nougat32, Nougat64";

    static void Unreadable<T>(string key, string value, Func<string, T> get)
    {
        Check.Refused("\"" + key + "\" has a value that cannot be read: \"" + value + "\"", () => get(key));
    }

    public static void Reading()
    {
        Check.Equal(false, conf.GetBool("vtr.enable_adb_access"));
        Check.Equal(-2147483647, conf.GetI32("vtr.next_vm_id"));
        Check.Equal("Größe 日本 😀", conf.GetString("vtr.locale"));
        Check.Equal("Bilder|Größe", string.Join("|", conf.GetMultiString("vtr.shared_folders")));
        Check.Throws<ArgumentNullException>(() => conf.GetString(null));
        Check.Throws<ArgumentException>(() => conf.GetString("a\0b"));
        Check.Called("bridgeConfGetBool vtr.enable_adb_access", "bridgeConfGetI32 vtr.next_vm_id",
                     "bridgeConfGetString vtr.locale", "bridgeConfGetMultiString vtr.shared_folders");
    }

    // Only the first read checks whether the instance is loaded.
    public static void ReadingAnInstance()
    {
        Check.Equal("Größe 日本 😀", conf.GetString("vtr.instance.Nougat64.display_name"));
        Check.Equal(-2147483647, conf.GetI32(Dpi));
        Check.Called("bridgeConfGetI32 " + Dpi, "bridgeConfGetString vtr.instance.Nougat64.display_name",
                     "bridgeConfGetI32 " + Dpi);
    }

    public static void ValuesThatWereThereAtTheStartAreChecked()
    {
        Unreadable("vtr.mute_all_instances", "x", conf.GetBool);
        Check.Called();
    }

    public static void ReadingByKeys()
    {
        bool adb = conf.Get(Keys.Global.EnableAdbAccess);
        int dpi = conf.Get(Keys.Instance("Nougat64").Dpi);
        string locale = conf.Get(Keys.Global.Locale);
        string[] folders = conf.Get(Keys.Global.SharedFolders);
        Check.Equal("False -2147483647 Größe 日本 😀 Bilder|Größe",
                    string.Join(" ", adb, dpi, locale, string.Join("|", folders)));
        Check.Called("bridgeConfGetBool vtr.enable_adb_access", "bridgeConfGetI32 " + Dpi,
                     "bridgeConfGetString vtr.locale", "bridgeConfGetMultiString vtr.shared_folders");
        Check.Throws<ArgumentNullException>(() => conf.Get<bool>(null));
        Check.Throws<ArgumentNullException>(() => conf.Set(null, true));
    }

    public static void Writing()
    {
        conf.SetBool("vtr.enable_adb_access", true);
        conf.SetBool("vtr.enable_adb_access", false);
        conf.SetI32("vtr.next_vm_id", int.MinValue);
        conf.SetString("vtr.locale", "第二");
        conf.SetMultiString("vtr.shared_folders", "a", "ü");
        conf.SetMultiString("vtr.shared_folders");
        conf.Commit();
        conf.CommitToFile("C:\\ü.conf");
        Check.Throws<ArgumentException>(() => conf.SetMultiString("vtr.shared_folders", "a,b"));
        Check.Throws<ArgumentNullException>(() => conf.SetMultiString("vtr.shared_folders", "a", null));
        Check.Throws<ArgumentNullException>(() => conf.SetMultiString("vtr.shared_folders", null));
        Check.Throws<ArgumentNullException>(() => conf.SetString("vtr.locale", null));
        Check.Called("bridgeConfSetBool vtr.enable_adb_access 1", "bridgeConfSetBool vtr.enable_adb_access 0",
                     "bridgeConfSetI32 vtr.next_vm_id -2147483648", "bridgeConfSetString vtr.locale 第二",
                     "bridgeConfSetMultiString vtr.shared_folders a,ü",
                     "bridgeConfSetMultiString vtr.shared_folders ",
                     "bridgeConfCommit", "bridgeConfCommitToFile C:\\ü.conf");
    }

    public static void WritingByKeys()
    {
        conf.Set(Keys.Global.EnableAdbAccess, true);
        conf.Set(Keys.Instance("Nougat64").Dpi, 320);
        conf.Set(Keys.Global.Locale, "de-DE");
        conf.Set(Keys.Global.SharedFolders, new[] { "a", "b" });
        Check.Called("bridgeConfSetBool vtr.enable_adb_access 1", "bridgeConfSetI32 " + Dpi + " 320",
                     "bridgeConfSetString vtr.locale de-DE",
                     "bridgeConfSetMultiString vtr.shared_folders a,b");
    }

    public static void FailingWrites()
    {
        Check.fakeAnswer(7);
        Check.Fails("bridgeConfSetBool", 7, () => conf.SetBool("vtr.enable_adb_access", true));
        Check.Fails("bridgeConfSetI32", 7, () => conf.SetI32("vtr.next_vm_id", 1));
        Check.Fails("bridgeConfSetString", 7, () => conf.SetString("vtr.locale", ""));
        Check.Fails("bridgeConfSetMultiString", 7, () => conf.SetMultiString("vtr.shared_folders"));
        string end = "; the log " + data.LogPath + " has the cause";
        Check.Throws<BridgeException>(
            "bridgeConfCommit failed with 7 (XERR_2BIG: too long) for " + data.ConfPath + end, conf.Commit);
        Check.Throws<BridgeException>("bridgeConfCommitToFile failed with 7 (XERR_2BIG: too long) for p" + end,
            () => conf.CommitToFile("p"));
        Check.fakeAnswer(0);
        Check.fakeReset();
    }

    public static void WrongKeysNeverReachTheLibrary()
    {
        Check.Refused("there is no key \"vtr.locael\"; did you mean \"vtr.locale\"?",
                      () => conf.GetString("vtr.locael"), () => conf.SetString("vtr.locael", ""));
        Check.Refused("\"" + Dpi + "\" is an i32, not a bool",
                      () => conf.GetBool(Dpi), () => conf.SetBool(Dpi, true));
        Check.Refused("\"" + Dpi + "\" is an i32, not an i64",
                      () => conf.GetI64(Dpi), () => conf.SetI64(Dpi, 1));
        Check.Refused("\"vtr.locale\" is a string, not a multi-string",
                      () => conf.SetMultiString("vtr.locale", "a"));
        Check.Called();
    }

    public static void UnknownInstancesAreRefused()
    {
        Check.Refused("there is no instance \"nougat64\"; did you mean \"Nougat64\"?",
                      () => conf.GetI32("vtr.instance.nougat64.dpi"),
                      () => conf.SetI32("vtr.instance.nougat64.dpi", 1),
                      () => conf.Set(Keys.Instance("nougat64").Dpi, 1));
        Check.Refused("there is no instance \"\"", () => conf.GetI32("vtr.instance..dpi"));
        Check.Called();
    }

    public static void AnInstanceThatAnotherProgramCreatedIsKnown()
    {
        data.Write(Dpi + "=\"240\"", "vtr.instance.Nougat64_7.dpi=\"240\"");
        conf.SetI32("vtr.instance.Nougat64_7.dpi", 1);
        Check.Called("bridgeConfSetI32 vtr.instance.Nougat64_7.dpi 1");
    }

    public static void AnInstanceThatIsAddedIsKnown()
    {
        Check.Refused("there is no instance \"Nougat32_new\"",
                      () => conf.SetI32("vtr.instance.Nougat32_new.dpi", 1));
        conf.AddInstance("Nougat32_new");
        conf.SetI32("vtr.instance.Nougat32_new.dpi", 1);
        Check.Called("bridgeConfSetI32 vtr.instance.Nougat32_new.dpi 1");
    }

    public static void ImpossibleInstancesAreNotAdded()
    {
        Check.Refused(NotAnImage, () => conf.AddInstance("Pie64"), () => conf.AddInstance("Pie64_1"));
        foreach (string name in new[] { "", "Nougat64_a.b", "Nougat64_a=b", "Nougat64_a\nb", "Nougat64_\0" })
            Check.Refused("\"" + name + "\" cannot be the name of an instance", () => conf.AddInstance(name));
        Check.Throws<ArgumentNullException>(() => conf.AddInstance(null));
        Check.Called();
    }

    // Reading a malformed number would end the process, so another key shows that the instance is loaded.
    public static void AnInstanceIsLookedUpByAReadableNumber()
    {
        data.Write("vtr.instance.Nougat64_8.dpi=\"abc\"", "vtr.instance.Nougat64_8.max_fps=\"abc\"");
        Check.fakeSend(0);  // the library loads the file
        conf.GetString("vtr.instance.Nougat64_8.display_name");
        Check.Called("bridgeConfGetI32 vtr.instance.Nougat64_8.eco_mode_max_fps",
                     "bridgeConfGetString vtr.instance.Nougat64_8.display_name");
    }

    public static void ValuesThatCannotBeReadAreRefused()
    {
        Check.Refused("\"vtr.status.raw_mode\" has no value and no default",
                      () => conf.GetBool("vtr.status.raw_mode"));
        data.Write(Dpi + "=\"abc\"", "vtr.enable_adb_access=\"yes\"", "vtr.status.raw_mode=\"1\"",
                   "vtr.mute_all_instances=\"\"", "vtr.instance.Nougat64_7.dpi=\"240\"");
        Check.fakeSend(0);  // the library loads the file
        Unreadable(Dpi, "abc", conf.GetI32);
        Unreadable("vtr.enable_adb_access", "yes", conf.GetBool);
        Unreadable("vtr.mute_all_instances", "", conf.GetBool);
        Check.Called();
        AnEmptyCommitLoadsNothing();
        conf.GetBool("vtr.status.raw_mode");
        conf.SetI32(Dpi, 7);  // staged, so a read returns it
        conf.GetI32(Dpi);
        conf.SetBool("vtr.feature.macros", true);
        conf.Commit();
        conf.GetBool("vtr.feature.macros");
        conf.GetI32(Dpi);
        Check.Called("bridgeConfGetBool vtr.status.raw_mode", "bridgeConfSetI32 " + Dpi + " 7",
                     "bridgeConfGetI32 " + Dpi, "bridgeConfSetBool vtr.feature.macros 1", "bridgeConfCommit",
                     "bridgeConfGetBool vtr.feature.macros", "bridgeConfGetI32 " + Dpi);
    }

    // The library still has the value that cannot be read.
    static void AnEmptyCommitLoadsNothing()
    {
        conf.Commit();
        data.Write(Dpi + "=\"240\"");
        conf.SetString("vtr.guid", "g");
        conf.SetString("vtr.guid", "");  // the default
        conf.Commit();
        Unreadable(Dpi, "abc", conf.GetI32);
        Check.Called("bridgeConfCommit", "bridgeConfSetString vtr.guid g", "bridgeConfSetString vtr.guid ",
                     "bridgeConfCommit");
    }

    public static void ACommitThatCannotLoadKeepsWhatIsStaged()
    {
        data.Write(Dpi + "=\"240\"");
        conf.SetString("vtr.country", "de");
        Check.fakeAnswer(-1);
        Check.Fails("bridgeConfCommit", -1, conf.Commit);
        Check.fakeAnswer(0);
        data.Write(Dpi + "=\"240\"", "vtr.prefer_dedicated_gpu=\"1\"");
        conf.Commit();
        conf.GetBool("vtr.prefer_dedicated_gpu");
        Check.fakeReset();
    }

    public static void ListingsOfUnknownImagesAreRefused()
    {
        data.Write(Dpi + "=\"240\"", "vtr.instance.Pie64_1.dpi=\"240\"");
        session.InstancesJson();
        Check.Called("bridgeConfGetInstances");
        Check.fakeSend(0);  // the library loads the file
        Check.Refused(NotAnImage, () => session.InstancesJson(), () => session.Instances(),
                      () => GC.KeepAlive(session.InstancesAsync().Result));
        Check.Called();
        data.Write(Dpi + "=\"240\"");
        Check.fakeSend(0);
        session.Instances();
        Check.Called("bridgeConfGetInstances");
    }

    // A commit loads the file, but the binding cannot tell which content it found.
    public static void ACommitMayLoadAnUnknownImage()
    {
        data.Write("vtr.instance.Pie64_1.dpi=\"240\"");
        conf.SetString("vtr.country", "fr");
        conf.Commit();
        Check.Refused(NotAnImage, () => session.InstancesJson());
        data.Write(Dpi + "=\"240\"");
        conf.SetString("vtr.country", "de");
        conf.Commit();
        Check.Refused(NotAnImage, () => session.InstancesJson());
        Check.fakeSend(0);
        session.InstancesJson();
        Check.fakeReset();
    }
}
