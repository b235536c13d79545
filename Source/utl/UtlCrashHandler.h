#ifndef UTL_UTLCRASHHANDLER_H
#define UTL_UTLCRASHHANDLER_H

#include <cstdint>

// Registers the product's crash-reporting module, "QX-WerHandler.dll" of the install folder, with
// Windows Error Reporting for this process. Windows looks for the module only when the process
// crashes. The call's HRESULT: 0 when registered. A missing install folder is fatal
// (utlGetInstallDir).
std::int32_t utlRegisterCrashHandler();

#endif
