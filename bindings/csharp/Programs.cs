// Starts the product's programs.

using System;
using System.Globalization;

namespace QXBridge
{
    public sealed partial class Session
    {
        /// <summary>Launches an app. The work ends when the app comes to the front.</summary>
        public Work<AppDisplayed> LaunchApp(string instance, string package)
        {
            return StartWork("bridgeLaunchApp", Places.Player,
                () => Native.bridgeLaunchApp(
                    Utf8.Bytes(instance, "instance"), Utf8.Bytes(package, "package")),
                new Watch<AppDisplayed>(one => one.Instance == instance && one.Package == package));
        }

        /// <summary>Opens an app's page in an app store.</summary>
        public void LaunchAppStore(string instance, string store, string package)
        {
            Check();
            Require("bridgeLaunchAppStore", Native.bridgeLaunchAppStore(Utf8.Bytes(instance, "instance"),
                Utf8.Bytes(store, "store"), Utf8.Bytes(package, "package")), Places.Player);
        }

        /// <summary>Opens a URL in an instance.</summary>
        public void LaunchUrl(string instance, string url)
        {
            Check();
            Require("bridgeLaunchUrl", Native.bridgeLaunchUrl(
                Utf8.Bytes(instance, "instance"), Utf8.Bytes(url, "url")), Places.Player);
        }

        /// <summary>Installs an APK file. The work ends when the file has been processed; the event has the
        /// status.</summary>
        public Work<ApkInstallCompleted> InstallApk(string instance, string apkFilePath)
        {
            return StartWork("bridgeInstallApk", apkFilePath, () => Native.bridgeInstallApk(
                    Utf8.Bytes(instance, "instance"), Utf8.Bytes(apkFilePath, "apkFilePath")),
                new Watch<ApkInstallCompleted>(
                    one => one.Instance == instance && one.ApkFilePath == apkFilePath));
        }

        /// <summary>Uninstalls an app. The work ends when the app is uninstalled.</summary>
        public Work<AppUninstalled> UninstallApp(string instance, string package)
        {
            return StartWork("bridgeUninstallApp", Places.Player, () => Native.bridgeUninstallApp(
                    Utf8.Bytes(instance, "instance"), Utf8.Bytes(package, "package")),
                new Watch<AppUninstalled>(one => one.Instance == instance && one.Package == package));
        }

        /// <summary>Installs an Android image. The work ends with the event of status 2. Events of other
        /// statuses go to the function, on the event thread.</summary>
        public Work<InstallImageProgress> InstallImage(string imageName,
                                                       Action<InstallImageProgress> progress = null)
        {
            return StartWork("bridgeInstallImage", Places.Manager,
                () => Native.bridgeInstallImage(Utf8.Bytes(imageName, "imageName")),
                new Watch<InstallImageProgress>(
                    one => one.ImageName == imageName && IsInstalled(one, progress)));
        }

        private bool IsInstalled(InstallImageProgress one, Action<InstallImageProgress> progress)
        {
            const int Installed = 2;
            if (one.Status == Installed) return true;
            Guard(progress, function => function(one));
            return false;
        }

        /// <summary>Creates an instance; ram in MiB. The work ends when an instance was created or could not
        /// be. The event does not name the request, so events end the works in the order of the
        /// calls.</summary>
        public Work<CreateInstanceCompleted> CreateFreshInstance(string imageName, int cpu, int ram,
            string graphicEngine, string graphicRenderer, string deviceProfile)
        {
            return StartWork("bridgeCreateFreshInstance", Places.Manager,
                () => Native.bridgeCreateFreshInstance(Utf8.Bytes(imageName, "imageName"), Decimal(cpu),
                    Decimal(ram), Utf8.Bytes(graphicEngine, "graphicEngine"),
                    Utf8.Bytes(graphicRenderer, "graphicRenderer"),
                    Utf8.Bytes(deviceProfile, "deviceProfile")),
                new Watch<CreateInstanceCompleted>(one => true));
        }

        /// <summary>Asks a player to shut down, and does not wait for its end.</summary>
        public void ShutdownPlayer(string instance, bool flag)
        {
            Check();
            Require("bridgePlrShutdown", Native.bridgePlrShutdown(
                Utf8.Bytes(instance, "instance"), flag ? (byte)1 : (byte)0));
        }

        /// <summary>Asks the multi-instance manager and every player to shut down.</summary>
        public void Shutdown()
        {
            Check();
            Native.bridgeShutdown();
        }

        // Watches before it starts, because the event may arrive before start() returns.
        private Work<T> StartWork<T>(string operation, string file, Func<int> start, Watch<T> watch)
            where T : BridgeEvent
        {
            Check();
            watches.Add(watch);
            try
            {
                Require(operation, start(), file);
            }
            catch (Exception)
            {
                watches.Remove(watch);
                throw;
            }
            return new Work<T>(this, watch.Outcome);
        }

        private static byte[] Decimal(int number)
        {
            return Utf8.Bytes(number.ToString(CultureInfo.InvariantCulture), "number");
        }
    }
}
