// Checks, before the start, for causes that make the library's start fail or end the process.

using System;
using System.Collections.Generic;
using System.IO;

namespace QXBridge
{
    internal sealed class Preflight
    {
        private const int PathNotFound = 3, InvalidName = 123;
        private const string ProductKey = @"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel_nvo";

        private readonly Places places;
        private readonly List<Problem> problems = new List<Problem>();

        private Preflight(Places places)
        {
            this.places = places;
        }

        internal static IList<Problem> Run(Client client, Places places)
        {
            var preflight = new Preflight(places);
            if (preflight.CheckDataFolder()) preflight.CheckTheRest(client);
            return preflight.problems.AsReadOnly();
        }

        private void Add(string what, string remedy)
        {
            problems.Add(new Problem(what, remedy));
        }

        // Returns false when the other checks are meaningless. A start without the file and with another log
        // needs no data folder.
        private bool CheckDataFolder()
        {
            if (places.ConfPath == null && places.HasOwnLog) return true;
            if (places.DataFolder.Length == 0)
                Add("the registry value " + ProductKey + " \"UserDefinedDir\" is missing",
                    "install the product, or set it to a data folder " +
                    "(reg add HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d C:\\Data)");
            else if (!Directory.Exists(places.DataFolder))
                Add("the data folder " + places.DataFolder + " does not exist",
                    "create it, or set \"UserDefinedDir\" of " + ProductKey + " to one that exists");
            return problems.Count == 0;
        }

        private void CheckTheRest(Client client)
        {
            if (places.HasOwnLog || CheckLogFolder()) CheckLog();
            if (places.ConfPath != null) CheckConfiguration();
            if (client == Client.Launcher) CheckVersion();
        }

        private bool CheckLogFolder()
        {
            if (Directory.Exists(places.LogFolder)) return true;
            Add("the folder " + places.LogFolder + " does not exist", "create it");
            return false;
        }

        // With an empty path the library logs to standard output.
        private void CheckLog()
        {
            if (places.LogPath.Length == 0) return;
            bool exists = File.Exists(places.LogPath) || Directory.Exists(places.LogPath);
            int error = exists ? Machine.Current.TryToAppend(places.LogPath) : ErrorOfANewLog();
            if (error != 0)
                Add("the log " + places.LogPath + " cannot be opened (Windows error " + error + ")",
                    "give this user the right to modify its folder, or name another log");
        }

        private int ErrorOfANewLog()
        {
            try
            {
                string folder = FolderThatIsWritten();
                return folder == null ? PathNotFound : Machine.Current.TryToCreateIn(folder);
            }
            catch (ArgumentException)
            {
                return InvalidName;
            }
            catch (NotSupportedException)
            {
                return InvalidName;
            }
        }

        // The nearest existing parent of the log, since the library creates missing folders. Null when it
        // would not: it creates only the folders before the last "\".
        private string FolderThatIsWritten()
        {
            string path = Path.GetFullPath(places.LogPath);
            string folder = Path.GetDirectoryName(path);
            bool isCreated = places.LogPath.LastIndexOf('/') <= places.LogPath.LastIndexOf('\\');
            if (!isCreated && !Directory.Exists(folder)) return null;
            while (folder != null && !Directory.Exists(folder)) folder = Path.GetDirectoryName(folder);
            return folder;
        }

        private void CheckConfiguration()
        {
            string file = "the configuration file " + places.ConfPath;
            try
            {
                if (!File.Exists(places.ConfPath) && !Directory.Exists(places.ConfPath))
                    Add(file + " does not exist", "install the product, or copy a configuration there");
                else if (ConfFile.BeginsWithAMark(places.ConfPath))
                    Add(file + " begins with a byte order mark",
                        "save it as UTF-8 without a byte order mark");
            }
            catch (Exception exception)
            {
                if (!(exception is IOException || exception is UnauthorizedAccessException)) throw;
                Add(file + " cannot be read", "give this user the right to read it");
            }
        }

        private void CheckVersion()
        {
            string version = Machine.Current.ProductText("Version");
            if (version == Tables.Version) return;
            Add("the product's version is " + Catalogue.Quoted(version) +
                    ", and the library's is " + Catalogue.Quoted(Tables.Version),
                "install product and library of the same version");
        }
    }
}
