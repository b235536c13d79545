// Event packets. The host gets the same calls as from the reference reader, or the log gets one
// error line. The packet is in memory of exactly its size.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Check.h"
#include "bridge/BridgeDec.h"
#include "bridge/HostCalls.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/MalformedPackets.h"

namespace {

// Events about instances reload the configuration, which has no file here.
void setUp() {
    static const bool once = [] {
        confStore().fileLockName = "Global\\vtr_fuzz_events";
        check(confLibInit(confStore(), "", /*allowDeprecated=*/false) == 0, "there is a store");
        bridgeSetCallbacks(writingHost());
        return true;
    }();
    static_cast<void>(once);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static LogCapture& log = *new LogCapture;
    setUp();
    log.clear();
    hostCalls.clear();
    const auto packet = std::make_unique<std::uint8_t[]>(size);
    std::copy(data, data + size, packet.get());
    const bool dispatched =
        bridgeDecode(nullptr, packet.get(), static_cast<std::int32_t>(size), nullptr, 0);
    const Reading expected = referenceReading(std::string(textOf(data, size)));
    check(hostCalls == expected.calls, "the host's calls");
    check(dispatched == expected.error.empty(), "the answer");
    const std::vector<std::string> errors = log.texts(XLOG_ERROR);
    check(errors.size() == (expected.error.empty() ? 0u : 1u), "one line for an error");
    check(errors.empty() || errors[0] == expected.error, "the error's line");
    return 0;
}
