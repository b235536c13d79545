#include "StandinSender.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "StandinEvents.h"
#include "StandinPipe.h"

namespace {

// Limit for a front end that is busy or does not read.
constexpr std::uint32_t kTimeoutMs = 30'000;

// Long enough for the two parts of a split event to arrive separately.
constexpr std::chrono::milliseconds kBetweenParts{50};

std::string serverOf(const std::string& client) { return "vtr_" + client + "_bridge_nvo"; }

bool write(StandinPipe& pipe, std::string_view bytes, const std::optional<std::size_t>& split) {
    const std::size_t first = std::min(split.value_or(bytes.size()), bytes.size());
    if (!pipe.write(bytes.substr(0, first), kTimeoutMs)) return false;
    if (first == bytes.size()) return true;
    std::this_thread::sleep_for(kBetweenParts);
    return pipe.write(bytes.substr(first), kTimeoutMs);
}

// Sends events to one front end.
class Delivery {
 public:
    Delivery(const StandinSending& sending, std::string server)
        : sending_(sending), server_(std::move(server)) {}

    // Sends until the first failure and reports the results. False after a failure.
    bool sendAll(const std::vector<StandinEvent>& events) {
        std::string lines;
        bool failed = false;
        for (const StandinEvent& event : events) {
            const StandinDelivery result = send(event);
            lines += standinDescribeEvent(event, result, sending_.format) + "\n";
            failed = result.failed;
            if (failed) break;
        }
        sending_.report(lines);
        return !failed;
    }

 private:
    StandinDelivery send(const StandinEvent& event) {
        const StandinScript& script = sending_.script;
        std::string bytes = standinEncodeEvent(event);
        StandinDelivery result{server_};
        if (script.eventCloseEarly) bytes.resize(result.cutAt = bytes.size() / 2);
        bytes.append(script.eventGarbage, '#');
        result.failed = !connect() || !write(pipe_, bytes, script.eventSplit);
        // The front end cannot find the next packet on this connection.
        if (script.eventCloseEarly || script.eventGarbage > 0) pipe_.close();
        return result;
    }

    bool connect() {
        if (!pipe_.isOpen()) pipe_ = StandinPipe::connect(server_, kTimeoutMs);
        return pipe_.isOpen();
    }

    const StandinSending& sending_;
    std::string server_;
    StandinPipe pipe_;
};

void reportNobody(const StandinSending& sending, const std::vector<StandinEvent>& events) {
    std::string lines;
    for (const StandinEvent& event : events) {
        lines += standinDescribeEvent(event, {}, sending.format) + "\n";
    }
    sending.report(lines);
}

}  // namespace

std::vector<std::string> standinKnownClients() {
    return {"Launcher", "Installer", "LogCollector", "Helper", "Uninstaller"};
}

std::vector<std::string> standinParseClients(const std::string& list) {
    std::vector<std::string> clients;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        std::string client = list.substr(start, end - start);
        if (!client.empty() && client != "none") clients.push_back(std::move(client));
        start = end + 1;
    }
    return clients;
}

int standinSend(const StandinSending& sending, const std::vector<StandinEvent>& events) {
    if (sending.clients.empty() || events.empty()) return 0;
    int present = 0;
    int delivered = 0;
    for (const std::string& client : sending.clients) {
        const std::string server = serverOf(client);
        if (!standinIsServed(server)) continue;
        ++present;
        Delivery delivery(sending, server);
        if (delivery.sendAll(events)) ++delivered;
    }
    if (present == 0) reportNobody(sending, events);
    return delivered;
}

StandinSender::StandinSender(StandinSending sending)
    : sending_(std::move(sending)), thread_([this] { run(); }) {}

StandinSender::~StandinSender() {
    {
        const std::lock_guard<std::mutex> guard(lock_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void StandinSender::post(const StandinSteps& steps) {
    const std::lock_guard<std::mutex> guard(lock_);
    steps_.insert(steps_.end(), steps.begin(), steps.end());
    changed_.notify_all();
}

void StandinSender::hurry() {
    const std::lock_guard<std::mutex> guard(lock_);
    hurried_ = true;
    changed_.notify_all();
}

void StandinSender::run() {
    for (StandinStep step; next(step);) {
        pause(step.pauseMs);
        standinSend(sending_, step.events);
    }
}

bool StandinSender::next(StandinStep& step) {
    const std::lock_guard<std::mutex> guard(lock_);
    while (steps_.empty() && !ending_) changed_.wait(lock_);
    if (steps_.empty()) return false;
    step = std::move(steps_.front());
    steps_.pop_front();
    return true;
}

void StandinSender::pause(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    const std::lock_guard<std::mutex> guard(lock_);
    while (!hurried_ && changed_.wait_until(lock_, end) == std::cv_status::no_timeout) {
    }
}
