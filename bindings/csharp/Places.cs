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
            ConfPath = noConfFile ? null : Below(DataFolder, "vantrel.conf");
            HasOwnLog = logFilePath != null;
            LogPath = logFilePath ?? Below(LogFolder, "Player.log");
        }

        // As the library does it, also for a folder that is no path at all.
        private static string Below(string folder, string name)
        {
            return folder + Path.DirectorySeparatorChar + name;
        }

        /// <summary>Empty where the registry has none.</summary>
        internal string DataFolder { get; private set; }
        internal string InstallFolder { get; private set; }
        /// <summary>Null for a start without the file.</summary>
        internal string ConfPath { get; private set; }
        /// <summary>Empty for standard output.</summary>
        internal string LogPath { get; private set; }
        /// <summary>Where the product's own log is.</summary>
        internal string LogFolder
        {
            get { return Below(DataFolder, "Logs"); }
        }
        internal bool HasOwnLog { get; private set; }

        internal string Player
        {
            get { return InstallFolder + "QX-Player.exe"; }
        }

        internal string Manager
        {
            get { return InstallFolder + "QX-MultiInstanceManager.exe"; }
        }

        /// <summary>What a message ends with.</summary>
        internal static string WhereTheCauseIs(string logPath)
        {
            return "; the log " + (logPath.Length == 0 ? "" : logPath + " ") + "has the cause";
        }
    }
}
