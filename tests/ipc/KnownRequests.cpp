#include "KnownRequests.h"

#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"

#include <type_traits>

namespace {

template <typename Value>
Value valueOf(const std::string& word) {
    if constexpr (std::is_same_v<Value, const char*>) {
        return word.c_str();
    } else if constexpr (std::is_same_v<Value, double>) {
        return std::strtod(word.c_str(), nullptr);
    } else {
        return static_cast<Value>(std::stoi(word));
    }
}

template <typename Result, typename... Parameters, std::size_t... PLACES>
auto withWords(Result (*encode)(IpcClient&, Parameters...), std::index_sequence<PLACES...>) {
    return [encode](IpcClient& client, [[maybe_unused]] const Words& values) {
        encode(client, valueOf<Parameters>(values.at(PLACES))...);
    };
}

template <typename Result, typename... Parameters>
auto withWords(Result (*encode)(IpcClient&, Parameters...)) {
    return withWords(encode, std::index_sequence_for<Parameters...>());
}

std::string fieldBytes(char type, const std::string& word) {
    switch (type) {
        case 't':
            return textField(word);
        case 'd':
            return bytesOf(valueOf<double>(word));
        default:
            return bytesOf(valueOf<std::int32_t>(word));
    }
}

}  // namespace

const std::vector<KnownRequest>& knownRequests() {
#define REQUEST(opcode, encoder, fields) \
    { opcode, #encoder, fields, withWords(encoder) }
    static const auto& all = *new std::vector<KnownRequest>{
        REQUEST(2000, plrShutdownRpc, "b"),
        REQUEST(2001, plrBringToFrontRpc, ""),
        REQUEST(2002, plrEnableEcoModeRpc, "b"),
        REQUEST(2003, plrMuteMediaRpc, "b"),
        REQUEST(2004, plrResizeWindowRpc, "iiii"),
        REQUEST(2005, plrLaunchAppStoreRpc, "tt"),
        REQUEST(2006, plrLaunchAppRpc, "t"),
        REQUEST(2007, plrLaunchUrlRpc, "t"),
        REQUEST(2008, plrUninstallAppRpc, "t"),
        REQUEST(2009, plrInstallApkRpc, "t"),
        REQUEST(2010, plrMnsSyncKeyEventRpc, "ib"),
        REQUEST(2011, plrMnsSyncMouseEventRpc, "iddi"),
        REQUEST(2012, plrMnsSyncImeEventRpc, "t"),
        REQUEST(2013, plrMnsSyncUiEventRpc, "i"),
        REQUEST(2014, plrMnsSyncStartRpc, "tt"),
        REQUEST(2015, plrMnsSyncStopRpc, "t"),
        REQUEST(2016, plrOnConfChangedRpc, ""),
        REQUEST(2017, plrMnsOnAnyMacroChangedRpc, ""),
        REQUEST(4000, mimShutdownRpc, ""),
        REQUEST(4001, mimBringToFrontRpc, ""),
        REQUEST(4002, mimDownloadImageRpc, "t"),
        REQUEST(4003, mimCreateFreshInstanceRpc, "tttttt"),
    };
#undef REQUEST
    return all;
}

const KnownRequest& knownRequest(const std::string& name) {
    for (const KnownRequest& request : knownRequests()) {
        if (request.name == name) return request;
    }
    throw std::out_of_range(name);
}

std::string requestPacket(const KnownRequest& request, const Words& values) {
    std::string payload;
    for (std::size_t i = 0; i < request.fields.size(); ++i) {
        payload += fieldBytes(request.fields[i], values.at(i));
    }
    return packetOf(request.opcode, payload, request.replyLength());
}

std::string requestServer() { return "vtr_test_requests_" + std::to_string(ownProcessId()); }

std::string sentBytes(const KnownRequest& request, const Words& values) {
    std::string bytes;
    RawServer server(requestServer(), [&](RawPipe& pipe) {
        bytes = pipe.read(12);
        if (request.replyLength() > 0) pipe.write("\x08\x07\x06\x05\x04\x03\x02\x01");
        bytes += pipe.readAll();
    });
    {
        IpcClient client;
        EXPECT_EQ(ipcClientInit(client, requestServer()), 0);
        request.encode(client, values);
    }
    EXPECT_TRUE(waitUntil([&] { return server.served() > 0; }));
    return bytes;
}
