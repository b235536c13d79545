// Events that report the result of a command.
#include "Outcome.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ipc/IpcEvent.h"

namespace {

using Texts = std::vector<std::string>;

Event event(const std::string& name, std::vector<EventValue> values) {
    for (const IpcEvent& kind : IPC_EVENT_ROWS) {
        if (kind.name == name) return {{}, &kind, std::move(values)};
    }
    ADD_FAILURE() << name;
    return {{}, IPC_EVENT_ROWS, std::move(values)};
}

EventValue text(const char* value) { return std::string(value); }

}  // namespace

TEST(Outcome, AnAppIsLaunchedOrUninstalledWhenItsEventComes) {
    const Texts texts{"N", "com.a"};
    const Event displayed = event("app-displayed", {text("N"), text("com.a")});
    const Event uninstalled = event("app-uninstalled", {text("N"), text("com.a")});
    EXPECT_EQ(launchOutcome(displayed, texts), Outcome::Success);
    EXPECT_EQ(launchOutcome(uninstalled, texts), Outcome::Unknown);
    EXPECT_EQ(uninstallOutcome(uninstalled, texts), Outcome::Success);
    EXPECT_EQ(launchOutcome(displayed, {"N", "com.b"}), Outcome::Unknown);
    EXPECT_EQ(launchOutcome(displayed, {"M", "com.a"}), Outcome::Unknown);
}

TEST(Outcome, AnApkIsInstalledWithStatusZero) {
    const Texts texts{"N", "C:\\d\\a.apk"};
    const auto done = [](const char* instance, int status, const char* file) {
        return event("apk-install-completed", {text(instance), status, text(file)});
    };
    EXPECT_EQ(installApkOutcome(done("N", 0, "C:\\d\\a.apk"), texts), Outcome::Success);
    EXPECT_EQ(installApkOutcome(done("N", 0, "C:/d/a.apk"), texts), Outcome::Success);
    EXPECT_EQ(installApkOutcome(done("N", 5, "a.apk"), texts), Outcome::Failure);
    EXPECT_EQ(installApkOutcome(done("N", -1, "a.apk"), texts), Outcome::Failure);
    EXPECT_EQ(installApkOutcome(done("M", 0, "a.apk"), texts), Outcome::Unknown);
    EXPECT_EQ(installApkOutcome(done("N", 0, "b.apk"), texts), Outcome::Unknown);
}

TEST(Outcome, AnImageIsInstalledWithStatusTwo) {
    const auto progress = [](const char* image, int status) {
        return event("image-install-progress", {text(image), status, 50.0});
    };
    EXPECT_EQ(installImageOutcome(progress("Nougat32", 1), {"Nougat32"}), Outcome::Unknown);
    EXPECT_EQ(installImageOutcome(progress("Nougat32", 2), {"Nougat32"}), Outcome::Success);
    EXPECT_EQ(installImageOutcome(progress("Nougat32", -3), {"Nougat32"}), Outcome::Failure);
    EXPECT_EQ(installImageOutcome(progress("Nougat64", 2), {"Nougat32"}), Outcome::Unknown);
}

TEST(Outcome, AnInstanceIsCreatedWithStatusZero) {
    const auto created = [](int status, const char* instance) {
        return event("create-instance-completed", {status, text(instance)});
    };
    EXPECT_EQ(createInstanceOutcome(created(0, "Nougat64_3"), {"Nougat64"}), Outcome::Success);
    EXPECT_EQ(createInstanceOutcome(created(7, "Nougat64_3"), {"Nougat64"}), Outcome::Failure);
    EXPECT_EQ(createInstanceOutcome(created(7, ""), {"Nougat64"}), Outcome::Failure);
    EXPECT_EQ(createInstanceOutcome(created(0, ""), {"Nougat64"}), Outcome::Unknown);
    EXPECT_EQ(createInstanceOutcome(created(0, "Nougat32_3"), {"Nougat64"}), Outcome::Unknown);
}
