// Instances and apps, as objects and as JSON.

using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace QXBridge
{
    /// <summary>An instance of the listing.</summary>
    public sealed class Instance
    {
        internal Instance(JsonObject from)
        {
            Name = from.Text("instance");
            DisplayName = from.Text("displayName");
            ImageName = from.Text("imageName");
            DeviceProfile = from.Text("deviceProfile");
            GraphicsEngine = from.Text("graphicsEngine");
            GraphicsRenderer = from.Text("graphicsRenderer");
            Ram = from.Number("ram");
            Cpu = from.Number("cpu");
        }

        /// <summary>Its name, which other methods take as an argument.</summary>
        public string Name { get; private set; }
        /// <summary>The name that the user sees.</summary>
        public string DisplayName { get; private set; }
        /// <summary>The image that it runs.</summary>
        public string ImageName { get; private set; }
        /// <summary>The code of its device profile.</summary>
        public string DeviceProfile { get; private set; }
        /// <summary>Its graphics engine.</summary>
        public string GraphicsEngine { get; private set; }
        /// <summary>Its graphics renderer.</summary>
        public string GraphicsRenderer { get; private set; }
        /// <summary>Its memory in MiB.</summary>
        public int Ram { get; private set; }
        /// <summary>Its number of processors.</summary>
        public int Cpu { get; private set; }
    }

    /// <summary>An app of an instance.</summary>
    public sealed class App
    {
        internal App(JsonObject from)
        {
            Package = from.Text("package");
            Activity = from.Text("activity");
            AppLabel = from.Text("appLabel");
            VersionCode = from.Number("versionCode");
            VersionName = from.Text("versionName");
            IconFilePath = from.Text("iconFilePath");
        }

        /// <summary>The Android package.</summary>
        public string Package { get; private set; }
        /// <summary>The activity that starts it.</summary>
        public string Activity { get; private set; }
        /// <summary>The label that the user sees.</summary>
        public string AppLabel { get; private set; }
        /// <summary>The version's code.</summary>
        public int VersionCode { get; private set; }
        /// <summary>The version's name.</summary>
        public string VersionName { get; private set; }
        /// <summary>The path of the icon, which may not exist.</summary>
        public string IconFilePath { get; private set; }
    }

    public sealed partial class Session
    {
        /// <summary>The instances, sorted by name. Throws KeyException for an instance with an unknown
        /// image.</summary>
        public IList<Instance> Instances()
        {
            return ToInstances(InstancesJson());
        }

        /// <summary>Instances() on a separate thread. A cancelled token ends the wait.</summary>
        public Task<IList<Instance>> InstancesAsync(CancellationToken token = default(CancellationToken))
        {
            Check();
            return Calls.Start(() => ToInstances(ListInstances()), token);
        }

        /// <summary>The instances as JSON, as bridge.h describes it.</summary>
        public string InstancesJson()
        {
            Check();
            return ListInstances();
        }

        /// <summary>The apps of an instance, sorted by package; empty when it has no app cache.</summary>
        public IList<App> Apps(string instance)
        {
            return ToApps(AppsJson(instance));
        }

        /// <summary>Apps() on a separate thread. A cancelled token ends the wait.</summary>
        public Task<IList<App>> AppsAsync(string instance,
                                          CancellationToken token = default(CancellationToken))
        {
            Check();
            byte[] bytes = Utf8.Bytes(instance, "instance");
            return Calls.Start(() => ToApps(ListApps(bytes)), token);
        }

        /// <summary>The apps of an instance as JSON, as bridge.h describes it.</summary>
        public string AppsJson(string instance)
        {
            Check();
            return ListApps(Utf8.Bytes(instance, "instance"));
        }

        private string ListInstances()
        {
            known.RequireListable();
            return TakeText("bridgeConfGetInstances", Native.bridgeConfGetInstances());
        }

        private string ListApps(byte[] instance)
        {
            return TakeText("bridgeGetInstalledApps", Native.bridgeGetInstalledApps(instance));
        }

        private static IList<Instance> ToInstances(string json)
        {
            return Json.Objects(json).Select(one => new Instance(one)).ToList();
        }

        private static IList<App> ToApps(string json)
        {
            return Json.Objects(json).Select(one => new App(one)).ToList();
        }
    }
}
