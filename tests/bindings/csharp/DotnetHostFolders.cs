// Scenarios in which the host sets its folders itself.

using System;
using System.Linq;
using System.Runtime.InteropServices;
using Microsoft.Win32;
using QXBridge;

static partial class DotnetHost
{
    static readonly IntPtr CurrentUser = new IntPtr(unchecked((int)0x80000001));

    [DllImport("kernel32.dll")] static extern uint GetCurrentProcessId();
    [DllImport("advapi32.dll")] static extern int RegOverridePredefKey(IntPtr root, IntPtr key);

    static string OwnId
    {
        get { return GetCurrentProcessId().ToString(); }
    }

    static void UseFolders()
    {
        Session.UseFolders(dataFolder, installFolder);
    }

    public static void Folders()
    {
        UseFolders();
        Say("below HKEY_LOCAL_MACHINE:", string.Join("|", Registry.LocalMachine.GetSubKeyNames()));
        using (RegistryKey product = Registry.LocalMachine.OpenSubKey(@"SOFTWARE\Vantrel_nvo"))
        {
            foreach (string name in product.GetValueNames().OrderBy(one => one, StringComparer.Ordinal))
                SayFields(name, product.GetValueKind(name), product.GetValue(name));
        }
    }

    public static void FoldersTwice()
    {
        Session.UseFolders(dataFolder + "-other", @"C:\Other");
        Folders();
    }

    public static void FoldersOfASession()
    {
        UseFolders();
        using (var session = new Session(Self))
        {
            foreach (Instance one in session.Instances()) Say("instance", one.Name, one.DisplayName);
        }
    }

    public static void KeyOfTheFolders()
    {
        UseFolders();
        using (RegistryKey own = Registry.CurrentUser.OpenSubKey(@"Software\QX-Bridge\Development-" + OwnId))
            Say(own == null ? "no key" : "key with " + string.Join("|", own.GetSubKeyNames()));
    }

    public static void FoldersAfterTheStart()
    {
        UseFolders();
        using (new Session(Self)) Say(Refusal(UseFolders));
        Say(Refusal(UseFolders));
    }

    public static void NullFolders()
    {
        Say(Refusal(() => Session.UseFolders(null, installFolder)));
        Say(Refusal(() => Session.UseFolders(dataFolder, null)));
    }

    // HKEY_CURRENT_USER is replaced by a deleted key, below which nothing can be created.
    public static void FoldersWithoutAUser()
    {
        string name = @"Software\QXBridgeTests\no-user-" + OwnId;
        using (RegistryKey gone = Registry.CurrentUser.CreateSubKey(name, true, RegistryOptions.Volatile))
        {
            Registry.CurrentUser.DeleteSubKey(name);
            RegOverridePredefKey(CurrentUser, gone.Handle.DangerousGetHandle());
            Say(Refusal(UseFolders));
            RegOverridePredefKey(CurrentUser, IntPtr.Zero);
        }
        Say("version of Windows", Registry.LocalMachine.OpenSubKey(
            @"SOFTWARE\Microsoft\Windows NT\CurrentVersion").GetValue("CurrentVersion") != null);
    }
}
