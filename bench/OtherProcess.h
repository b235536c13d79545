#ifndef BENCH_OTHERPROCESS_H
#define BENCH_OTHERPROCESS_H

#include <functional>

// Another process that commits changes to its own configuration of this many instances. Call the
// result with true to resume it and with false to pause it. Null on systems without such a process.
std::function<void(bool works)> otherProcess(int instances);

#endif
