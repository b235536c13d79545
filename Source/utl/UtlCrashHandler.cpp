// Registering the product's crash handler.
#include "utl/UtlCrashHandler.h"

#include <string>

#include "utl/UtlFolders.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/Xtext.h"

std::int32_t utlRegisterCrashHandler() {
    std::wstring path;
    // The folder came from UTF-16, so it goes back.
    static_cast<void>(xtextToWide(utlGetInstallDir() + "QX-WerHandler.dll", path));
    return utlProcessCalls().registerCrashModule(path);
}
