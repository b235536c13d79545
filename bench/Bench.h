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

// The harness: rows of work, each done by several sides, one after another in rounds, so that what
// else happens on the machine meets all of them.

// One way of doing a row's work.
struct Side {
    std::string name;

    // Highest ratio of the library's time to this side's that is aimed at; 0: none.
    double aim = 0;

    // Does the work so many times and returns the nanoseconds that it took.
    std::function<double(std::int64_t times)> time;

    // In place of `time`, in rows about single times: does the work for one round and appends the
    // nanoseconds of each time.
    std::function<void(std::vector<double>& times)> each = nullptr;
};

struct Row {
    std::string name;  // "load/1000": what the command line selects by, up to any "/"
    std::string work;  // for readers

    // Sets the work up; called when the row is measured. The first side is the library. What the
    // sides own goes when they go.
    std::function<std::vector<Side>()> sides;

    // Pieces of work that one time is for: times are shown for one of them.
    double pieces = 1;

    // Of single times, the quantile whose ratio counts; 0: they are shown, and no ratio.
    double quantile = 0;
};

using Rows = std::vector<Row>;

inline double nanosecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
        .count();
}

// Sides' times around a call, or around a call that something comes before each time.
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

// Ends the program: a row that cannot do its work must not look fast.
[[noreturn]] void benchFail(std::string_view why);
inline void benchCheck(bool ok, std::string_view why) {
    if (!ok) benchFail(why);
}

// Keeps a result from being optimised away.
template <typename Value>
void benchUse(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

// Measures a row and prints it as one line of JSON.
void benchMeasure(const Row& row);

// Sets a row up and does the work of one of its sides so many times, for a profiler to look at.
void benchRepeat(const Row& row, const std::string& side, std::int64_t times);

// A line of JSON with numbers that are no times: name, and pairs of name and number.
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

// Prints the row "footprint": sizes of the DLL, of a configuration of 1,000 instances, and of the
// private memory that initialising with it takes.
void benchFootprint();

#endif
