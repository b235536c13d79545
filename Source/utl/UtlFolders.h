#ifndef UTL_UTLFOLDERS_H
#define UTL_UTLFOLDERS_H

#include <filesystem>
#include <string>
#include <string_view>

// The product's folders and the names of its shared objects. Each registry value is read once per
// process; later changes are not seen. Thread-safe.

// The install folder, unchanged from the registry. The value must end with "\", since program names
// are appended to it. A missing value is fatal.
std::string utlGetInstallDir();

// The data folder with a "\" appended; only "\" when the registry value is missing.
std::string utlGetDataDir();

// The same folders without an added separator. A path that is not absolute is fatal.
std::filesystem::path utlInstallDir();
std::filesystem::path utlDataDir();

// Folders below the data folder, with mixed separators.
std::string utlAssetsDir();
std::string utlLogsDir();
std::string utlSharedDir();

// The log that the library shares with the player.
std::string utlPlayerLogPath();

// "Global\vtr_<text>_nvo": a machine-wide object. "vtr_<text>_nvo": an object without a namespace,
// or a local server.
std::string utlGlobalObjectName(std::string_view text);
std::string utlLocalObjectName(std::string_view text);

// Whether a path begins with a root and a separator ("C:\", "\\server\share\").
bool utlIsAbsolute(std::wstring_view path);

#endif
