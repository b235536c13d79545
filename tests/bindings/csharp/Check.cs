// The checks of the C# tests. Each public static method of a test class is a test. They run in source order,
// and the first failed check ends the process.

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text;
using QXBridge;

static class Check
{
    [DllImport("QX-Bridge.dll")] internal static extern IntPtr fakeCalls();
    [DllImport("QX-Bridge.dll")] internal static extern void fakeReset();
    [DllImport("QX-Bridge.dll")] internal static extern void fakeAnswer(int code);
    [DllImport("QX-Bridge.dll")] internal static extern int fakeLiveTexts();
    [DllImport("QX-Bridge.dll")] internal static extern IntPtr fakeClient();
    [DllImport("QX-Bridge.dll")] internal static extern void fakeSend(int full);
    [DllImport("QX-Bridge.dll")] internal static extern void fakeFlood();

    internal static int Tests { get; private set; }
    internal static int Count { get; private set; }

    internal static void Run(Type tests, Action<Action> around = null)
    {
        int before = Tests;
        const BindingFlags Own = BindingFlags.Public | BindingFlags.Static | BindingFlags.DeclaredOnly;
        foreach (MethodInfo method in tests.GetMethods(Own).OrderBy(one => one.MetadataToken))
        {
            var test = (Action)Delegate.CreateDelegate(typeof(Action), method);
            if (around == null) test();
            else around(test);
            ++Tests;
        }
        Equal(true, Tests > before);
    }

    internal static string Text(IntPtr memory)
    {
        var bytes = new List<byte>();
        for (int i = 0; Marshal.ReadByte(memory, i) != 0; ++i) bytes.Add(Marshal.ReadByte(memory, i));
        return Encoding.UTF8.GetString(bytes.ToArray());
    }

    internal static void Equal(object expected, object actual)
    {
        ++Count;
        if (Equals(expected, actual)) return;
        Console.Error.WriteLine("expected: " + expected + "\nactual:   " + actual + "\n" +
            Environment.StackTrace);
        Environment.Exit(1);
    }

    // Expects these calls of the library since the last such check.
    internal static void Called(params string[] expected)
    {
        Equal(string.Join("\n", expected), Text(fakeCalls()).TrimEnd('\n'));
        fakeReset();
    }

    internal static Exception ThrownBy(Action call)
    {
        try
        {
            call();
            return null;
        }
        catch (Exception exception)
        {
            return exception is AggregateException ? exception.InnerException : exception;
        }
    }

    internal static T Throws<T>(Action call) where T : Exception
    {
        Exception thrown = ThrownBy(call);
        Equal(typeof(T).Name, thrown == null ? "nothing" : thrown.GetType().Name);
        return (T)thrown;
    }

    internal static void Throws<T>(string message, Action call) where T : Exception
    {
        Equal(message, Throws<T>(call).Message);
    }

    // Expects each call to throw a KeyException with this message.
    internal static void Refused(string message, params Action[] calls)
    {
        foreach (Action call in calls) Throws<KeyException>(message, call);
    }

    internal static void Fails(string operation, int code, Action call)
    {
        var thrown = ThrownBy(call) as BridgeException;
        Equal(operation + " " + code, thrown == null ? "nothing" : thrown.Operation + " " + thrown.Code);
    }

    internal static void CollectGarbage()
    {
        for (int i = 0; i < 20; ++i)
        {
            for (int n = 0; n < 1000; ++n) GC.KeepAlive(new byte[9 + n % 7]);
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }
    }
}

/// <summary>A data folder for FakeMachine's registry.</summary>
sealed class DataFolder : IDisposable
{
    internal readonly string Path = System.IO.Path.Combine(System.IO.Path.GetTempPath(),
        "qx-bridge-csharp-" + Guid.NewGuid().ToString("N"));
    internal readonly string ConfPath, LogPath;

    internal DataFolder(params string[] confLines)
    {
        ConfPath = Of("vantrel.conf");
        LogPath = Of("Logs", "Player.log");
        Directory.CreateDirectory(Of("Logs"));
        Write(confLines);
    }

    internal string Of(params string[] parts)
    {
        return System.IO.Path.Combine(Path, System.IO.Path.Combine(parts));
    }

    internal void Write(params string[] confLines)
    {
        File.WriteAllBytes(ConfPath, Encoding.UTF8.GetBytes(string.Concat(
            Array.ConvertAll(confLines, line => line + "\n"))));
    }

    public void Dispose()
    {
        Directory.Delete(Path, true);
    }
}
