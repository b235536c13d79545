#ifndef BENCH_OTHERPROCESS_H
#define BENCH_OTHERPROCESS_H

#include <functional>

// Another process that commits changes to its own configuration of this number of instances. Call
// the result with true to resume it and with false to pause it. Null where the system has no such
// process.
std::function<void(bool works)> otherProcess(int instances);

#endif
