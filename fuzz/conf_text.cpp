// The text of a configuration: what is read lies inside the content as the rules say, and an entry
// that may be written reads back as it was.
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Check.h"
#include "conf/ConfText.h"

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

struct Reading {
    Entries entries;
    bool malformed = false;
    bool threw = false;
};

Reading read(std::string_view content) {
    Reading result;
    ConfTextReader reader(content);
    try {
        for (ConfEntry entry;;) {
            const ConfRead kind = reader.next(entry);
            if (kind == ConfRead::End) return result;
            check(entry.line.data() >= content.data() &&
                      entry.line.data() + entry.line.size() <= content.data() + content.size(),
                  "a line lies inside the content");
            if (kind == ConfRead::Malformed) {
                result.malformed = true;
                return result;
            }
            result.entries.emplace_back(entry.key, entry.value);
        }
    } catch (const std::out_of_range&) {
        result.threw = true;
    }
    return result;
}

// The same, character by character.
Reading readPlainly(const std::string& content) {
    Reading result;
    for (std::size_t at = 0; at < content.size();) {
        std::string line;
        while (at < content.size() && content[at] != '\n') line += content[at++];
        ++at;
        std::string key;
        std::size_t i = 0;
        while (i < line.size() && line[i] != '=') key += line[i++];
        if (line.size() > 4096 || i == line.size()) {
            result.malformed = true;
            return result;
        }
        if (i + 1 == line.size()) {
            result.threw = true;
            return result;
        }
        std::string value;
        for (i += 2; i + 1 < line.size() && line[i] != '\0'; ++i) value += line[i];
        result.entries.emplace_back(key, value);
    }
    return result;
}

void checkWriting(const Entries& entries) {
    std::string text;
    Entries written;
    for (const auto& [key, value] : entries) {
        if (confCheckEntry(key, value) != XERR_SUCCESS) continue;
        std::string line = key;
        line.resize(static_cast<std::size_t>(confLineLength(key, value)));
        check(confEndLine(&line[key.size()], value) == line.data() + line.size(),
              "a line has the length that was told");
        text += line;
        written.emplace_back(key, value);
    }
    const Reading again = read(text);
    check(!again.malformed && !again.threw, "what is written is well formed");
    check(again.entries == written, "what is written reads back the same");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Reading reading = read(textOf(data, size));
    const Reading plain = readPlainly(std::string(textOf(data, size)));
    check(reading.entries == plain.entries, "the entries are those of the plain reader");
    check(reading.malformed == plain.malformed && reading.threw == plain.threw,
          "it ends like the plain reader");
    checkWriting(reading.entries);
    return 0;
}
