/**
 * @file work.hpp
 * @brief Starts programs and waits for the events that report their outcome.
 */
#ifndef BRIDGE_WORK_HPP
#define BRIDGE_WORK_HPP

#include <bridge/dispatch.hpp>
#include <bridge/event.hpp>
#include <bridge/event_queue.hpp>
#include <bridge/programs.hpp>
#include <bridge/result.hpp>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

namespace bridge {

/** Internal; not for hosts. */
namespace detail {

template <typename Outcome>
struct WorkState {
    std::mutex lock;
    std::condition_variable changed;
    std::optional<Outcome> outcome;
    bool hasEnded = false;

    void complete(const Outcome& event) {
        const std::lock_guard<std::mutex> guard(lock);
        outcome = event;
        changed.notify_all();
    }

    void end() {
        const std::lock_guard<std::mutex> guard(lock);
        hasEnded = true;
        changed.notify_all();
    }
};

inline bool isRegistered() {
    const std::lock_guard<std::mutex> guard(dispatch().lock);
    return dispatch().isRegistered;
}

}  // namespace detail

/**
 * A started program and the event that reports its outcome. An event completes one Work: the
 * oldest that matches it. A Work may be destroyed before its event arrives.
 */
template <typename Outcome>
class Work {
 public:
    Work(Status status, std::shared_ptr<detail::WorkState<Outcome>> state)
        : status_(std::move(status)), state_(std::move(state)) {}

    /** Whether the program has started. */
    const Status& status() const noexcept { return status_; }

    /**
     * Waits for the outcome. Returns nothing when the limit expires or the library ends first. May
     * be called again. Throws Error when the program has not started, and std::logic_error before
     * listen() or inside a callback.
     */
    std::optional<Outcome> wait(
        std::optional<std::chrono::milliseconds> limit = std::nullopt) const {
        status_.orThrow();
        if (!detail::isRegistered()) throw std::logic_error("call listen() first");
        detail::refuseOnEventThread("wait()");
        std::unique_lock<std::mutex> guard(state_->lock);
        detail::waitFor(state_->changed, guard, limit,
                        [this] { return state_->outcome.has_value() || state_->hasEnded; });
        return state_->outcome;
    }

 private:
    Status status_;
    std::shared_ptr<detail::WorkState<Outcome>> state_;
};

/** Internal; not for hosts. */
namespace detail {

/** Observes the events, then starts the program. isOutcome(event) returns whether an event belongs
 * to this Work. */
template <typename Outcome, typename Begin>
Work<Outcome> beginWork(std::function<bool(const Outcome& event)> isOutcome, Begin start) {
    auto state = std::make_shared<WorkState<Outcome>>();
    const auto observer = std::make_shared<const Observer>(
        Observer{[state, isOutcome = std::move(isOutcome)](const Event& event) {
                     const Outcome* const one = std::get_if<Outcome>(&event);
                     if (one == nullptr || !isOutcome(*one)) return false;
                     state->complete(*one);
                     return true;
                 },
                 [state] { state->end(); }});
    addObserver(&Dispatch::works, observer);
    Status status = start();
    if (!status.ok()) removeObserver(&Dispatch::works, observer);
    return Work<Outcome>(std::move(status), std::move(state));
}

}  // namespace detail

/** The functions of programs.hpp that have an outcome. Call listen() before wait(). */
namespace work {

using ApkInstalled = events::ApkInstallCompleted;
using ImageInstalled = events::InstallImageProgress;
using InstanceCreated = events::CreateInstanceCompleted;
using AppDisplayed = events::AppDisplayed;
using AppUninstalled = events::AppUninstalled;

/** The status of a completed image installation. */
inline constexpr std::int32_t kImageDone = 2;

/** Completes when the installation has succeeded or failed. The sender defines the status. */
inline Work<ApkInstalled> installApk(const std::string& instance, const std::string& apkFilePath) {
    return detail::beginWork<ApkInstalled>(
        [instance, apkFilePath](const ApkInstalled& event) {
            return event.instance == instance && event.apkFilePath == apkFilePath;
        },
        [&] { return bridge::installApk(instance, apkFilePath); });
}

/**
 * Completes at status kImageDone.
 * @param imageName name of the image
 * @param progress  receives every other status on the event thread; may be empty
 * @return the Work
 */
inline Work<ImageInstalled> installImage(
    const std::string& imageName,
    const std::function<void(const ImageInstalled& event)>& progress = {}) {
    return detail::beginWork<ImageInstalled>(
        [imageName, progress](const ImageInstalled& event) {
            if (event.imageName != imageName) return false;
            if (event.status == kImageDone) return true;
            if (progress) progress(event);
            return false;
        },
        [&] { return bridge::installImage(imageName); });
}

/** Completes at the next event about a created instance, since the event does not identify the
 * request. */
inline Work<InstanceCreated> createFreshInstance(const FreshInstance& wanted) {
    return detail::beginWork<InstanceCreated>([](const InstanceCreated&) { return true; },
                                              [&] { return bridge::createFreshInstance(wanted); });
}

/** Completes when the app comes to the foreground. */
inline Work<AppDisplayed> launchApp(const std::string& instance, const std::string& package) {
    return detail::beginWork<AppDisplayed>(
        [instance, package](const AppDisplayed& event) {
            return event.instance == instance && event.package == package;
        },
        [&] { return bridge::launchApp(instance, package); });
}

/** Completes when the app is uninstalled. */
inline Work<AppUninstalled> uninstallApp(const std::string& instance, const std::string& package) {
    return detail::beginWork<AppUninstalled>(
        [instance, package](const AppUninstalled& event) {
            return event.instance == instance && event.package == package;
        },
        [&] { return bridge::uninstallApp(instance, package); });
}

}  // namespace work

}  // namespace bridge

#endif
