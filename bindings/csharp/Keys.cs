// Typed keys of the configuration: Keys.Global.Locale, Keys.Instance("Nougat64").Dpi.

using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;

namespace QXBridge
{
    /// <summary>A key of the configuration.</summary>
    public abstract class Key
    {
        internal Key(string text, Type valueType)
        {
            Tables.Key declared = Catalogue.Find(text);
            if (Catalogue.ValueTypes[declared.Type] != valueType)
                throw Catalogue.WrongType(text, declared.Type, Catalogue.NameOf(valueType));
            Text = text;
            Type = declared.Type;
            DefaultText = declared.Default;
            Unit = declared.Unit;
            Allowed = new ReadOnlyCollection<string>(Catalogue.Elements(declared.Allowed));
        }

        /// <summary>The full key, such as "vtr.locale".</summary>
        public string Text { get; private set; }
        /// <summary>"bool", "i32", "i64", "string" or "multi-string".</summary>
        public string Type { get; private set; }
        /// <summary>The default in its stored form. A bool without one cannot be read before it is
        /// set.</summary>
        public string DefaultText { get; private set; }
        /// <summary>The unit of a number; empty when it is not known.</summary>
        public string Unit { get; private set; }
        /// <summary>The allowed values or elements; empty when any is allowed.</summary>
        public IList<string> Allowed { get; private set; }

        /// <summary>The full key.</summary>
        public override string ToString()
        {
            return Text;
        }
    }

    /// <summary>A key with the C# type of its values.</summary>
    public sealed class Key<T> : Key
    {
        internal Key(string text) : base(text, typeof(T))
        {
        }

        /// <summary>The default; false or 0 for a bool or a number without one.</summary>
        public T Default
        {
            get { return (T)Catalogue.Value(Type, DefaultText); }
        }
    }

    /// <summary>All keys of the catalogue.</summary>
    public static class Keys
    {
        private static readonly GlobalKeys OfTheProduct = new GlobalKeys(Catalogue.Prefix);

        /// <summary>The properties of the product.</summary>
        public static GlobalKeys Global
        {
            get { return OfTheProduct; }
        }

        /// <summary>The properties of an instance, whether it exists or not.</summary>
        public static InstanceKeys Instance(string name)
        {
            if (name == null) throw new ArgumentNullException("name");
            return new InstanceKeys(Catalogue.InstancePrefix + name + ".");
        }
    }
}
