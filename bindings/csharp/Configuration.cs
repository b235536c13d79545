// The configuration: typed and checked access by key, and commits.

using System;
using System.Globalization;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>The configuration by key: a Key such as Keys.Global.Locale, or its text
    /// "vtr.&lt;name&gt;" or "vtr.instance.&lt;instance&gt;.&lt;name&gt;". Set methods stage a change;
    /// Commit() writes it to the file. Throws KeyException for a wrong key, type, instance or stored value,
    /// before the library is called.</summary>
    public sealed class Configuration
    {
        private readonly Session session;
        private readonly KnownInstances known;
        private readonly KeyChecks checks;

        internal Configuration(Session session, KnownInstances known)
        {
            this.session = session;
            this.known = known;
            checks = new KeyChecks(known);
        }

        /// <summary>Reads a property.</summary>
        public T Get<T>(Key<T> key)
        {
            if (key == null) throw new ArgumentNullException("key");
            return (T)Get(key.Type, key.Text);
        }

        private object Get(string type, string key)
        {
            switch (type)
            {
                case "bool": return GetBool(key);
                case "i32": return GetI32(key);
                case "i64": return GetI64(key);
                case "string": return GetString(key);
                default: return GetMultiString(key);
            }
        }

        /// <summary>Stages a value.</summary>
        public void Set<T>(Key<T> key, T value)
        {
            if (key == null) throw new ArgumentNullException("key");
            Set(key.Type, key.Text, value);
        }

        private void Set(string type, string key, object value)
        {
            switch (type)
            {
                case "bool": SetBool(key, (bool)value); break;
                case "i32": SetI32(key, (int)value); break;
                case "i64": SetI64(key, (long)value); break;
                case "string": SetString(key, (string)value); break;
                default: SetMultiString(key, (string[])value); break;
            }
        }

        /// <summary>Reads a bool.</summary>
        public bool GetBool(string key)
        {
            return Native.bridgeConfGetBool(ToGet(key, "bool")) != 0;
        }
        /// <summary>Reads a number; 0 when it has no value.</summary>
        public int GetI32(string key)
        {
            return Native.bridgeConfGetI32(ToGet(key, "i32"));
        }
        /// <summary>Reads a 64-bit number. The catalogue has none.</summary>
        public long GetI64(string key)
        {
            return Native.bridgeConfGetI64(ToGet(key, "i64"));
        }
        /// <summary>Reads a text.</summary>
        public string GetString(string key)
        {
            return session.TakeText("bridgeConfGetString", Native.bridgeConfGetString(ToGet(key, "string")));
        }
        /// <summary>Reads the elements of a list.</summary>
        public string[] GetMultiString(string key)
        {
            return Catalogue.Elements(session.TakeText("bridgeConfGetMultiString",
                Native.bridgeConfGetMultiString(ToGet(key, "multi-string"))));
        }

        /// <summary>Stages a bool.</summary>
        public void SetBool(string key, bool value)
        {
            session.Require("bridgeConfSetBool",
                Native.bridgeConfSetBool(ToSet(key, "bool"), value ? (byte)1 : (byte)0));
            known.Stage(key, value ? "1" : "0");
        }
        /// <summary>Stages a number.</summary>
        public void SetI32(string key, int value)
        {
            session.Require("bridgeConfSetI32", Native.bridgeConfSetI32(ToSet(key, "i32"), value));
            known.Stage(key, value.ToString(CultureInfo.InvariantCulture));
        }
        /// <summary>Stages a 64-bit number. The catalogue has none.</summary>
        public void SetI64(string key, long value)
        {
            session.Require("bridgeConfSetI64", Native.bridgeConfSetI64(ToSet(key, "i64"), value));
        }
        /// <summary>Stages a text. A line feed in it makes the commit fail.</summary>
        public void SetString(string key, string value)
        {
            session.Require("bridgeConfSetString",
                Native.bridgeConfSetString(ToSet(key, "string"), Utf8.Bytes(value, "value")));
            known.Stage(key, value);
        }
        /// <summary>Stages a list. Throws ArgumentException for an element with a ",".</summary>
        public void SetMultiString(string key, params string[] elements)
        {
            if (elements == null) throw new ArgumentNullException("elements");
            foreach (string element in elements)
            {
                if (element == null) throw new ArgumentNullException("elements", "an element is null");
                if (element.IndexOf(',') >= 0)
                    throw new ArgumentException("an element must not contain \",\"", "elements");
            }
            string stored = string.Join(",", elements);
            session.Require("bridgeConfSetMultiString", Native.bridgeConfSetMultiString(
                ToSet(key, "multi-string"), Utf8.Bytes(stored, "elements")));
            known.Stage(key, stored);
        }

        private byte[] ToGet(string key, string type)
        {
            session.Check();
            byte[] bytes = Utf8.Bytes(key, "key");
            checks.BeforeGet(key, type);
            return bytes;
        }

        private byte[] ToSet(string key, string type)
        {
            session.Check();
            byte[] bytes = Utf8.Bytes(key, "key");
            checks.BeforeSet(key, type);
            return bytes;
        }

        /// <summary>Makes the keys of a new instance settable. A commit writes it to the file. Throws
        /// KeyException for a name that the product cannot use.</summary>
        public void AddInstance(string name)
        {
            session.Check();
            if (name == null) throw new ArgumentNullException("name");
            if (name.Length == 0 || name.IndexOfAny(new[] { '.', '=', '\n', '\0' }) >= 0)
                throw new KeyException(
                    Catalogue.Quoted(name) + " cannot be the name of an instance", name, null);
            if (!KnownInstances.HasImage(name)) throw KnownInstances.NoImage(name);
            known.Add(name);
        }

        /// <summary>Writes the staged changes to the product's file.</summary>
        public void Commit()
        {
            session.Check();
            CommitNow();
        }

        /// <summary>Commit() on a separate thread. A cancelled token ends the wait; the commit goes
        /// on.</summary>
        public Task CommitAsync(CancellationToken token = default(CancellationToken))
        {
            session.Check();
            return session.Calls.Start(() => CommitNow(), token);
        }

        private bool CommitNow()
        {
            known.LoadForCommit(false);
            return Committed("bridgeConfCommit", Native.bridgeConfCommit(), session.Places.ConfPath);
        }

        /// <summary>Writes the whole configuration with the staged changes to another file. Afterwards
        /// nothing is staged: a later Commit() does not write these changes to the product's file.</summary>
        public void CommitToFile(string path)
        {
            session.Check();
            CommitToFileNow(Utf8.Bytes(path, "path"), path);
        }

        /// <summary>CommitToFile() on a separate thread. A cancelled token ends the wait; the commit goes
        /// on.</summary>
        public Task CommitToFileAsync(string path, CancellationToken token = default(CancellationToken))
        {
            session.Check();
            byte[] bytes = Utf8.Bytes(path, "path");
            return session.Calls.Start(() => CommitToFileNow(bytes, path), token);
        }

        private bool CommitToFileNow(byte[] bytes, string path)
        {
            known.LoadForCommit(true);
            return Committed("bridgeConfCommitToFile", Native.bridgeConfCommitToFile(bytes), path);
        }

        // After a failure the changes stay staged only when the file could not be loaded.
        private bool Committed(string operation, int code, string file)
        {
            if (code != Result.Failure) known.Merge();
            session.Require(operation, code, file);
            return true;
        }
    }
}
