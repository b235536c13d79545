#ifndef KIT_SERVEDNAME_H
#define KIT_SERVEDNAME_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ipc/IpcName.h"
#include "ipc/IpcServer.h"
#include "support/Platform.h"

// A server of the library with a name of this test, while the object lives.
class ServedName {
 public:
    ServedName() : name_("vtr_test_kit_" + std::to_string(ownProcessId())) {
        EXPECT_EQ(ipcServerInit(&thread_, name_, &ServedName::decode), 0);
        for (int i = 0; i < 1000 && !ipcNameIsServed(name_); ++i) sleepMs(5);
        EXPECT_TRUE(ipcNameIsServed(name_));
    }
    ~ServedName() { EXPECT_EQ(ipcServerFini(&thread_), 0); }
    ServedName(const ServedName&) = delete;
    ServedName& operator=(const ServedName&) = delete;

    const std::string& name() const { return name_; }

 private:
    static bool decode(QLocalSocket* /*socket*/, const std::uint8_t* /*packet*/,
                       std::int32_t /*length*/, void* /*reply*/, std::int32_t /*replyLength*/) {
        return true;
    }

    std::string name_;
    IpcServerThread* thread_ = nullptr;
};

#endif
