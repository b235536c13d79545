// A host that uses Qt itself: qt_host DATA-FOLDER ORDER
//
// ORDER says when the application object is created. Its loop runs while events arrive.
//
//     before     before the library is initialised
//     after      afterwards, on the same thread
//     ended      before, and deleted again
//     none       never
//     elsewhere  afterwards, on another thread: Qt warns
#include <QCoreApplication>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "event_printer.hpp"
#include "support/RegistrySandbox.h"
#include "support/event_table.h"

namespace {

void printWarning(QtMsgType, const QMessageLogContext&, const QString& text) {
    std::printf("Qt says: %s\n", text.toUtf8().constData());
}

std::unique_ptr<QCoreApplication> makeApplication() {
    static int count = 1;
    static char name[] = "qt_host";
    static char* arguments[] = {name, nullptr};
    return std::make_unique<QCoreApplication>(count, arguments);
}

void startLibrary(EventPrinter& printer) {
    std::printf("init %d\n", bridge::init(bridge::Client::Helper).code());
    bridge::registerCallbacks(printer.callbacks());
}

// Runs the application's loop until every event has arrived.
void runLoop(EventPrinter& printer) {
    std::thread waiting([&printer] {
        printer.waitFor(KNOWN_EVENT_COUNT);
        QMetaObject::invokeMethod(
            qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    });
    bool timerRan = false;
    QTimer::singleShot(0, qApp, [&timerRan] { timerRan = true; });
    QCoreApplication::exec();
    waiting.join();
    std::printf("the host's own timer ran: %d\n", timerRan);
}

void play(const std::string& order, EventPrinter& printer) {
    std::unique_ptr<QCoreApplication> application;
    if (order == "before" || order == "ended") application = makeApplication();
    if (order == "ended") application.reset();
    startLibrary(printer);
    if (order == "after") application = makeApplication();
    if (order == "elsewhere") std::thread([] { makeApplication(); }).join();
    if (application != nullptr) {
        runLoop(printer);
    } else {
        printer.waitFor(KNOWN_EVENT_COUNT);
    }
    bridge::finish();
}

}  // namespace

int main(int, char** arguments) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    qInstallMessageHandler(printWarning);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", arguments[1]);
    play(arguments[2], *new EventPrinter);
    std::printf("finished\n");
    return 0;
}
