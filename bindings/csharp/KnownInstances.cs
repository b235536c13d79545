// The binding's copy of the configuration that the library has loaded: instances and values. It is read
// from the file, not from the library's listing, which is fatal for a wrong name.

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;

namespace QXBridge
{
    internal sealed class KnownInstances
    {
        private readonly string path; // null for no file
        private readonly object guard = new object();
        private HashSet<string> inTheFile = new HashSet<string>();
        private HashSet<string> whenLoaded = new HashSet<string>();
        private readonly HashSet<string> added = new HashSet<string>();
        private readonly Dictionary<string, string> loaded = new Dictionary<string, string>();
        private readonly Dictionary<string, string> staged = new Dictionary<string, string>();

        internal KnownInstances(string path)
        {
            this.path = path;
        }

        /// <summary>Called when the library has loaded the file, at its start or before an event. As in the
        /// library, values that the file no longer has are kept.</summary>
        internal void Load()
        {
            Dictionary<string, string> values = ReadFile();
            if (values == null) return;
            lock (guard)
            {
                Take(values);
                whenLoaded = inTheFile;
            }
        }

        /// <summary>Called before a commit, which first loads the file if it has something to
        /// write.</summary>
        internal void LoadForCommit(bool writesAlways)
        {
            lock (guard)
                if (!writesAlways && staged.Count == 0) return;
            Dictionary<string, string> values = ReadFile();
            if (values == null) return;
            lock (guard)
            {
                Take(values);
                // The library may still have the instances of the previous file, which can make the listing
                // fatal too.
                whenLoaded = new HashSet<string>(whenLoaded.Concat(inTheFile));
            }
        }

        private void Take(Dictionary<string, string> values)
        {
            foreach (var one in values) loaded[one.Key] = one.Value;
            inTheFile = InstancesOf(values);
        }

        /// <summary>Called after a commit: staged values count as loaded.</summary>
        internal void Merge()
        {
            lock (guard)
            {
                foreach (var one in staged) loaded[one.Key] = one.Value;
                staged.Clear();
            }
        }

        /// <summary>Records that a value was set. As in the library, setting the current value stages
        /// nothing.</summary>
        internal void Stage(string key, string value)
        {
            lock (guard)
            {
                string present;
                if (!loaded.TryGetValue(key, out present)) present = Catalogue.Find(key).Default;
                if (value == present) staged.Remove(key);
                else staged[key] = value;
            }
        }

        /// <summary>The library's text for a key; null for the default.</summary>
        internal string Stored(string key)
        {
            string value;
            lock (guard)
            {
                if (staged.TryGetValue(key, out value)) return value;
                return loaded.TryGetValue(key, out value) ? value : null;
            }
        }

        internal void Add(string name)
        {
            lock (guard) added.Add(name);
        }

        /// <summary>Throws for an instance that is neither in the file nor added by this process.</summary>
        internal void Require(string name)
        {
            if (IsKnown(name)) return;
            Dictionary<string, string> values = ReadFile();
            string near;
            lock (guard)
            {
                if (values != null) inTheFile = InstancesOf(values);
                if (inTheFile.Contains(name)) return;
                near = Catalogue.Nearest(name, Sorted(inTheFile.Concat(added)));
            }
            throw new KeyException("there is no instance " + Catalogue.Quoted(name) +
                                   Catalogue.DidYouMean(near), name, near);
        }

        private bool IsKnown(string name)
        {
            lock (guard) return inTheFile.Contains(name) || added.Contains(name);
        }

        /// <summary>Throws for an instance with an unknown image or an unreadable number: the listing would
        /// end the process.</summary>
        internal void RequireListable()
        {
            string[] names;
            lock (guard) names = Sorted(whenLoaded).ToArray();
            foreach (string name in names)
            {
                if (!HasImage(name)) throw NoImage(name);
                foreach (string number in new[] { "ram", "cpus" })
                    RequireReadable(Catalogue.InstancePrefix + name + "." + number, "i32", "");
            }
        }

        /// <summary>Throws for a value that the library cannot read.</summary>
        internal void RequireReadable(string key, string type, string byDefault)
        {
            string stored = Stored(key) ?? byDefault;
            if (Catalogue.IsReadable(type, stored)) return;
            string has = stored.Length == 0 && byDefault.Length == 0
                ? " has no value and no default"
                : " has a value that cannot be read: " + Catalogue.Quoted(stored);
            throw new KeyException(Catalogue.Quoted(key) + has, key, null);
        }

        internal static bool HasImage(string instance)
        {
            return Tables.Images.Contains(Catalogue.ImageOf(instance));
        }

        internal static KeyException NoImage(string instance)
        {
            return new KeyException(Catalogue.Quoted(Catalogue.ImageOf(instance)) +
                " is not an image; there are " + string.Join(", ", Tables.Images), instance, null);
        }

        private static IEnumerable<string> Sorted(IEnumerable<string> names)
        {
            return names.OrderBy(one => one, StringComparer.Ordinal);
        }

        private static HashSet<string> InstancesOf(Dictionary<string, string> values)
        {
            return new HashSet<string>(values.Keys.Select(Catalogue.InstanceOf).Where(one => one != null));
        }

        // Null for a file that cannot be read: the library then keeps its values too.
        private Dictionary<string, string> ReadFile()
        {
            if (path == null) return new Dictionary<string, string>();
            try
            {
                return ConfFile.Read(path);
            }
            catch (IOException)
            {
                return null;
            }
            catch (UnauthorizedAccessException)
            {
                return null;
            }
        }
    }
}
