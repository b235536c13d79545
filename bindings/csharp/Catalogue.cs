// The catalogue of keys: splitting keys, their types, suggestions. Pure functions, without files or the
// library.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;

namespace QXBridge
{
    internal static class Catalogue
    {
        internal const string Prefix = "vtr.";
        internal const string InstancePrefix = "vtr.instance.";
        private const int LongName = 8;

        internal static readonly Dictionary<string, Type> ValueTypes = new Dictionary<string, Type>
        {
            { "bool", typeof(bool) }, { "i32", typeof(int) }, { "i64", typeof(long) },
            { "string", typeof(string) }, { "multi-string", typeof(string[]) },
        };

        private static readonly Dictionary<string, Tables.Key> ByScopeAndName =
            Tables.Keys.ToDictionary(one => one.Scope + " " + one.Name);

        /// <summary>The instance of a key; null for a global key.</summary>
        internal static string InstanceOf(string key)
        {
            if (!key.StartsWith(InstancePrefix, StringComparison.Ordinal)) return null;
            int dot = key.IndexOf('.', InstancePrefix.Length);
            return dot < 0 ? null : key.Substring(InstancePrefix.Length, dot - InstancePrefix.Length);
        }

        internal static bool TryFind(string key, out Tables.Key found)
        {
            string instance = InstanceOf(key);
            string start = instance == null ? Prefix : InstancePrefix + instance + ".";
            found = new Tables.Key();
            return key.StartsWith(start, StringComparison.Ordinal) && ByScopeAndName.TryGetValue(
                (instance == null ? "global " : "instance ") + key.Substring(start.Length), out found);
        }

        internal static Tables.Key Find(string key)
        {
            Tables.Key found;
            if (TryFind(key, out found)) return found;
            string near = Nearest(key, KeysLike(key));
            throw new KeyException("there is no key " + Quoted(key) + DidYouMean(near), key, near);
        }

        internal static Tables.Key Find(string key, string type)
        {
            Tables.Key found = Find(key);
            if (found.Type != type) throw WrongType(key, found.Type, type);
            return found;
        }

        internal static KeyException WrongType(string key, string type, string wanted)
        {
            return new KeyException(Quoted(key) + " is " + WithArticle(type) + ", not " +
                                    WithArticle(wanted), key, null);
        }

        internal static string NameOf(Type valueType)
        {
            return ValueTypes.First(one => one.Value == valueType).Key;
        }

        internal static string ImageOf(string instance)
        {
            return instance.Split('_')[0];
        }

        internal static string Quoted(string text)
        {
            return "\"" + text + "\"";
        }

        internal static string DidYouMean(string suggestion)
        {
            return suggestion == null ? "" : "; did you mean " + Quoted(suggestion) + "?";
        }

        internal static string[] Elements(string stored)
        {
            return stored.Length == 0 ? new string[0] : stored.Split(',');
        }

        /// <summary>The value of a default in its stored form. The empty text is false or 0.</summary>
        internal static object Value(string type, string stored)
        {
            long number;
            long.TryParse(stored, NumberStyles.AllowLeadingSign, CultureInfo.InvariantCulture, out number);
            switch (type)
            {
                case "bool": return stored == "1";
                case "i32": return (int)number;
                case "i64": return number;
                case "string": return stored;
                default: return Elements(stored);
            }
        }

        /// <summary>Whether the library can read a stored text as this type. If not, a read ends the
        /// process.</summary>
        internal static bool IsReadable(string type, string stored)
        {
            switch (type)
            {
                case "bool": return stored == "0" || stored == "1";
                case "i32": return IsNumber(stored);
                default: return true;
            }
        }

        // The library's rule: white space, a sign, digits. Text after a number other than 0 is ignored,
        // numbers are clamped to 32 bits, and an empty text is 0.
        private static bool IsNumber(string stored)
        {
            if (stored.Length == 0) return true;
            int at = 0;
            while (at < stored.Length && " \t\n\v\f\r".IndexOf(stored[at]) >= 0) ++at;
            if (at < stored.Length && (stored[at] == '+' || stored[at] == '-')) ++at;
            int first = at;
            bool isZero = true;
            for (; at < stored.Length && stored[at] >= '0' && stored[at] <= '9'; ++at)
                isZero = isZero && stored[at] == '0';
            return at > first && (!isZero || at == stored.Length);
        }

        /// <summary>The candidate nearest by edit distance; null when none is near.</summary>
        internal static string Nearest(string wrong, IEnumerable<string> candidates)
        {
            string nearest = null;
            int fewest = int.MaxValue;
            foreach (string candidate in candidates)
            {
                int edits = Edits(wrong, candidate);
                int limit = LastPart(candidate).Length >= LongName ? 3 : 2;
                if (edits > limit || edits >= fewest) continue;
                fewest = edits;
                nearest = candidate;
            }
            return nearest;
        }

        private static string LastPart(string text)
        {
            string instance = InstanceOf(text);
            if (instance != null) return text.Substring(InstancePrefix.Length + instance.Length + 1);
            return text.StartsWith(Prefix, StringComparison.Ordinal) ? text.Substring(Prefix.Length) : text;
        }

        private static IEnumerable<string> KeysLike(string key)
        {
            string instance = InstanceOf(key);
            string scope = instance == null ? "global" : "instance";
            string start = instance == null ? Prefix : InstancePrefix + instance + ".";
            return Tables.Keys.Where(one => one.Scope == scope).Select(one => start + one.Name);
        }

        // The Levenshtein distance, computed row by row.
        private static int Edits(string from, string to)
        {
            int[] above = Enumerable.Range(0, to.Length + 1).ToArray();
            for (int i = 1; i <= from.Length; ++i)
            {
                int[] row = new int[to.Length + 1];
                row[0] = i;
                for (int j = 1; j <= to.Length; ++j)
                {
                    int replaced = above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
                    row[j] = Math.Min(replaced, Math.Min(above[j], row[j - 1]) + 1);
                }
                above = row;
            }
            return above[to.Length];
        }

        private static string WithArticle(string type)
        {
            return (type.StartsWith("i", StringComparison.Ordinal) ? "an " : "a ") + type;
        }
    }
}
