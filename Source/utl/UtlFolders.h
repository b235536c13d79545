#ifndef UTL_UTLFOLDERS_H
#define UTL_UTLFOLDERS_H

#include <filesystem>
#include <string>
#include <string_view>

// The product's folders and the names of its shared objects. The registry is read once per process
// and value; a later change of it is never seen. Safe from every thread.

// The install folder as the registry has it. The value must end in "\": names of programs are put
// right behind it. A missing value is fatal.
std::string utlGetInstallDir();

// The data folder and one "\", which is all of it when the registry value is missing.
std::string utlGetDataDir();

// The same two without an added separator. A path that is not absolute is fatal.
std::filesystem::path utlInstallDir();
std::filesystem::path utlDataDir();

// Folders below the data folder. Their separators are mixed, and Windows takes them as they are.
std::string utlAssetsDir();
std::string utlLogsDir();
std::string utlSharedDir();

// The log that the library shares with the player.
std::string utlPlayerLogPath();

// "Global\vtr_<text>_nvo": a machine-wide object. "vtr_<text>_nvo": one without a namespace, and
// the names of local servers.
std::string utlGlobalObjectName(std::string_view text);
std::string utlLocalObjectName(std::string_view text);

// Whether a path names a root and at least one separator behind it ("C:\", "\\server\share\").
bool utlIsAbsolute(std::wstring_view path);

#endif
