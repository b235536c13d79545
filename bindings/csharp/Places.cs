// Where the product's files are, as the library finds them.

using System.IO;

namespace QXBridge
{
    internal sealed class Places
    {
        internal Places(bool noConfFile, string logFilePath)
        {
            DataFolder = Machine.Current.ProductText("UserDefinedDir");
            InstallFolder = Machine.Current.ProductText("InstallDir");
            ConfPath = noConfFile ? null : Path.Combine(DataFolder, "vantrel.conf");
            HasOwnLog = logFilePath != null;
            LogPath = logFilePath ?? Path.Combine(DataFolder, "Logs", "Player.log");
        }

        /// <summary>Empty where the registry has none.</summary>
        internal string DataFolder { get; private set; }
        internal string InstallFolder { get; private set; }
        /// <summary>Null for a start without the file.</summary>
        internal string ConfPath { get; private set; }
        /// <summary>Empty for standard output.</summary>
        internal string LogPath { get; private set; }
        internal bool HasOwnLog { get; private set; }

        internal string Player
        {
            get { return InstallFolder + "QX-Player.exe"; }
        }

        internal string Manager
        {
            get { return InstallFolder + "QX-MultiInstanceManager.exe"; }
        }
    }
}
