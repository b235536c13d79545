#ifndef STANDINS_STANDINSERVER_H
#define STANDINS_STANDINSERVER_H

#include <functional>
#include <string>
#include <string_view>

#include "StandinScript.h"

// Serves a local socket over the system calls themselves until `onPacket` answers false or nobody
// came for `idleSeconds`. Connections are served one after another; each packet is handed over
// whole, and its reply, if it wants one, is written as the script has it.
void standinServe(const std::string& serverName, const StandinScript& script, int idleSeconds,
                  const std::function<bool(std::string_view packet)>& onPacket);

// Whether somebody serves that name already.
bool standinIsServed(const std::string& serverName);

#endif
