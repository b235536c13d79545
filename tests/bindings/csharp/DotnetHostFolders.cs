// Scenarios of the host in which it names its folders itself.

using System;
using System.Collections.Generic;
using System.ComponentModel;
using System.Linq;
using System.Runtime.InteropServices;
using Microsoft.Win32;
using QXBridge;

static partial class DotnetHost
{
    static readonly IntPtr CurrentUser = new IntPtr(unchecked((int)0x80000001));

    [DllImport("kernel32.dll")] static extern uint GetCurrentProcessId();
    [DllImport("advapi32.dll")] static extern int RegOverridePredefKey(IntPtr root, IntPtr key);

    static void SayLocalMachine()
    {
        Say("below HKEY_LOCAL_MACHINE:", string.Join("|", Registry.LocalMachine.GetSubKeyNames()));
        using (RegistryKey product = Registry.LocalMachine.OpenSubKey(@"SOFTWARE\Vantrel_nvo"))
        {
            foreach (string name in product.GetValueNames().OrderBy(one => one, StringComparer.Ordinal))
                SayFields(name, product.GetValueKind(name), product.GetValue(name));
        }
    }

    static void SayListing()
    {
        using (var session = new Session(Self))
        {
            foreach (Instance one in session.Instances()) Say("instance", one.Name, one.DisplayName);
        }
    }

    static void SayOwnKey()
    {
        using (RegistryKey own = Registry.CurrentUser.OpenSubKey(@"Software\QX-Bridge\Development-" + OwnId))
            Say(own == null ? "no key" : "key with " + string.Join("|", own.GetSubKeyNames()));
    }

    static void FoldersTwice(string dataFolder, string installFolder)
    {
        Session.UseFolders(dataFolder + "-other", @"C:\Other");
        Session.UseFolders(dataFolder, installFolder);
        SayLocalMachine();
    }

    static void FoldersAfterTheStart(string dataFolder, string installFolder)
    {
        using (new Session(Self)) SayRefusalOfFolders(dataFolder, installFolder);
        SayRefusalOfFolders(dataFolder, installFolder);
    }

    static void SayRefusalOfFolders(string dataFolder, string installFolder)
    {
        try
        {
            Session.UseFolders(dataFolder, installFolder);
            Say("no refusal");
        }
        catch (InvalidOperationException exception)
        {
            Say(exception.Message);
        }
        catch (ArgumentNullException exception)
        {
            Say("null:", exception.ParamName);
        }
        catch (Win32Exception exception)
        {
            Say(exception.NativeErrorCode, exception.Message.Replace(OwnId, "ID"));
        }
    }

    static string OwnId
    {
        get { return GetCurrentProcessId().ToString(); }
    }

    // In a HKEY_CURRENT_USER that is deleted nothing can be made.
    static void FoldersWithoutAUser(string dataFolder, string installFolder)
    {
        string name = @"Software\QXBridgeTests\no-user-" + OwnId;
        using (RegistryKey gone = Registry.CurrentUser.CreateSubKey(name, true, RegistryOptions.Volatile))
        {
            Registry.CurrentUser.DeleteSubKey(name);
            RegOverridePredefKey(CurrentUser, gone.Handle.DangerousGetHandle());
            SayRefusalOfFolders(dataFolder, installFolder);
            RegOverridePredefKey(CurrentUser, IntPtr.Zero);
        }
        Say("version of Windows", Registry.LocalMachine.OpenSubKey(
            @"SOFTWARE\Microsoft\Windows NT\CurrentVersion").GetValue("CurrentVersion") != null);
    }

    static bool PlayFolders(string scenario, string dataFolder, string installFolder)
    {
        var scenarios = new Dictionary<string, Action>
        {
            { "folders", SayLocalMachine },
            { "folders of a session", SayListing },
            { "key of the folders", SayOwnKey },
            { "folders twice", () => FoldersTwice(dataFolder, installFolder) },
            { "folders after the start", () => FoldersAfterTheStart(dataFolder, installFolder) },
        };
        var refusals = new Dictionary<string, Action>
        {
            { "no data folder", () => SayRefusalOfFolders(null, installFolder) },
            { "no install folder", () => SayRefusalOfFolders(dataFolder, null) },
            { "folders without a user", () => FoldersWithoutAUser(dataFolder, installFolder) },
        };
        Action play;
        if (refusals.TryGetValue(scenario, out play))
        {
            play();
            return true;
        }
        if (!scenarios.TryGetValue(scenario, out play)) return false;
        Session.UseFolders(dataFolder, installFolder);
        play();
        return true;
    }
}
