#include "Floor.h"
#include "ProfileSide.h"
#include "support/WindowsForTests.h"

std::optional<Side> profileSide(const std::string& path, const std::string& key) {
    const FloorPath file = floorPath(path);
    const std::wstring wideKey = wideForTests(key);
    const auto forget = [file] {
        ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, file.c_str());
        floorTouch(file);
    };
    const auto load = [file, wideKey] {
        wchar_t value[64];
        ::GetPrivateProfileStringW(L"General", wideKey.c_str(), L"missing", value, 64,
                                   file.c_str());
        benchCheck(std::wstring(value) != L"missing", "the profile was not read");
    };
    return Side{"profile API", 0, timedAfter(forget, load)};
}
