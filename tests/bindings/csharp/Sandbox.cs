// A registry of this process's own.

using Microsoft.Win32;
using QXBridge;

static class Sandbox
{
    /// <summary>Sets the folders and the version, which may be missing.</summary>
    public static void Use(string dataFolder, string installFolder, string version = null)
    {
        Session.UseFolders(dataFolder, installFolder);
        using (RegistryKey product = Registry.LocalMachine.OpenSubKey(@"SOFTWARE\Vantrel_nvo", true))
        {
            if (version == null) product.DeleteValue("Version");
            else product.SetValue("Version", version);
        }
    }
}
