#ifndef BENCH_BENCH_H
#define BENCH_BENCH_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <ratio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The harness. A row is an operation that several sides implement. The sides take turns in rounds,
// so that other load on the machine affects all of them.

// One implementation of a row's operation.
struct Side {
    std::string name;

    // Maximum intended ratio of the library's time to this side's time; 0: none.
    double aim = 0;

    // Repeats the operation and returns the nanoseconds that it took.
    std::function<double(std::int64_t times)> time;

    // Instead of `time`, in rows that time each operation: repeats it for one round and appends
    // the nanoseconds of each.
    std::function<void(std::vector<double>& times)> each = nullptr;
};

struct Row {
    std::string name;  // "load/1000"; the command line selects by the parts before each "/"
    std::string work;  // description for readers

    // Creates the sides when the row is measured. The first side is the library. The sides own what
    // they use.
    std::function<std::vector<Side>()> sides;

    // Operations per measured time. Times are shown per operation.
    double pieces = 1;

    // In rows that time each operation, the quantile whose ratio counts; 0: no ratio.
    double quantile = 0;
};

using Rows = std::vector<Row>;

inline double nanosecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
        .count();
}

// Times a call, or a call with an untimed preparation before each repetition.
template <typename Run>
std::function<double(std::int64_t)> timed(Run run) {
    return [run](std::int64_t times) {
        const auto start = std::chrono::steady_clock::now();
        for (std::int64_t i = 0; i < times; ++i) run();
        return nanosecondsSince(start);
    };
}

template <typename Prepare, typename Run>
std::function<double(std::int64_t)> timedAfter(Prepare prepare, Run run) {
    return [prepare, run](std::int64_t times) {
        double sum = 0;
        for (std::int64_t i = 0; i < times; ++i) {
            prepare();
            const auto start = std::chrono::steady_clock::now();
            run();
            sum += nanosecondsSince(start);
        }
        return sum;
    };
}

// Ends the program, because a row that fails must not look fast.
[[noreturn]] void benchFail(std::string_view why);
inline void benchCheck(bool ok, std::string_view why) {
    if (!ok) benchFail(why);
}

// Prevents the compiler from removing the computation of a result.
template <typename Value>
void benchUse(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

// Measures a row and prints it as one line of JSON.
void benchMeasure(const Row& row);

// Repeats the operation of one side of a row, for a profiler.
void benchRepeat(const Row& row, const std::string& side, std::int64_t times);

// Prints a line of JSON with numbers that are not times: a name, and pairs of name and number.
void benchPrintNumbers(std::string_view row,
                       const std::vector<std::pair<std::string, double>>& numbers);

// The rows of each file.
void addLoadRows(Rows& rows);
void addAccessRows(Rows& rows);
void addCommitRows(Rows& rows);
void addListingRows(Rows& rows);
void addLogRows(Rows& rows);
void addRequestRows(Rows& rows);
void addEventRows(Rows& rows);
void addStartRows(Rows& rows);
void addThreadRows(Rows& rows);

// Prints the row "footprint": the sizes of the DLL, of a configuration of 1,000 instances, and of
// the private memory that the initialisation with it allocates.
void benchFootprint();

#endif
