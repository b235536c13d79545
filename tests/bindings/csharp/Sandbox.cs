// A registry of this process's own.

using System;
using System.Runtime.InteropServices;
using Microsoft.Win32;

/// <summary>Gives this process, and no other, a HKEY_LOCAL_MACHINE of its own with the product's values,
/// without a data folder when that is empty. A process that the library ends leaves its key, which is
/// volatile, behind.</summary>
sealed class Sandbox : IDisposable
{
    private static readonly IntPtr LocalMachine = new IntPtr(unchecked((int)0x80000002));

    private readonly string name = @"Software\QXBridgeTests\dotnet-" + GetCurrentProcessId();

    [DllImport("kernel32.dll")] static extern uint GetCurrentProcessId();
    [DllImport("advapi32.dll")] static extern int RegOverridePredefKey(IntPtr root, IntPtr key);

    public Sandbox(string dataFolder, string installFolder, string version = null)
    {
        Registry.CurrentUser.DeleteSubKeyTree(name, false);
        using (RegistryKey own = Registry.CurrentUser.CreateSubKey(name, true, RegistryOptions.Volatile))
        {
            int status = RegOverridePredefKey(LocalMachine, own.Handle.DangerousGetHandle());
            if (status != 0) throw new InvalidOperationException("RegOverridePredefKey: " + status);
        }
        using (RegistryKey product = Registry.LocalMachine.CreateSubKey(@"SOFTWARE\Vantrel_nvo", true,
                                                                        RegistryOptions.Volatile))
        {
            if (dataFolder.Length > 0) product.SetValue("UserDefinedDir", dataFolder);
            product.SetValue("InstallDir", installFolder);
            if (version != null) product.SetValue("Version", version);
        }
    }

    public void Dispose()
    {
        RegOverridePredefKey(LocalMachine, IntPtr.Zero);
        Registry.CurrentUser.DeleteSubKeyTree(name, false);
    }
}
