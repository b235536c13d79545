#include "doctor/ConfigurationFindings.h"

#include <cstddef>
#include <optional>
#include <string>

#include "Configuration.h"
#include "KeyNames.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfText.h"
#include "utl/UtlImages.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

class Reader {
 public:
    Findings take(std::string_view content) {
        if (content.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
            add("byte order mark: the library ignores the file",
                "save the file as UTF-8 without a byte order mark");
            content.remove_prefix(kByteOrderMark.size());
        }
        while (!content.empty()) {
            const std::size_t end = content.find('\n');
            ++line_;
            readLine(content.substr(0, end));
            content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
        }
        return findings_;
    }

 private:
    void add(const std::string& found, const std::string& todo) {
        const std::string place = line_ == 0 ? "" : "line " + std::to_string(line_) + ": ";
        findings_.push_back({FindingLevel::Problem, "configuration", place + found, todo});
    }

    void readLine(std::string_view line) {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || equals + 1 == line.size()) {
            add(line.empty() ? "empty line: the library ignores the rest of the file"
                             : "not key=\"value\": the library ignores the rest of the file",
                "correct or remove the line");
            return;
        }
        if (!hasFittingLength(line)) return;
        if (line.back() == '\r') {
            add("ends with CR LF: the value includes the closing quote",
                "save the file with LF line ends");
            line.remove_suffix(1);
        }
        const std::string_view quoted = line.substr(equals + 1);
        if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
            add("value without quotes: its first and last characters are lost",
                "put the value in double quotes");
            return;
        }
        readEntry(line.substr(0, equals), quoted.substr(1, quoted.size() - 2));
    }

    bool hasFittingLength(std::string_view line) {
        if (line.size() > CONF_LINE_SIZE) {
            add("more than 4096 bytes: the library ignores the rest of the file",
                "shorten or remove the line");
            return false;
        }
        if (line.size() + 1 >= CONF_LINE_SIZE) {
            add("4095 bytes or more: no commit succeeds", "set the key to a shorter value");
        }
        return true;
    }

    void readEntry(std::string_view name, std::string_view value) {
        const std::string key(name);
        if (!known_.typeOf(key)) {
            const std::string hint = keyHint(known_, key);
            add("unknown key " + key + ": the library ignores the rest of the file",
                hint.empty() ? "remove the line" : hint);
            return;
        }
        if (key.find('\0') != std::string::npos) {
            add("NUL character in the key " + key + ": no front end can read it",
                "remove the line");
            return;
        }
        const ConfKey parts = confSplitKey(key);
        if (parts.scope == ConfScope::Instance) checkImage(std::string(parts.instance));
        const std::string entry = key + "=\"" + std::string(value) + "\"\n";
        const std::optional<KeyInfo> info = Configuration(entry).find(key);
        if (info && info->state == KeyState::Invalid) {
            add(key + " is not of type " + typeName(info->type) + ": \"" + info->text +
                    "\": front ends end when they read it",
                repairOf(*info));
        }
    }

    // `conf unset` cannot store an empty default.
    std::string repairOf(const KeyInfo& key) const {
        if (!known_.defaultOf(key.key).empty()) return "bridgectl conf unset " + key.key;
        return "bridgectl conf set " + key.key + (key.type == ConfType::Bool ? " false" : " 0");
    }

    // Once per instance: its keys are in consecutive lines.
    void checkImage(const std::string& instance) {
        if (instance == lastInstance_) return;
        lastInstance_ = instance;
        if (utlFindImageTrait(utlImageNameOfInstance(instance)) != nullptr) return;
        add("instance " + instance +
                " has an unknown image: front ends end when they list the instances",
            "bridgeadm remove-instance " + instance);
    }

    Findings findings_;
    std::size_t line_ = 0;
    std::optional<std::string> lastInstance_;
    const Configuration known_{""};
};

}  // namespace

Findings configurationFindings(std::string_view content) { return Reader().take(content); }
