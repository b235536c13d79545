/**
 * @file dispatch.hpp
 * @brief Passes events from the library to callbacks, queues and works. Not for hosts.
 */
#ifndef BRIDGE_DISPATCH_HPP
#define BRIDGE_DISPATCH_HPP

#include <algorithm>
#include <bridge/callbacks.hpp>
#include <bridge/configuration_file.hpp>
#include <bridge/event.hpp>
#include <deque>
#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace bridge::detail {

/** A waiting queue or work. */
struct Observer {
    /** Called on the event thread with each event. Returns whether it is the expected one. */
    std::function<bool(const Event& event)> take;
    /** Called when the library ends. */
    std::function<void()> end;
};
using SharedObserver = std::shared_ptr<const Observer>;

/** Sorted by age, oldest first. */
using Observers = std::list<SharedObserver>;

struct Dispatch {
    std::mutex lock;
    std::shared_ptr<const Callbacks> callbacks;
    Observers queues;  // each receives every event
    Observers works;   // an event completes one of them and removes it
    std::thread::id eventThread;
    bool isRegistered = false;
    bool hasEnded = false;
};

/** Never destroyed, because events can arrive until the process ends. */
inline Dispatch& dispatch() {
    static Dispatch& state = *new Dispatch;
    return state;
}

inline bool isEventThread() {
    const std::lock_guard<std::mutex> guard(dispatch().lock);
    return dispatch().eventThread == std::this_thread::get_id();
}

/** Adds a queue or work. Ends it immediately if the library has ended. */
inline void addObserver(Observers Dispatch::*observers, const SharedObserver& one) {
    {
        const std::lock_guard<std::mutex> guard(dispatch().lock);
        if (!dispatch().hasEnded) {
            (dispatch().*observers).push_back(one);
            return;
        }
    }
    one->end();
}

inline void removeObserver(Observers Dispatch::*observers, const SharedObserver& one) {
    const std::lock_guard<std::mutex> guard(dispatch().lock);
    (dispatch().*observers).remove(one);
}

/** Call it after the last event. */
inline void endObservers() {
    Observers all;
    {
        const std::lock_guard<std::mutex> guard(dispatch().lock);
        dispatch().hasEnded = true;
        dispatch().eventThread = std::thread::id();  // another thread may get its id
        all.splice(all.end(), dispatch().queues);
        all.splice(all.end(), dispatch().works);
    }
    for (const SharedObserver& one : all) one->end();
}

inline void observe(const Event& event) {
    Observers queues;
    Observers works;
    {
        const std::lock_guard<std::mutex> guard(dispatch().lock);
        queues = dispatch().queues;
        works = dispatch().works;
    }
    for (const SharedObserver& one : queues) one->take(event);
    for (const SharedObserver& one : works) {
        if (!one->take(event)) continue;
        removeObserver(&Dispatch::works, one);
        return;
    }
}

inline bool isObserved() {
    const std::lock_guard<std::mutex> guard(dispatch().lock);
    return !dispatch().queues.empty() || !dispatch().works.empty();
}

/** The current callbacks. The pointer keeps them alive while one of them runs. */
inline std::shared_ptr<const Callbacks> callbacksNow() {
    const std::lock_guard<std::mutex> guard(dispatch().lock);
    dispatch().eventThread = std::this_thread::get_id();
    return dispatch().callbacks;
}

/** Runs one step of a delivery and passes its exception to Callbacks::failed. */
template <typename Part>
void guarded(const std::shared_ptr<const Callbacks>& callbacks, Part part) noexcept {
    try {
        part();
    } catch (...) {
        try {
            if (callbacks && callbacks->failed) callbacks->failed(std::current_exception());
        } catch (...) {
        }
    }
}

/** Calls the host's function, then passes makeEvent() to the queues and works, if there are any. */
template <typename MakeEvent, typename Function, typename... Arguments>
void deliver(MakeEvent makeEvent, Function Callbacks::*member, Arguments&&... arguments) noexcept {
    std::shared_ptr<const Callbacks> callbacks;
    guarded(callbacks, [&] { callbacks = callbacksNow(); });
    guarded(callbacks, [&] {
        if (!callbacks) return;
        const Function& function = (*callbacks).*member;
        if (function) function(std::forward<Arguments>(arguments)...);
    });
    guarded(callbacks, [&] {
        if (isObserved()) observe(Event(makeEvent()));
    });
}

/** Call it at the two events before which the library reloads the configuration. */
inline void loadedAgain() noexcept {
    guarded({}, [] { configuration().load(); });
}

/** Registers the nine C callbacks. */
inline void registerAll() {
    bridgeRegisterCallbacks(
        [](const char* instance, const char* package, const char* activity, const char* appLabel,
           bridge_i32 versionCode, const char* versionName, const char* iconFilePath,
           bridge_bool isUpdate) {
            const AppInstalled app{instance,    package,     activity,     appLabel,
                                   versionCode, versionName, iconFilePath, isUpdate != 0};
            const auto event = [&] {
                return events::AppInstalled{instance,    package,     activity,     appLabel,
                                            versionCode, versionName, iconFilePath, isUpdate != 0};
            };
            deliver(event, &Callbacks::appInstalled, app);
        },
        [](const char* instance, const char* package) {
            const auto event = [&] { return events::AppUninstalled{instance, package}; };
            deliver(event, &Callbacks::appUninstalled, instance, package);
        },
        [](const char* instance, bridge_i32 status, const char* apkFilePath) {
            const auto event = [&] {
                return events::ApkInstallCompleted{instance, status, apkFilePath};
            };
            deliver(event, &Callbacks::apkInstallCompleted, instance, status, apkFilePath);
        },
        [] {
            loadedAgain();
            deliver([] { return events::InstanceListUpdated(); }, &Callbacks::instanceListUpdated);
        },
        [](const char* imageName, bridge_i32 status, double progress) {
            const auto event = [&] {
                return events::InstallImageProgress{imageName, status, progress};
            };
            deliver(event, &Callbacks::installImageProgress, imageName, status, progress);
        },
        [](bridge_i32 status, const char* instance) {
            const auto event = [&] { return events::CreateInstanceCompleted{status, instance}; };
            deliver(event, &Callbacks::createInstanceCompleted, status, instance);
        },
        [](const char* instance) {
            loadedAgain();
            const auto event = [&] { return events::InstanceConfigurationChanged{instance}; };
            deliver(event, &Callbacks::instanceConfigurationChanged, instance);
        },
        [](const char* instance, const char* package) {
            const auto event = [&] { return events::AppDisplayed{instance, package}; };
            deliver(event, &Callbacks::appDisplayed, instance, package);
        },
        [](const char* instance, const char* emailId, bridge_i32 action) {
            const auto event = [&] {
                return events::AccountListUpdated{instance, emailId, action};
            };
            deliver(event, &Callbacks::accountListUpdated, instance, emailId, action);
        });
}

}  // namespace bridge::detail

namespace bridge {

/** bridgeRegisterCallbacks(): replaces all functions. The first call also starts the event server.
 * Use listen() to learn whether the server has started. */
inline void registerCallbacks(Callbacks callbacks) {
    auto shared = std::make_shared<const Callbacks>(std::move(callbacks));
    {
        const std::lock_guard<std::mutex> guard(detail::dispatch().lock);
        detail::dispatch().callbacks.swap(shared);
        detail::dispatch().isRegistered = true;
    }
    detail::registerAll();
}

}  // namespace bridge

#endif
