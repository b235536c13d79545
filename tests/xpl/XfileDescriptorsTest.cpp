// The descriptors of files on POSIX systems.
#include <fcntl.h>

#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/Xfile.h"

namespace {

// Whether children receive the file. A handle is the descriptor plus one.
bool isInherited(XfileMode mode, XfileSharing sharing, const std::string& path) {
    Xfile file;
    EXPECT_EQ(xfileOpen(file, path, mode, sharing), 0);
    const int descriptor = static_cast<int>(reinterpret_cast<std::intptr_t>(file.handle())) - 1;
    const int flags = ::fcntl(descriptor, F_GETFD);
    EXPECT_GE(flags, 0);
    return (flags & FD_CLOEXEC) == 0;
}

}  // namespace

TEST(XfileDescriptors, ChildrenReceiveWhatIsNotPrivate) {
    const TempFolder folder;
    for (const XfileMode mode : {XfileMode::ReadWrite, XfileMode::Append, XfileMode::WriteNew,
                                 XfileMode::Update, XfileMode::Read}) {
        EXPECT_TRUE(isInherited(mode, XfileSharing::Inherited, folder / "f"));
        EXPECT_FALSE(isInherited(mode, XfileSharing::Private, folder / "f"));
    }
}
