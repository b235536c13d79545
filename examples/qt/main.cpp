// A small host with Qt: example_qt [EVENTS]
// Lists the instances, reads a setting, runs its event loop until EVENTS events have arrived
// (default 0), and ends.
#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>
#include <bridge/bridge.hpp>
#include <cstdio>
#include <string_view>

namespace {

QString textOf(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

void print(const QString& line) {
    static QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << line << '\n';
    out.flush();
}

}  // namespace

int main(int count, char** arguments) {
    QCoreApplication application(count, arguments);
    for (const bridge::Problem& one : bridge::preflight(bridge::Client::Helper)) {
        print(QString::fromStdString(one.what + ": " + one.remedy));
        return 1;
    }
    if (const bridge::Status status = bridge::init(bridge::Client::Helper); !status) {
        print(QString("the library does not start: %1").arg(status.code()));
        print(status.error().what());
        return 1;
    }
    print("instances " + QString::fromStdString(bridge::instances().valueOr("")));
    print("locale " + QString::fromStdString(bridge::conf::get(bridge::keys::locale)));

    // Events arrive on the library's thread. Forward them to the application's thread, where its
    // objects live.
    int expected = count > 1 ? application.arguments().at(1).toInt() : 0;
    const auto toApplication = [&](const QString& line) {
        const auto handle = [&, line] {
            print(line);
            if (--expected == 0) application.quit();
        };
        QMetaObject::invokeMethod(&application, handle, Qt::QueuedConnection);
    };
    bridge::Callbacks callbacks;
    callbacks.appInstalled = [&](const bridge::AppInstalled& app) {
        toApplication("installed " + textOf(app.instance) + ' ' + textOf(app.package) + ": " +
                      textOf(app.appLabel) + ' ' + textOf(app.versionName));
    };
    callbacks.appDisplayed = [&](std::string_view instance, std::string_view package) {
        toApplication("displayed " + textOf(instance) + ' ' + textOf(package));
    };
    if (const auto result = bridge::listen(callbacks); !result) {
        print(QString::fromStdString(result.text));
        return 1;
    }
    print("listening");
    QTimer::singleShot(expected > 0 ? 30000 : 0, &application, &QCoreApplication::quit);
    application.exec();

    bridge::finish();
    print("finished");
}
