// Configurations. The store and a simple model agree on the load, the values, refused commits and
// the bytes of the committed file. A second commit changes nothing.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Check.h"
#include "PlainConf.h"
#include "QuietLog.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"

namespace {

// A folder in memory.
class MemoryFiles final : public ConfFiles {
 public:
    std::map<std::string, std::string> files;

    ConfFileRead read(const std::string& path, std::string& content) override {
        const auto found = files.find(path);
        if (found == files.end()) return ConfFileRead::OpenFailed;
        content = found->second;
        return ConfFileRead::Done;
    }
    XErr create(const std::string& path, std::unique_ptr<ConfOutput>& output) override {
        files[path].clear();
        output = std::make_unique<Output>(files[path]);
        return XERR_SUCCESS;
    }
    XErr replace(const std::string& source, const std::string& destination) override {
        files[destination] = files[source];
        files.erase(source);
        return XERR_SUCCESS;
    }
    void remove(const std::string& path) override { files.erase(path); }

 private:
    class Output final : public ConfOutput {
     public:
        explicit Output(std::string& file) : file_(file) {}
        XErr write(std::string_view piece, std::size_t& done) override {
            file_.append(piece);
            done = piece.size();
            return XERR_SUCCESS;
        }

     private:
        std::string& file_;
    };
};

constexpr const char* kPath = "vantrel.conf";

// The values that every run changes: a global one that most files have, and one of an instance that
// few files have.
constexpr const char* kChangedInstance = "Fuzz";
const std::map<std::string, std::string>& changes() {
    static const auto& one = *new std::map<std::string, std::string>{
        {"vtr.locale", "fuzz"}, {"vtr.instance.Fuzz.astc_decoding_mode", "fuzz"}};
    return one;
}

const ConfCatalogue& catalogue() {
    static const ConfCatalogue& one = *new ConfCatalogue(confProductCatalogue());
    return one;
}

const ConfCatalogueRow* rowOf(const ConfCatalogueRows& rows, const std::string& name) {
    for (const ConfCatalogueRow& row : rows) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

bool beginsWith(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

// A model of the store after a load and after a commit.
struct Model {
    PlainText::End end = PlainText::Whole;  // of the load
    std::map<std::string, std::string> values;
    std::map<std::string, const ConfCatalogueRow*> named;  // the keys in the file
    std::set<std::string, std::less<>> instances;

    explicit Model(std::string_view content) {
        for (const ConfCatalogueRow& row : confGlobalRows()) {
            values[std::string("vtr.") + row.name] = row.defaultValue;
        }
        const PlainText text = plainText(content);
        for (const PlainEntry& entry : text.entries) {
            if (!apply(entry)) {
                end = PlainText::Malformed;
                return;
            }
        }
        end = text.end;
    }

    bool isChangedBy(const std::string& key, const std::string& value) const {
        const auto found = values.find(key);
        return found == values.end() || found->second != value;
    }

    void change() {
        addInstance(kChangedInstance);
        for (const auto& [key, value] : changes()) values[key] = value;
    }

    // The reason why the first invalid entry must not be written.
    XErr refusal() const {
        for (const auto& [key, value] : values) {
            const XErr err = plainCheckEntry(key, value);
            if (err != XERR_SUCCESS) return err;
        }
        return XERR_SUCCESS;
    }

    std::string text() const {
        std::string all;
        for (const auto& [key, value] : values) all += plainLine(key, value);
        return all;
    }

 private:
    bool apply(const PlainEntry& entry) {
        const bool ofInstance = beginsWith(entry.key, "vtr.instance.");
        if (!ofInstance && !beginsWith(entry.key, "vtr.")) return false;
        std::string property = entry.key.substr(4);
        std::string instance;
        if (ofInstance) {
            const std::size_t dot = entry.key.find('.', 13);
            if (dot == std::string::npos) return false;
            instance = entry.key.substr(13, dot - 13);
            property = entry.key.substr(dot + 1);
        }
        const ConfCatalogueRow* row =
            rowOf(ofInstance ? confInstanceRows() : confGlobalRows(), property);
        if (row == nullptr) return false;
        if (ofInstance) addInstance(instance);
        values[entry.key] = entry.value;
        named[entry.key] = row;
        return true;
    }

    void addInstance(const std::string& name) {
        if (!instances.insert(name).second) return;
        for (const ConfCatalogueRow& row : confInstanceRows()) {
            values.emplace("vtr.instance." + name + "." + row.name, row.defaultValue);
        }
    }
};

template <typename Work>
std::optional<XErr> unlessItThrows(Work work) {
    try {
        return work();
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

bool endsAs(std::optional<XErr> err, PlainText::End end) {
    if (end == PlainText::Throws) return !err.has_value();
    return err == (end == PlainText::Whole ? XERR_SUCCESS : XERR_FAILURE);
}

void checkValues(ConfStore& store, const Model& model) {
    {
        const std::lock_guard<std::mutex> guard(store.lock);
        auto expected = model.values.begin();
        store.view.forEach(
            [&](std::string_view prefix, std::string_view name, const ConfValue& value) {
                if (!value.isCommitted) return;
                check(expected != model.values.end(), "no key comes twice");
                const std::string key = std::string(prefix).append(name);
                check(key == expected->first && value.committed == expected->second,
                      "the model's value");
                ++expected;
            });
        check(expected == model.values.end(), "each key is there");
    }
    check(confGetInstances(store) == model.instances, "the instances are the model's");
    for (const auto& [key, row] : model.named) {
        check(confGetStringInternal(store, key, row->type) == model.values.at(key),
              "a key that the file has reads as its last value");
    }
}

// Sets the values that every run changes. The file may already have them.
void checkChanges(ConfStore& store, const Model& model) {
    bool any = false;
    for (const auto& [key, value] : changes()) {
        confSetString(store, key, value);
        check(confGetString(store, key) == value, "a change is read");
        any = any || model.isChangedBy(key, value);
    }
    check(confHasPendingChanges(store) == any, "only what changes is pending");
}

// The file after a commit; nothing if the file does not load or has an invalid entry.
std::optional<std::string> committed(std::string_view content) {
    Model model(content);
    MemoryFiles disk;
    disk.files[kPath] = content;
    ConfStore store(catalogue(), disk);
    store.fileLockName = "Global\\vtr_fuzz_conf";
    const auto loaded =
        unlessItThrows([&] { return confLibInit(store, kPath, /*allowDeprecated=*/false); });
    check(endsAs(loaded, model.end), "the load ends as the model's");
    checkValues(store, model);
    checkChanges(store, model);
    const bool pending = confHasPendingChanges(store);
    const auto result = unlessItThrows([&] { return confCommitToFile(store, kPath); });
    check(disk.files.size() == 1, "a commit leaves no temporary file");
    if (model.end != PlainText::Whole) {
        check(endsAs(result, model.end), "a commit ends as its load");
        check(disk.files[kPath] == content, "a commit that cannot load leaves the file");
        check(confHasPendingChanges(store) == pending, "and its changes pending");
        return {};
    }
    model.change();
    check(result == model.refusal(), "a commit is refused for the model's reason");
    check(!confHasPendingChanges(store), "a commit leaves nothing pending");
    if (result != XERR_SUCCESS) {
        check(disk.files[kPath] == content, "a refused commit leaves the file");
        return {};
    }
    check(disk.files[kPath] == model.text(), "the file is the model's");
    return disk.files[kPath];
}

void checkCommittedAgain(const std::string& content) {
    MemoryFiles disk;
    disk.files[kPath] = content;
    ConfStore store(catalogue(), disk);
    store.fileLockName = "Global\\vtr_fuzz_conf";
    check(confLibInit(store, kPath, /*allowDeprecated=*/false) == XERR_SUCCESS,
          "a committed file loads");
    check(confCommitToFile(store, kPath) == XERR_SUCCESS, "and can be committed");
    check(disk.files[kPath] == content, "and stays as it is");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    logIntoNothing();
    const auto once = committed(textOf(data, size));
    if (!once) return 0;
    checkCommittedAgain(*once);
    return 0;
}
