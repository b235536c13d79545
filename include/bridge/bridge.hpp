/**
 * @file bridge.hpp
 * @brief bridge.h for C++17: strings that free themselves, results with error descriptions, typed
 * keys, callbacks as std::function, event queues and waitable work. Header only; does not use Qt.
 *
 * The conventions of bridge.h apply, with these differences:
 * - String arguments are std::string, and returned strings are bridge::Text.
 * - A wrong key throws an exception. In bridge.h it ends the process.
 * - An exception may leave a callback. Callbacks::failed receives it.
 * - apkInstallCompleted and instanceListUpdated are independent. In bridge.h, slots 3 and 4 must be
 *   set together.
 *
 * | header | content |
 * |---|---|
 * | preflight.hpp | finds problems before the initialisation; preflight.h does so for C |
 * | development.hpp | useFolders(): development folders in place of the registry's |
 * | session.hpp | init(), finish() |
 * | result.hpp | Text, Status, TextResult, Result, Error |
 * | conf.hpp, conf_check.hpp | configuration; KeyError |
 * | keys.hpp, key.hpp | every key, with its type |
 * | instances.hpp | instances and apps |
 * | programs.hpp | starting the product's programs |
 * | work.hpp | starting them and waiting for the outcome |
 * | callbacks.hpp, dispatch.hpp | the host's functions; registerCallbacks() |
 * | listen.hpp | listen() |
 * | event.hpp, event_queue.hpp | events as values; event queues |
 *
 * No header includes windows.h. All macros that the headers define begin with BRIDGE_.
 */
#ifndef BRIDGE_BRIDGE_HPP
#define BRIDGE_BRIDGE_HPP

#include <bridge/bridge.h>

#include <bridge/callbacks.hpp>
#include <bridge/conf.hpp>
#include <bridge/conf_check.hpp>
#include <bridge/development.hpp>
#include <bridge/dispatch.hpp>
#include <bridge/event.hpp>
#include <bridge/event_queue.hpp>
#include <bridge/instances.hpp>
#include <bridge/key.hpp>
#include <bridge/keys.hpp>
#include <bridge/listen.hpp>
#include <bridge/preflight.hpp>
#include <bridge/programs.hpp>
#include <bridge/result.hpp>
#include <bridge/session.hpp>
#include <bridge/work.hpp>

#endif
