// Rounds, their stability, and output as lines of JSON.
#include "Bench.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr int kRounds = 11;
constexpr int kAttempts = 3;
constexpr int kSingleRounds = 40;
constexpr double kSampleNanoseconds = 20e6;

// Maximum ratio of the slowest to the fastest sample in the middle half.
constexpr double kSpread = 1.35;

using Samples = std::vector<double>;  // nanoseconds per operation

// The middle half, sorted.
Samples core(Samples samples) {
    std::sort(samples.begin(), samples.end());
    const auto quarter = static_cast<std::ptrdiff_t>(samples.size() / 4);
    return {samples.begin() + quarter, samples.end() - quarter};
}

double spreadOf(const Samples& samples) {
    const Samples middle = core(samples);
    return middle.back() / middle.front();
}

double worstSpread(const std::vector<Samples>& sides) {
    double worst = 1;
    for (const Samples& samples : sides) worst = std::max(worst, spreadOf(samples));
    return worst;
}

// The number of operations per sample. The first operation is not timed, because it initialises.
std::int64_t timesFor(const Side& side) {
    side.time(1);
    for (std::int64_t times = 1;; times *= 4) {
        const double took = side.time(times);
        if (took < kSampleNanoseconds / 8) continue;
        const double wanted = static_cast<double>(times) * kSampleNanoseconds / took;
        return std::max<std::int64_t>(1, static_cast<std::int64_t>(wanted));
    }
}

std::vector<Samples> measureOnce(const Row& row, const std::vector<Side>& sides,
                                 const std::vector<std::int64_t>& times) {
    std::vector<Samples> all(sides.size());
    for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const double took = sides[i].time(times[i]);
            all[i].push_back(took / static_cast<double>(times[i]) / row.pieces);
        }
    }
    return all;
}

// Compares the even rounds with the odd ones to see whether the figures are repeatable.
using Halves = std::array<Samples, 2>;

std::vector<Halves> measureSingleTimes(const std::vector<Side>& sides) {
    std::vector<Halves> all(sides.size());
    Samples ignored;
    for (const Side& side : sides) side.each(ignored);
    for (std::size_t round = 0; round < kSingleRounds; ++round) {
        for (std::size_t i = 0; i < sides.size(); ++i) sides[i].each(all[i][round % 2]);
    }
    for (Halves& halves : all) {
        for (Samples& half : halves) std::sort(half.begin(), half.end());
    }
    return all;
}

double quantileOf(const Samples& sorted, double quantile) {
    return sorted[static_cast<std::size_t>(quantile * static_cast<double>(sorted.size() - 1))];
}

void printList(const char* name, const Samples& samples) {
    std::printf("\"%s\": [", name);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        std::printf("%s%.4g", i == 0 ? "" : ", ", samples[i]);
    }
    std::printf("]");
}

void print(const Row& row, const std::vector<Side>& sides, const std::vector<Samples>& all,
           int attempts) {
    std::printf("{\"row\": \"%s\", \"work\": \"%s\", \"attempts\": %d, \"sides\": [",
                row.name.c_str(), row.work.c_str(), attempts);
    for (std::size_t i = 0; i < sides.size(); ++i) {
        std::printf("%s{\"name\": \"%s\", \"aim\": %g, ", i == 0 ? "" : ", ", sides[i].name.c_str(),
                    sides[i].aim);
        printList("samples", all[i]);
        std::printf("}");
    }
    std::printf("]}\n");
    std::fflush(stdout);
}

void printQuantiles(const Halves& halves) {
    Samples all = halves[0];
    all.insert(all.end(), halves[1].begin(), halves[1].end());
    std::sort(all.begin(), all.end());
    std::printf("\"quantiles\": {");
    for (const double quantile : {0.1, 0.5, 0.99, 0.999}) {
        std::printf("\"%g\": %.4g, ", quantile, quantileOf(all, quantile));
    }
    std::printf("\"1\": %.4g}", all.back());
}

void printSingleTimes(const Row& row, const std::vector<Side>& sides,
                      const std::vector<Halves>& all) {
    std::printf("{\"row\": \"%s\", \"work\": \"%s\", \"quantile\": %g, \"sides\": [",
                row.name.c_str(), row.work.c_str(), row.quantile);
    for (std::size_t i = 0; i < sides.size(); ++i) {
        std::printf("%s{\"name\": \"%s\", \"aim\": %g, ", i == 0 ? "" : ", ", sides[i].name.c_str(),
                    sides[i].aim);
        printList("samples",
                  {quantileOf(all[i][0], row.quantile), quantileOf(all[i][1], row.quantile)});
        std::printf(", ");
        printQuantiles(all[i]);
        std::printf("}");
    }
    std::printf("]}\n");
    std::fflush(stdout);
}

}  // namespace

void benchFail(std::string_view why) {
    std::fprintf(stderr, "error: %.*s\n", static_cast<int>(why.size()), why.data());
    std::fflush(nullptr);
    std::_Exit(1);
}

void benchMeasure(const Row& row) {
    const std::vector<Side> sides = row.sides();
    if (sides.front().each) {
        printSingleTimes(row, sides, measureSingleTimes(sides));
        return;
    }
    std::vector<std::int64_t> times;
    for (const Side& side : sides) times.push_back(timesFor(side));
    std::vector<Samples> best = measureOnce(row, sides, times);
    int attempts = 1;
    for (; attempts < kAttempts && worstSpread(best) > kSpread; ++attempts) {
        std::vector<Samples> again = measureOnce(row, sides, times);
        if (worstSpread(again) < worstSpread(best)) best = std::move(again);
    }
    print(row, sides, best, attempts);
}

void benchRepeat(const Row& row, const std::string& side, std::int64_t times) {
    for (const Side& candidate : row.sides()) {
        if (candidate.name != side || !candidate.time) continue;
        candidate.time(1);
        candidate.time(times);
        return;
    }
    benchFail("no such side");
}

void benchPrintNumbers(std::string_view row,
                       const std::vector<std::pair<std::string, double>>& numbers) {
    std::printf("{\"row\": \"%.*s\", \"numbers\": {", static_cast<int>(row.size()), row.data());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        std::printf("%s\"%s\": %.0f", i == 0 ? "" : ", ", numbers[i].first.c_str(),
                    numbers[i].second);
    }
    std::printf("}}\n");
    std::fflush(stdout);
}
