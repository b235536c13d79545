#include "OtherProcess.h"

#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "SampleConf.h"
#include "support/ChildProcess.h"
#include "support/WindowsForTests.h"

namespace {

struct Committer {
    Committer(int instances, const std::string& eventName) : store(instances) {
        store.folder.makeFolder("Logs");
        event = ::CreateEventA(nullptr, /*bManualReset=*/TRUE, FALSE, eventName.c_str());
        const std::string key = someKeys(store.values, ConfType::String, 1).front();
        child = std::make_unique<ChildProcess>(
            builtProgram("bench_host.exe"),
            std::vector<std::string>{"commit", store.folder.path(), key, eventName});
        child->readLine();
    }
    ~Committer() {
        child.reset();
        ::CloseHandle(event);
    }
    Committer(const Committer&) = delete;
    Committer& operator=(const Committer&) = delete;

    SampleStore store;
    HANDLE event;
    std::unique_ptr<ChildProcess> child;
};

}  // namespace

std::function<void(bool)> otherProcess(int instances) {
    const std::string name = "QX-Bridge-bench-" + std::to_string(::GetCurrentProcessId());
    const auto committer = std::make_shared<Committer>(instances, name);
    return [committer](bool works) {
        benchCheck((works ? ::SetEvent : ::ResetEvent)(committer->event) != FALSE, "no event");
    };
}
