// A strict reader for the library's JSON.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Text;

namespace QXBridge
{
    /// <summary>An object's members: texts, numbers, bools, null, objects and lists.</summary>
    internal sealed class JsonObject
    {
        private readonly Dictionary<string, object> members = new Dictionary<string, object>();

        internal object this[string name]
        {
            get
            {
                object value;
                if (members.TryGetValue(name, out value)) return value;
                throw new FormatException("JSON: there is no member \"" + name + "\"");
            }
            set { members[name] = value; }
        }

        internal string Text(string name)
        {
            var text = this[name] as string;
            if (text == null) throw new FormatException("JSON: \"" + name + "\" is not a text");
            return text;
        }

        internal int Number(string name)
        {
            object value = this[name];
            if (value is double && (double)value == (int)(double)value) return (int)(double)value;
            throw new FormatException("JSON: \"" + name + "\" is not an integer of 32 bits");
        }
    }

    internal sealed class Json
    {
        private const int Deepest = 100;

        private readonly string text;
        private int at;
        private int depth;

        private Json(string text)
        {
            this.text = text;
        }

        /// <summary>The elements of a list of objects.</summary>
        internal static List<JsonObject> Objects(string text)
        {
            var list = Read(text) as List<object>;
            if (list == null || !list.All(one => one is JsonObject))
                throw new FormatException("JSON: not a list of objects");
            return list.Cast<JsonObject>().ToList();
        }

        /// <summary>The value of a JSON text. Throws FormatException for any other text.</summary>
        internal static object Read(string text)
        {
            var reader = new Json(text);
            object value = reader.Value();
            reader.SkipSpace();
            if (reader.at < text.Length) throw reader.Wrong();
            return value;
        }

        private FormatException Wrong()
        {
            return new FormatException("JSON: cannot be read at character " + (at + 1));
        }

        private void SkipSpace()
        {
            while (at < text.Length && " \t\r\n".IndexOf(text[at]) >= 0) ++at;
        }

        private char Next()
        {
            SkipSpace();
            if (at >= text.Length) throw Wrong();
            return text[at];
        }

        private bool Skips(string word)
        {
            if (string.CompareOrdinal(text, at, word, 0, word.Length) != 0) return false;
            at += word.Length;
            return true;
        }

        private object Value()
        {
            switch (Next())
            {
                case '{': return Nested(Object);
                case '[': return Nested(List);
                case '"': return String();
                case 't': if (Skips("true")) return true; break;
                case 'f': if (Skips("false")) return false; break;
                case 'n': if (Skips("null")) return null; break;
                default: return Number();
            }
            throw Wrong();
        }

        private object Nested(Func<object> read)
        {
            if (++depth > Deepest) throw Wrong();
            object value = read();
            --depth;
            return value;
        }

        private object Object()
        {
            var members = new JsonObject();
            Elements('}', () =>
            {
                if (Next() != '"') throw Wrong();
                string name = String();
                if (Next() != ':') throw Wrong();
                ++at;
                members[name] = Value();
            });
            return members;
        }

        private object List()
        {
            var list = new List<object>();
            Elements(']', () => list.Add(Value()));
            return list;
        }

        private void Elements(char end, Action element)
        {
            ++at;
            if (Next() == end)
            {
                ++at;
                return;
            }
            for (;;)
            {
                element();
                char after = Next();
                if (after != ',' && after != end) throw Wrong();
                ++at;
                if (after == end) return;
            }
        }

        private string String()
        {
            var value = new StringBuilder();
            for (++at; at < text.Length; ++at)
            {
                char c = text[at];
                if (c < ' ') throw Wrong();
                if (c == '"')
                {
                    ++at;
                    return value.ToString();
                }
                value.Append(c == '\\' ? Escaped() : c);
            }
            throw Wrong();
        }

        // Starts at the backslash and leaves `at` on the last character of the sequence.
        private char Escaped()
        {
            const string Letters = "\"\\/bfnrt", Meanings = "\"\\/\b\f\n\r\t";
            if (++at >= text.Length) throw Wrong();
            int known = Letters.IndexOf(text[at]);
            if (known >= 0) return Meanings[known];
            ushort unit;
            if (text[at] != 'u' || at + 4 >= text.Length ||
                !ushort.TryParse(text.Substring(at + 1, 4), NumberStyles.AllowHexSpecifier,
                                 CultureInfo.InvariantCulture, out unit))
                throw Wrong();
            at += 4;
            return (char)unit;
        }

        private object Number()
        {
            int start = at;
            if (Next() == '-') ++at;
            if (!Skips("0")) Digits();
            if (Skips(".")) Digits();
            if (Skips("e") || Skips("E"))
            {
                if (!Skips("+")) Skips("-");
                Digits();
            }
            return double.Parse(text.Substring(start, at - start), NumberStyles.Float,
                                CultureInfo.InvariantCulture);
        }

        private void Digits()
        {
            int start = at;
            while (at < text.Length && text[at] >= '0' && text[at] <= '9') ++at;
            if (at == start) throw Wrong();
        }
    }
}
