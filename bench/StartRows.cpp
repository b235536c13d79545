// Start-up in separate processes, and the library's size on disk and in memory.
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "SampleConf.h"
#include "support/ChildProcess.h"

namespace {

constexpr int kInstances = 10;
constexpr double kQtAim = 1.3;

// The number that the host prints.
double hostSays(const char* mode, const std::string& folder) {
    const ChildResult result = runChild(builtProgram("bench_host.exe"), {mode, folder});
    benchCheck(result.status == 0, "bench_host failed: " + result.out + result.err);
    return std::atof(result.out.c_str());
}

std::function<double(std::int64_t)> start(const char* mode,
                                          const std::shared_ptr<SampleStore>& store) {
    return [mode, store](std::int64_t times) {
        double sum = 0;
        for (std::int64_t i = 0; i < times; ++i) sum += hostSays(mode, store->folder.path());
        return sum;
    };
}

std::vector<Side> startSides() {
    const auto store = std::make_shared<SampleStore>(kInstances);
    store->folder.makeFolder("Logs");
    return {{"library", 0, start("library", store)},
            {"Qt's two DLLs alone", kQtAim, start("qt", store)}};
}

}  // namespace

void benchFootprint() {
    SampleStore store(1000);
    store.folder.makeFolder("Logs");
    const double file = static_cast<double>(sampleText(store.values).size());
    const std::string dll = readBytes(builtProgram("QX-Bridge.dll"));
    benchPrintNumbers("footprint", {{"dll", static_cast<double>(dll.size())},
                                    {"file", file},
                                    {"private", hostSays("memory", store.folder.path())}});
}

void addStartRows(Rows& rows) {
    rows.push_back({"start", "load the DLL, initialise with 10 instances, finish", startSides});
}
