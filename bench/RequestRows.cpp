// Requests: connect, send, read the reply if there is one, disconnect.
#include <QLocalSocket>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Bench.h"
#include "FloorServer.h"
#include "ipc/IpcPacket.h"
#include "plr/client/PlrEnc.h"
#include "support/WindowsForTests.h"

namespace {

constexpr int kInstances = 8;
constexpr int kWaitMs = 30000;
constexpr double kSocketAim = 1.1;
constexpr const char* kApp = "com.example.publisher.app";

std::string serverName() { return "vtr_bench_requests_" + std::to_string(::GetCurrentProcessId()); }

std::string packetOf(const IpcRequest& request, IpcFields fields) {
    const IpcPacket packet = ipcLayOut(request.opcode, request.replyLength, fields);
    return {reinterpret_cast<const char*>(packet.bytes.get()), packet.size};
}

// A request of each kind.
const IpcRequest& withoutReply() { return PLR_REQUESTS[6]; }
const IpcRequest& withReply() { return PLR_REQUESTS[1]; }

struct Requests {
    std::string name = serverName();
    QString qtName = QString::fromStdString(name);
    std::wstring path = L"\\\\.\\pipe\\" + wideForTests(name);
    FloorServer server{name, kInstances, [](std::string_view) {}};
};

void bareSocket(const Requests& requests, const std::string& packet, qint64 reply) {
    QLocalSocket socket;
    socket.connectToServer(requests.qtName);
    benchCheck(socket.waitForConnected(kWaitMs), "QLocalSocket does not connect");
    socket.write(packet.data(), static_cast<qint64>(packet.size()));
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(kWaitMs)) {
    }
    while (socket.bytesAvailable() < reply) {
        benchCheck(socket.waitForReadyRead(kWaitMs), "QLocalSocket gets no reply");
    }
    if (reply > 0) benchUse(socket.read(reply));
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(kWaitMs);
}

void bareCalls(const Requests& requests, const std::string& packet, DWORD reply) {
    HANDLE pipe = ::CreateFileW(requests.path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                OPEN_EXISTING, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) pipe = floorConnect(requests.name);
    DWORD done = 0;
    ::WriteFile(pipe, packet.data(), static_cast<DWORD>(packet.size()), &done, nullptr);
    benchCheck(done == packet.size(), "cannot write to the pipe");
    if (reply > 0) {
        std::uint64_t value = 1;
        ::ReadFile(pipe, &value, reply, &done, nullptr);
        benchCheck(done == reply && value == 0, "no reply from the pipe");
    }
    ::CloseHandle(pipe);
}

std::vector<Side> withoutReplySides() {
    const auto requests = std::make_shared<Requests>();
    const std::string packet = packetOf(withoutReply(), {kApp});
    return {{"library", 0, timed([requests] {
                 IpcClient client;
                 ipcClientInit(client, requests->name);
                 plrLaunchAppRpc(client, kApp);
             })},
            {"QLocalSocket", kSocketAim,
             timed([requests, packet] { bareSocket(*requests, packet, 0); })},
            {"floor: open, write, close", 0,
             timed([requests, packet] { bareCalls(*requests, packet, 0); })}};
}

std::vector<Side> withReplySides() {
    const auto requests = std::make_shared<Requests>();
    const std::string packet = packetOf(withReply(), {});
    return {{"library", 0, timed([requests] {
                 IpcClient client;
                 ipcClientInit(client, requests->name);
                 benchCheck(plrBringToFrontRpc(client) == 0, "wrong reply");
             })},
            {"QLocalSocket", kSocketAim,
             timed([requests, packet] { bareSocket(*requests, packet, 8); })},
            {"floor: open, write, read, close", 0,
             timed([requests, packet] { bareCalls(*requests, packet, 8); })}};
}

}  // namespace

void addRequestRows(Rows& rows) {
    rows.push_back({"request/without-reply", "send a request", withoutReplySides});
    rows.push_back({"request/with-reply", "send a request, take its reply", withReplySides});
}
