// Typed reads and writes of many keys in random order, through the DLL's exports.
#include <QSettings>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "Library.h"

namespace {

constexpr std::size_t kKeyCount = 1024;
constexpr double kSettingsAim = 0.3;
constexpr double kFloorAim = 1.2;

// The keys of one type, and the values that every side reads and writes.
struct Access {
    explicit Access(ConfType type) : keys(someKeys(Library::get().values(), type, kKeyCount)) {
        const FloorPath path =
            floorPath(folder.write("settings.ini", sampleText(Library::get().values())));
        settings = std::make_unique<QSettings>(QString::fromStdString(path.u8string()),
                                               QSettings::IniFormat);
        settings->sync();
        for (const std::string& key : keys) qtKeys.push_back(QString::fromStdString(key));
        for (const auto& [key, value] : Library::get().values()) {
            map.emplace_hint(map.end(), key, floorCopy(value));
        }
    }
    ~Access() {
        for (const auto& [key, value] : map) std::free(value);
    }

    // Cycles through the keys, and changes the values to write after each cycle.
    std::size_t next() {
        if (++at == keys.size()) {
            at = 0;
            odd = !odd;
        }
        return at;
    }

    std::vector<std::string> keys;
    std::vector<QString> qtKeys;
    std::map<std::string, char*, std::less<>> map;
    TempFolder folder;
    std::unique_ptr<QSettings> settings;
    std::size_t at = 0;
    bool odd = false;
};
using AccessPtr = std::shared_ptr<Access>;

// Calls work(access). Each side has its own keys.
template <typename Work>
Side side(const char* name, double aim, ConfType type, Work work) {
    const auto access = std::make_shared<Access>(type);
    return {name, aim, timed([access, work] { work(*access); })};
}

template <typename Library, typename Qt>
std::vector<Side> getSides(ConfType type, Library library, Qt qt) {
    return {
        side("library", 0, type,
             [library](Access& access) { library(access.keys[access.next()].c_str()); }),
        side("QSettings value()", kSettingsAim, type,
             [qt](Access& access) { qt(access.settings->value(access.qtKeys[access.next()])); }),
        side("floor: lookup and copy", kFloorAim, type, [](Access& access) {
            char* const copy = floorCopy(access.map.find(access.keys[access.next()])->second);
            benchUse(copy);
            std::free(copy);
        })};
}

void floorSet(Access& access, std::string_view value) {
    char*& stored = access.map.find(access.keys[access.next()])->second;
    std::free(stored);
    stored = floorCopy(value);
}

// `qt` creates the value for QSettings, `text` the value for the floor.
template <typename Library, typename Qt, typename Text>
std::vector<Side> setSides(ConfType type, Library library, Qt qt, Text text) {
    return {side("library", 0, type,
                 [library](Access& access) {
                     const char* const key = access.keys[access.next()].c_str();
                     benchCheck(library(key, access.odd) == BRIDGE_SUCCESS, "set failed");
                 }),
            side("QSettings value()", kSettingsAim, type,
                 [](Access& access) {
                     benchUse(access.settings->value(access.qtKeys[access.next()]));
                 }),
            side("QSettings setValue()", 0, type,
                 [qt](Access& access) {
                     const QString& key = access.qtKeys[access.next()];
                     access.settings->setValue(key, qt(access.odd));
                 }),
            side("floor: lookup and copy", kFloorAim, type,
                 [text](Access& access) { floorSet(access, text(access.odd)); })};
}

void useText(char* text) {
    benchCheck(text != nullptr, "get failed");
    benchUse(text);
    Library::get().freeMemory(text);
}

const char* oddText(bool odd) { return odd ? "Nougat64, mine" : "Nougat64, yours"; }
const char* oddList(bool odd) { return odd ? "x86,x64" : "x86,x64,arm"; }
const char* oddNumber(bool odd) { return odd ? "240" : "320"; }
const char* oddBool(bool odd) { return odd ? "1" : "0"; }

void addGetRows(Rows& rows) {
    rows.push_back({"get/bool", "read a bool, 1,000 instances", [] {
                        return getSides(
                            ConfType::Bool,
                            [](const char* key) { benchUse(Library::get().getBool(key)); },
                            [](const QVariant& value) { benchUse(value.toBool()); });
                    }});
    rows.push_back({"get/i32", "read a number, 1,000 instances", [] {
                        return getSides(
                            ConfType::I32,
                            [](const char* key) { benchUse(Library::get().getI32(key)); },
                            [](const QVariant& value) { benchUse(value.toInt()); });
                    }});
    rows.push_back({"get/string", "read a text, 1,000 instances", [] {
                        return getSides(
                            ConfType::String,
                            [](const char* key) { useText(Library::get().getString(key)); },
                            [](const QVariant& value) { benchUse(value.toString()); });
                    }});
    rows.push_back({"get/multistring", "read a list, 1,000 instances", [] {
                        return getSides(
                            ConfType::MultiString,
                            [](const char* key) { useText(Library::get().getMultiString(key)); },
                            [](const QVariant& value) { benchUse(value.toString()); });
                    }});
}

void addSetRows(Rows& rows) {
    const auto qtText = [](bool odd) { return QVariant(QString::fromLatin1(oddText(odd))); };
    const auto qtList = [](bool odd) { return QVariant(QString::fromLatin1(oddList(odd))); };
    rows.push_back(
        {"set/bool", "stage a bool, 1,000 instances", [] {
             return setSides(
                 ConfType::Bool,
                 [](const char* key, bool odd) { return Library::get().setBool(key, odd ? 1 : 0); },
                 [](bool odd) { return QVariant(odd); }, oddBool);
         }});
    rows.push_back({"set/i32", "stage a number, 1,000 instances", [] {
                        return setSides(
                            ConfType::I32,
                            [](const char* key, bool odd) {
                                return Library::get().setI32(key, odd ? 240 : 320);
                            },
                            [](bool odd) { return QVariant(odd ? 240 : 320); }, oddNumber);
                    }});
    rows.push_back({"set/string", "stage a text, 1,000 instances", [qtText] {
                        return setSides(
                            ConfType::String,
                            [](const char* key, bool odd) {
                                return Library::get().setString(key, oddText(odd));
                            },
                            qtText, oddText);
                    }});
    rows.push_back({"set/multistring", "stage a list, 1,000 instances", [qtList] {
                        return setSides(
                            ConfType::MultiString,
                            [](const char* key, bool odd) {
                                return Library::get().setMultiString(key, oddList(odd));
                            },
                            qtList, oddList);
                    }});
}

}  // namespace

void addAccessRows(Rows& rows) {
    addGetRows(rows);
    addSetRows(rows);
}
