#ifndef STANDINS_STANDINSERVER_H
#define STANDINS_STANDINSERVER_H

#include <functional>
#include <string>
#include <string_view>

#include "StandinPipe.h"
#include "StandinScript.h"

// Serves a local socket until `onPacket` returns false or no client connects for `idleSeconds`.
// `first` already listens. Handles one connection at a time. Passes each complete packet to
// `onPacket`, and writes its reply, if it expects one, according to the script.
void standinServe(StandinPipe first, const std::string& serverName, const StandinScript& script,
                  int idleSeconds, const std::function<bool(std::string_view packet)>& onPacket);

#endif
