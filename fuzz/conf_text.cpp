// The text of a configuration. The reader and a simple reader return the same entries, which are
// parts of the content. The writer accepts the entries that a simple rule accepts, and they read
// back unchanged.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Check.h"
#include "PlainConf.h"
#include "conf/ConfText.h"

namespace {

using Pair = std::pair<std::string, std::string>;
using Pairs = std::vector<Pair>;

bool liesInside(std::string_view part, std::string_view whole) {
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

PlainText read(std::string_view content) {
    PlainText result;
    ConfTextReader reader(content);
    try {
        for (ConfEntry entry;;) {
            const ConfRead kind = reader.next(entry);
            if (kind == ConfRead::End) return result;
            check(liesInside(entry.line, content), "a line lies inside the content");
            if (kind == ConfRead::Malformed) {
                result.end = PlainText::Malformed;
                result.badLine = entry.line;
                return result;
            }
            check(liesInside(entry.key, entry.line), "a key lies inside its line");
            check(liesInside(entry.value, entry.line), "a value lies inside its line");
            check(entry.hasNul == (entry.line.find('\0') != std::string_view::npos),
                  "a NUL in a line is told");
            check(entry.hasNul || confCheckReadEntry(entry.key, entry.value) ==
                                      confCheckEntry(entry.key, entry.value),
                  "both checks of an entry that was read agree");
            result.entries.push_back(
                {std::string(entry.line), std::string(entry.key), std::string(entry.value)});
        }
    } catch (const std::out_of_range&) {
        result.end = PlainText::Throws;
    }
    return result;
}

bool areSame(const PlainEntry& a, const PlainEntry& b) {
    return a.line == b.line && a.key == b.key && a.value == b.value;
}

void checkReading(std::string_view content, const PlainText& expected) {
    const PlainText reading = read(content);
    check(std::equal(reading.entries.begin(), reading.entries.end(), expected.entries.begin(),
                     expected.entries.end(), areSame),
          "the entries are those of the plain reader");
    check(reading.end == expected.end, "it ends like the plain reader");
    check(reading.end != PlainText::Malformed || reading.badLine == expected.badLine,
          "the malformed line is the plain reader's");
}

// The entries of the content, and entries that no file can contain: splits the content into key and
// value in the middle and around its first "=" signs, with the sign in the key, the value or
// neither.
Pairs pairsOf(const std::string& content, const PlainText& text) {
    constexpr int kParted = 4;
    Pairs pairs;
    for (const PlainEntry& entry : text.entries) pairs.emplace_back(entry.key, entry.value);
    const std::size_t middle = content.size() / 2;
    pairs.emplace_back(content.substr(0, middle), content.substr(middle));
    std::size_t equals = content.find('=');
    for (int i = 0; i < kParted && equals != std::string::npos; ++i) {
        const std::string before = content.substr(0, equals);
        const std::string after = content.substr(equals + 1);
        pairs.emplace_back(before, after);
        pairs.emplace_back(before + "=", after);
        pairs.emplace_back(before, "=" + after);
        pairs.emplace_back(after, before);
        equals = content.find('=', equals + 1);
    }
    return pairs;
}

// Appends the entry to the text if it is valid.
bool write(const Pair& entry, std::string& text) {
    const auto& [key, value] = entry;
    const std::string line = plainLine(key, value);
    check(confLineLength(key, value) ==
              (line.size() > CONF_LINE_SIZE ? -1 : static_cast<int>(line.size())),
          "the length of a line");
    const XErr err = confCheckEntry(key, value);
    check(err == plainCheckEntry(key, value), "what may be written");
    if (err != XERR_SUCCESS) return false;
    std::string written = key;
    written.resize(line.size());
    check(confEndLine(&written[key.size()], value) == written.data() + written.size(),
          "a line has the length that was told");
    check(written == line, "a line as it is written");
    text += written;
    return true;
}

void checkWriting(const Pairs& pairs) {
    std::string text;
    Pairs written;
    for (const Pair& pair : pairs) {
        if (write(pair, text)) written.emplace_back(pair.first, pair.second.c_str());
    }
    const PlainText again = read(text);
    check(again.end == PlainText::Whole, "what is written is well formed");
    check(std::equal(again.entries.begin(), again.entries.end(), written.begin(), written.end(),
                     [](const PlainEntry& entry, const Pair& pair) {
                         return entry.key == pair.first && entry.value == pair.second;
                     }),
          "what is written reads back the same");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(textOf(data, size));
    const PlainText expected = plainText(content);
    checkReading(content, expected);
    checkWriting(pairsOf(content, expected));
    return 0;
}
