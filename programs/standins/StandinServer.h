#ifndef STANDINS_STANDINSERVER_H
#define STANDINS_STANDINSERVER_H

#include <functional>
#include <string>
#include <string_view>

#include "StandinPipe.h"
#include "StandinScript.h"

// Serves a local socket, of which `first` listens already, until `onPacket` answers false or nobody
// came for `idleSeconds`. Connections are served one after another; each packet is handed over
// whole, and its reply, if it wants one, is written as the script has it.
void standinServe(StandinPipe first, const std::string& serverName, const StandinScript& script,
                  int idleSeconds, const std::function<bool(std::string_view packet)>& onPacket);

#endif
