// Paths of the product's files, composed as in the library.

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

        // Like the library, accepts a folder that is not a valid path.
        private static string Below(string folder, string name)
        {
            return folder + Path.DirectorySeparatorChar + name;
        }

        /// <summary>Empty when the registry value is missing.</summary>
        internal string DataFolder { get; private set; }
        internal string InstallFolder { get; private set; }
        /// <summary>Null for a start without the file.</summary>
        internal string ConfPath { get; private set; }
        /// <summary>Empty for standard output.</summary>
        internal string LogPath { get; private set; }
        /// <summary>The folder of the product's own log.</summary>
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

        /// <summary>The end of an error message.</summary>
        internal static string LogHint(string logPath)
        {
            return "; the log " + (logPath.Length == 0 ? "" : logPath + " ") + "has the cause";
        }
    }
}
