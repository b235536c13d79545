// Checks before a value is read or set: the library ends the process for a wrong key, type or stored
// value, and takes a mistyped instance for a new one.

using System.Collections.Generic;

namespace QXBridge
{
    internal sealed class KeyChecks
    {
        // For an instance that is not loaded these and the text below are all 0 or "", for a loaded one at
        // least one is not. Reading them never ends the process if their stored values can be read.
        private static readonly string[] NumbersOfALoadedOne =
            { "dpi", "max_fps", "eco_mode_max_fps", "gl_win_height" };
        private const string TextOfALoadedOne = "display_name";

        private readonly KnownInstances known;
        private readonly HashSet<string> seenLoaded = new HashSet<string>();

        internal KeyChecks(KnownInstances known)
        {
            this.known = known;
        }

        internal void BeforeSet(string key, string type)
        {
            Catalogue.Find(key, type);
            string instance = Catalogue.InstanceOf(key);
            if (instance != null) known.Require(instance);
        }

        internal void BeforeGet(string key, string type)
        {
            Tables.Key declared = Catalogue.Find(key, type);
            string instance = Catalogue.InstanceOf(key);
            if (instance != null)
            {
                known.Require(instance);
                RequireLoaded(instance);
            }
            known.RequireReadable(key, type, declared.Default);
        }

        private void RequireLoaded(string instance)
        {
            lock (seenLoaded)
                if (seenLoaded.Contains(instance)) return;
            if (!IsLoaded(instance))
                throw new KeyException("instance " + Catalogue.Quoted(instance) + " is not loaded yet: " +
                    "commit, or wait for instanceListUpdated", instance, null);
            lock (seenLoaded) seenLoaded.Add(instance);
        }

        private bool IsLoaded(string instance)
        {
            string start = Catalogue.InstancePrefix + instance + ".";
            foreach (string name in NumbersOfALoadedOne)
            {
                string key = start + name;
                if (!Catalogue.IsReadable("i32", known.Stored(key) ?? "")) continue;
                if (Native.bridgeConfGetI32(Utf8.Bytes(key, "key")) != 0) return true;
            }
            return !string.IsNullOrEmpty(Session.TextOf(
                Native.bridgeConfGetString(Utf8.Bytes(start + TextOfALoadedOne, "key"))));
        }
    }
}
