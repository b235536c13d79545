#ifndef BENCH_OTHERPROCESS_H
#define BENCH_OTHERPROCESS_H

#include <functional>

// Another process that commits changes of a configuration of its own, of so many instances. Calling
// the result with true lets it work, with false lets it rest. Null where there can be none.
std::function<void(bool works)> otherProcess(int instances);

#endif
