// Every export while memory is short: the Nth allocation fails, for each N, once and for ever. The
// answer is the function's own or its failure, and afterwards everything works.
#include <bridge/bridge.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "Allocations.h"
#include "conf/Conf.h"
#include "support/RegistrySandbox.h"
#include "support/Scene.h"
#include "support/TempFolder.h"
#include "xpl/Xlog.h"

namespace {

constexpr const char* kDpi = "vtr.instance.Nougat64.dpi";
constexpr const char* kLocale = "vtr.locale";
constexpr const char* kFolders = "vtr.shared_folders";

std::optional<std::string> taken(char* text) {
    if (text == nullptr) return std::nullopt;
    std::string copy = text;
    bridgeFreeMemory(text);
    return copy;
}

// Takes this process's error lines while it lives, into memory that no shortage can refuse.
class ErrorLines {
 public:
    ErrorLines() : previous_(xlogGetLogger()) {
        const XlogLogger own{isError, take};
        static_cast<void>(xlogLibInit(&own, {}));
        clear();
    }
    ~ErrorLines() { static_cast<void>(xlogLibInit(&previous_, {})); }
    ErrorLines(const ErrorLines&) = delete;
    ErrorLines& operator=(const ErrorLines&) = delete;

    static int count() { return count_; }
    static std::string last() { return last_; }
    static void clear() {
        count_ = 0;
        last_[0] = '\0';
    }

 private:
    static std::int32_t isError(std::int32_t, std::int32_t level) { return level == XLOG_ERROR; }

    static std::int32_t take(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                             const char* format, ...) XPRINTF_LIKE(6, 7) {
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(last_, sizeof last_, format, arguments);
        va_end(arguments);
        ++count_;
        return length;
    }

    static inline int count_ = 0;
    static inline char last_[1000];
    XlogLogger previous_;
};

class AllocationTest : public ::testing::Test {
 protected:
    // The library looks for its folders once in a process.
    static void SetUpTestSuite() {
        folder = new TempFolder;
        registry = new RegistrySandbox;
        for (const char* name :
             {"Logs", "Engine", "Engine\\Nougat64", "Engine\\Nougat64\\AppCache"}) {
            folder->makeFolder(name);
        }
        registry->set("UserDefinedDir", folder->path());
        registry->set("InstallDir", "C:\\None\\");
    }
    static void TearDownTestSuite() {
        delete registry;
        delete folder;
    }

    AllocationTest() {
        data.write("Engine\\Nougat64\\AppCache\\AppCache.json",
                   R"([{"package":"com.a","activity":"M","appLabel":"A","versionCode":7,)"
                   R"("versionName":"1"}])");
        data.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\"240\"\nvtr.locale=\"en-US\"\n");
        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
        confDiscardChanges(confStore());
    }

    // Runs `call` in every shortage until one is long enough for nothing to fail. `check` gets what
    // the call answered, with plenty of memory again. Answers how many allocations were refused.
    template <typename Call, typename Check>
    static int inEveryShortage(Call call, Check check) {
        int shortages = 0;
        for (const Shortage kind : {Shortage::Once, Shortage::ForEver}) {
            for (int first = 0;; ++first) {
                SCOPED_TRACE((kind == Shortage::Once ? "once " : "for ever ") +
                             std::to_string(first));
                shortage = kind;
                startShortage(kind, first);
                auto answer = call();
                const bool failed = endShortage();
                check(answer);
                if (::testing::Test::HasFailure() || !failed) break;
                ++shortages;
            }
        }
        return shortages;
    }

    // A text is the one that comes with plenty of memory, or none after one error line with the
    // function's name.
    static void expectText(const std::string& name, const std::function<char*()>& call) {
        const std::optional<std::string> plenty = taken(call());
        ASSERT_TRUE(plenty.has_value());
        const ErrorLines errors;
        const int shortages = inEveryShortage(call, [&](char* text) {
            const std::optional<std::string> answer = taken(text);
            EXPECT_EQ(answer.value_or(*plenty), *plenty);
            EXPECT_EQ(errors.count(), answer ? 0 : 1);
            const std::string start = answer ? "" : name + ": exception: ";
            EXPECT_EQ(errors.last().substr(0, start.size()), start);
            errors.clear();
            EXPECT_EQ(taken(call()), plenty) << "afterwards";
            EXPECT_EQ(errors.count(), 0) << errors.last();
        });
        EXPECT_GT(shortages, 0);
    }

    // A set function answers 0 and has set, or -1 and has not; afterwards it sets.
    static void expectSet(const std::function<bridge_i32(int)>& set,
                          const std::function<int()>& get) {
        int next = 1;
        inEveryShortage([&] { return set(next); },
                        [&](bridge_i32 result) {
                            EXPECT_TRUE(result == 0 || result == -1) << result;
                            if (result == 0) EXPECT_EQ(get(), next);
                            ++next;
                            EXPECT_EQ(set(next), 0);
                            EXPECT_EQ(get(), next);
                            ++next;
                        });
    }

    static inline Shortage shortage{};
    static inline TempFolder* folder = nullptr;
    static inline RegistrySandbox* registry = nullptr;
    const TempFolder& data = *folder;
};

int numberOf(char* text) { return std::stoi(taken(text).value_or("-1")); }

}  // namespace

TEST_F(AllocationTest, Getters) {
    expectText("bridgeConfGetString", [] { return bridgeConfGetString(kLocale); });
    expectText("bridgeConfGetMultiString", [] { return bridgeConfGetMultiString(kFolders); });
    inEveryShortage([] { return bridgeConfGetI32(kDpi); },
                    [](bridge_i32 dpi) { EXPECT_TRUE(dpi == 240 || dpi == 0) << dpi; });
    inEveryShortage([] { return bridgeConfGetBool("vtr.enable_adb_access"); },
                    [](bridge_bool value) { EXPECT_EQ(value, 0); });
}

TEST_F(AllocationTest, Setters) {
    expectSet([](int n) { return bridgeConfSetI32(kDpi, n); },
              [] { return bridgeConfGetI32(kDpi); });
    expectSet([](int n) { return bridgeConfSetString(kLocale, std::to_string(n).c_str()); },
              [] { return numberOf(bridgeConfGetString(kLocale)); });
    expectSet([](int n) { return bridgeConfSetMultiString(kFolders, std::to_string(n).c_str()); },
              [] { return numberOf(bridgeConfGetMultiString(kFolders)); });
    inEveryShortage([] { return bridgeConfSetBool("vtr.enable_adb_access", 1); },
                    [](bridge_i32 result) {
                        EXPECT_TRUE(result == 0 || result == -1) << result;
                        if (result == 0) EXPECT_EQ(bridgeConfGetBool("vtr.enable_adb_access"), 1);
                        EXPECT_EQ(bridgeConfSetBool("vtr.enable_adb_access", 0), 0);
                        EXPECT_EQ(bridgeConfGetBool("vtr.enable_adb_access"), 0);
                    });
}

TEST_F(AllocationTest, ALongTextIsSetWholeOrNotAtAll) {
    const std::string text(60, 'x');
    const int shortages = inEveryShortage(
        [&] { return bridgeConfSetString(kLocale, text.c_str()); },
        [&](bridge_i32 result) {
            EXPECT_EQ(taken(bridgeConfGetString(kLocale)), result == 0 ? text : "en-US") << result;
            EXPECT_EQ(bridgeConfSetString(kLocale, "en-US"), 0);
        });
    EXPECT_GT(shortages, 1);
}

TEST_F(AllocationTest, ASetOfAnUnknownInstance) {
    int number = 0;
    std::string dpi = "vtr.instance.Nougat64_0.dpi";
    std::string name = "vtr.instance.Nougat64_0.display_name";
    const auto set = [&dpi] { return bridgeConfSetI32(dpi.c_str(), 99); };
    const int shortages = inEveryShortage(set, [&](bridge_i32 result) {
        EXPECT_TRUE(result == 0 || result == -1) << result;
        EXPECT_EQ(set(), 0);
        EXPECT_EQ(bridgeConfGetI32(dpi.c_str()), 99);
        EXPECT_EQ(taken(bridgeConfGetString(name.c_str())), "Vantrel") << "no default is missing";
        const std::string prefix = "vtr.instance.Nougat64_" + std::to_string(++number) + ".";
        dpi = prefix + "dpi";
        name = prefix + "display_name";
    });
    EXPECT_GT(shortages, 4);
}

TEST_F(AllocationTest, Commits) {
    ASSERT_EQ(bridgeConfCommitToFile((data / "vantrel.conf").c_str()), 0);
    const std::string before = data.read("vantrel.conf");
    bridgeConfSetI32(kDpi, 320);
    ASSERT_EQ(bridgeConfCommit(), 0);
    const std::string after = data.read("vantrel.conf");
    data.write("vantrel.conf", before);
    ASSERT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
    ASSERT_EQ(bridgeConfSetI32(kDpi, 320), 0);
    inEveryShortage([] { return bridgeConfCommit(); },
                    [&](bridge_i32 result) {
                        const std::string now = data.read("vantrel.conf");
                        EXPECT_TRUE(now == (result == 0 ? after : before)) << result;
                        data.write("vantrel.conf", before);
                        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
                        EXPECT_EQ(bridgeConfSetI32(kDpi, 320), 0);
                        if (shortage == Shortage::Once) {
                            EXPECT_FALSE(data.has("vantrel.conf-temp"));
                        }
                    });
}

TEST_F(AllocationTest, Initialisation) {
    inEveryShortage([] { return bridgeApiInitEx("Helper", 0, 0, "NUL"); },
                    [](bridge_i32 result) {
                        EXPECT_TRUE(result == 0 || result == -1) << result;
                        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
                        EXPECT_EQ(bridgeConfGetI32(kDpi), 240);
                    });
}

TEST_F(AllocationTest, Listings) {
    expectText("bridgeConfGetInstances", [] { return bridgeConfGetInstances(); });
    expectText("bridgeGetInstalledApps", [] { return bridgeGetInstalledApps("Nougat64"); });
}

TEST_F(AllocationTest, Programs) {
    const std::function<bridge_i32()> launches[] = {
        [] { return bridgeLaunchApp("Nougat64", "p"); },
        [] { return bridgeLaunchAppStore("Nougat64", "s", "p"); },
        [] { return bridgeLaunchUrl("Nougat64", "u"); },
        [] { return bridgeInstallApk("Nougat64", "f"); },
        [] { return bridgeUninstallApp("Nougat64", "p"); },
        [] { return bridgeInstallImage("Nougat32"); },
        [] { return bridgeCreateFreshInstance("Nougat64", "1", "2", "g", "r", "p"); }};
    for (const auto& launch : launches) {
        ASSERT_EQ(launch(), 2) << "there is no such program";
        inEveryShortage(launch, [&](bridge_i32 result) {
            EXPECT_TRUE(result == 2 || result == -1) << result;
            EXPECT_EQ(launch(), 2);
        });
    }
}

TEST_F(AllocationTest, Requests) {
    inEveryShortage([] { return bridgePlrShutdown("Nougat64", 1); },
                    [](bridge_i32 result) {
                        EXPECT_TRUE(result == 0 || result == -1) << result;
                        EXPECT_EQ(bridgePlrShutdown("Nougat64", 1), 0);
                    });
    inEveryShortage([] { return bridgeShutdown(), 0; }, [](int) { bridgeShutdown(); });
}

// The server starts once per process: each shortage has a process of its own, and says whether it
// was long enough.
SCENE(registersInAShortage) {
    RegistrySandbox registry;
    bridgeApiInitEx("Helper", 1, 0, "NUL");
    startShortage(arguments[0] == "once" ? Shortage::Once : Shortage::ForEver,
                  std::stoi(arguments[1]));
    bridgeRegisterCallbacks(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr);
    const bool failed = endShortage();
    bridgeRegisterCallbacks(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr);
    if (bridgeApiFini() != 0) return 1;
    return failed ? 0 : 5;
}

TEST(AllocationSceneTest, Registering) {
    for (const char* kind : {"once", "for ever"}) {
        std::uint32_t status = 0;
        for (int first = 0; status == 0; ++first) {
            ASSERT_LT(first, 200);
            status = runScene("registersInAShortage", {kind, std::to_string(first)}).status;
        }
        EXPECT_EQ(status, 5u) << kind;
    }
}
