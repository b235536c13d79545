#include "Floor.h"

#include <chrono>
#include <cstdlib>
#include <cstring>

#include "Bench.h"
#include "xpl/Xfile.h"

namespace {

void splitLine(std::string_view line, KeyValues& values) {
    const std::size_t equals = line.find('=');
    const std::string_view value = line.substr(equals + 2, line.size() - equals - 3);
    values.emplace_hint(values.end(), line.substr(0, equals), value);
}

}  // namespace

FloorPath floorPath(const std::string& path) {
    return std::filesystem::u8path(xfileSystemPath(path));
}

std::string floorRead(const FloorPath& path) { return FloorFile(path, FloorFile::Read).read(); }

KeyValues floorLoad(const FloorPath& path) {
    const std::string content = floorRead(path);
    KeyValues values;
    for (std::string_view rest = content; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        splitLine(rest.substr(0, end), values);
        rest.remove_prefix(end + 1);
    }
    return values;
}

char* floorCopy(std::string_view text) {
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void floorTouch(const FloorPath& path) {
    static int seconds = 0;
    const auto before = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, before + std::chrono::seconds(++seconds));
}
