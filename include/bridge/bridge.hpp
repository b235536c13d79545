/**
 * @file bridge.hpp
 * @brief bridge.h for C++17: texts that free themselves, results that say what went wrong, keys
 * with types, callbacks as std::function, events and work to wait for. Header only; needs no Qt.
 *
 * The conventions of bridge.h hold. What differs: texts go in as std::string and come back as
 * bridge::Text, a wrong key is an exception instead of the end of the process, an exception of a
 * callback stays in the host, and the functions for finished APK installs and for the instance list
 * are called whenever they are set, each without regard to the other (bridge.h: slots 3 and 4).
 *
 * | header | what is in it |
 * |---|---|
 * | preflight.hpp | what the start would fail at; preflight.h is the same for C |
 * | development.hpp | useFolders(): other folders than the registry's, for development |
 * | session.hpp | init(), finish() |
 * | result.hpp | Text, Status, TextResult, Result, Error |
 * | conf.hpp, conf_check.hpp | the configuration; KeyError |
 * | keys.hpp, key.hpp | every key, with its type |
 * | instances.hpp | instances and apps |
 * | programs.hpp | starts the product's programs |
 * | work.hpp | the same, with an outcome to wait for |
 * | callbacks.hpp, dispatch.hpp | the host's functions; registerCallbacks() |
 * | listen.hpp | listen() |
 * | event.hpp, event_queue.hpp | events as values, and a queue of them |
 *
 * No header includes windows.h or leaves macros behind but those that begin with BRIDGE_.
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
