using System;
using QXBridge;

static class Host {
    static void Main(string[] arguments) {
        if (arguments.Length > 0) Session.Load(arguments[0]);
        using (var session = new Session(Client.Helper)) {
            EventStream events = session.Events(EventKind.AppDisplayed);
            session.Listen();
            var shown = (AppDisplayed)events.ReadAsync().Result;
            Console.WriteLine(shown.Instance + " shows " + shown.Package);
        }
    }
}
