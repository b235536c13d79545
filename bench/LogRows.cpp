// A log line that is written to a file, and one whose level is disabled.
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "support/TempFolder.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::CONF, "bench/LogRows"};
constexpr double kOffAim = 0.7;

// The same length as the lines of the other sides.
constexpr std::string_view kFloorLine =
    "2024-03-07 14:05:09.042+0100 1234  1234  CONF   Helper_bridge I: "
    "bridgeOnAppDisplayedClbk called: instance Nougat64, number 4711\n";

struct Log {
    Log() {
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
            floorPath(folder / "spdlog.log").u8string(), true);
        other = std::make_shared<spdlog::logger>("CONF", std::move(sink));
        other->set_pattern("%Y-%m-%d %H:%M:%S.%e%z %-5P %-5t %-6n Helper_bridge %L: %v", {});
        other->flush_on(spdlog::level::info);
    }

    TempFolder folder;
    std::shared_ptr<spdlog::logger> other;
    FloorFile floor{floorPath(folder / "floor.log"), FloorFile::Append};
    int number = 0;
};

std::vector<Side> writtenSides() {
    const auto log = std::make_shared<Log>();
    return {{"library", 0, timed([log] {
                 XLOG_I(kLog, "%s called: instance %s, number %d", "bridgeOnAppDisplayedClbk",
                        "Nougat64", ++log->number);
             })},
            {"spdlog", 1.0, timed([log] {
                 log->other->info("{} called: instance {}, number {}", "bridgeOnAppDisplayedClbk",
                                  "Nougat64", ++log->number);
             })},
            {"floor: WriteFile", 1.3, timed([log] { log->floor.write(kFloorLine); })}};
}

std::vector<Side> offSides() {
    const auto log = std::make_shared<Log>();
    return {{"library", 0,
             timed([] { XLOG_D(kLog, "%s called: number %d", "bridgeOnAppDisplayedClbk", 1); })},
            {"spdlog", kOffAim, timed([log] {
                 log->other->debug("{} called: number {}", "bridgeOnAppDisplayedClbk", 1);
             })}};
}

}  // namespace

void addLogRows(Rows& rows) {
    rows.push_back({"log/written", "write a log line", writtenSides});
    rows.push_back({"log/off", "meet a log line that is off", offSides});
}
