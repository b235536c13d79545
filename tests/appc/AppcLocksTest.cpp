// Every operation at the same time as every other, on two threads.
#include <QJsonArray>

#include "AppcFixture.h"
#include "support/Platform.h"
#include "support/Subprocess.h"

namespace {

struct Operation {
    const char* name;
    std::function<void(AppcStore& store, int round)> run;
};

// `data` is the store's folder.
std::vector<Operation> operations(const std::string& data) {
    return {
        {"init", [](AppcStore& s, int) { EXPECT_EQ(appcLibInit(s, "Nougat64"), 0); }},
        {"load", [](AppcStore& s, int) { EXPECT_EQ(appcLoadFromFile(s), 0); }},
        {"read", [](AppcStore& s, int) { EXPECT_EQ(appcReadFromJsonObj(s, QJsonArray()), 0); }},
        {"save", [](AppcStore& s, int) { EXPECT_EQ(appcSaveToFile(s), 0); }},
        {"lookup",
         [](AppcStore& s, int) {
             static_cast<void>(appcGetApp(s, "com.a", nullptr, nullptr, nullptr, nullptr, nullptr));
         }},
        {"list", [](AppcStore& s, int) { static_cast<void>(packagesOf(s)); }},
        {"listing",
         [](AppcStore& s, int) {
             std::string listing;
             EXPECT_EQ(appcListApps(s, "Nougat64", listing), 0);
         }},
        {"sync",
         [](AppcStore& s, int) {
             const std::string json = R"({"apps": )" + arrayOf({Element().text()}) + "}";
             EXPECT_EQ(appcSyncInstalledApps(s, json.c_str()), 0);
         }},
        {"update",
         [](AppcStore& s, int round) {
             EXPECT_EQ(appcUpdateApp(s, "com.b", "m", "l", round, "v", "missing.png"), 0);
         }},
        {"remove", [](AppcStore& s, int) { EXPECT_EQ(appcRemoveApp(s, "com.b"), 0); }},
        {"copy",
         [data](AppcStore& s, int) {
             static std::atomic<int> copies{0};
             const std::string instance = "Nougat64_" + std::to_string(++copies);
             std::filesystem::create_directory(systemPath(data + "\\Engine\\" + instance));
             EXPECT_EQ(appcCopyInstance(s, "Nougat64", instance), 0);
         }},
    };
}

// Runs both operations at the same time.
void runBeside(AppcStore& store, const Operation& a, const Operation& b, int rounds) {
    std::atomic<int> waiting{2};
    const auto play = [&](const Operation& operation) {
        --waiting;
        while (waiting > 0) std::this_thread::yield();
        for (int round = 0; round < rounds; ++round) operation.run(store, round);
    };
    std::thread first(play, std::cref(a));
    std::thread second(play, std::cref(b));
    first.join();
    second.join();
}

}  // namespace

SUBPROCESS(runsEveryPair) {
    LogCapture quiet;
    ForeignStore store(arguments[0]);
    if (appcLibInit(store, "Nougat64") != 0) return 1;
    const auto all = operations(arguments[0]);
    for (std::size_t a = 0; a < all.size(); ++a) {
        for (std::size_t b = a; b < all.size(); ++b) {
            runBeside(store, all[a], all[b], 25);
            std::puts((std::string(all[a].name) + " " + all[b].name).c_str());
            std::fflush(stdout);
            quiet.clear();
        }
    }
    return ::testing::Test::HasFailure() ? 2 : 0;
}

TEST_F(AppcTest, NoTwoOperationsWaitForEachOtherForEver) {
    data.makeFolder("Engine\\Nougat64\\AppCache");
    ChildOptions options;
    options.limit = std::chrono::seconds(120);
    const ChildResult result = runSubprocess("runsEveryPair", {data.path()}, options);
    const auto pairs = std::count(result.out.begin(), result.out.end(), '\n');
    EXPECT_EQ(result.status, 0u) << "the last pair that came to its end: " << result.out;
    EXPECT_EQ(pairs, 11 * 12 / 2);
}

// Loads and saves from the threads of two processes at once.
SUBPROCESS(loadsAndSavesOnThreads) {
    LogCapture log;
    ForeignStore store(arguments[0]);
    if (appcLibInit(store, "Nougat64") != 0) return 1;
    const auto all = operations(arguments[0]);
    std::vector<std::thread> threads;
    for (const char* name : {"load", "save", "sync", "load"}) {
        threads.emplace_back([&store, &all, name] {
            for (const Operation& operation : all) {
                if (std::string_view(operation.name) != name) continue;
                for (int round = 0; round < 200; ++round) operation.run(store, round);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& line : log.texts()) std::puts(line.c_str());
    return ::testing::Test::HasFailure() ? 2 : 0;
}

TEST_F(AppcTest, ThreadsOfTwoProcessesLoadAndSave) {
    ASSERT_EQ(init("[]"), 0);
    ChildOptions options;
    options.limit = std::chrono::seconds(120);
    ChildProcess a = startSubprocess("loadsAndSavesOnThreads", {data.path()}, options);
    ChildProcess b = startSubprocess("loadsAndSavesOnThreads", {data.path()}, options);
    for (ChildProcess* child : {&a, &b}) {
        const ChildResult result = child->finish();
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(appcLoadFromFile(store), 0);
}
