// Linearizability: some sequential order of the calls of several threads explains every result.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "support/Proof.h"

namespace {

constexpr std::size_t kKeys = 2;
constexpr std::array<const char*, kKeys> kNames{"vtr.instance.A.dpi", "vtr.instance.A.ram"};

enum class Kind {
    Set,
    Get,
    IsPending,
    HasPending,
    Discard,
    Commit,
    CommitWithoutRead,  // the file cannot be read, so nothing changes
    CommitWithoutMove,  // the file stays as it is, the memory has the merged values
    Reload
};

// A call, when it began and ended, and its result.
struct Call {
    Kind kind;
    std::size_t key = 0;
    int number = 0;  // to set
    int began = 0;
    int ended = 0;
    int result = 0;
};

std::string textOf(const Call& call) {
    static const char* const names[] = {
        "set",     "get",    "is pending",          "has pending",
        "discard", "commit", "commit without read", "commit without move",
        "reload"};
    std::ostringstream text;
    text << call.began << ".." << call.ended << " " << names[static_cast<int>(call.kind)] << " key "
         << call.key << " number " << call.number << " gave " << call.result << "\n";
    return text.str();
}

using Numbers = std::array<int, kKeys>;

// The state of the store that these calls can observe.
struct Model {
    Numbers file{1, 1};
    Numbers committed{1, 1};
    std::array<std::optional<int>, kKeys> staged;

    bool operator<(const Model& other) const {
        return std::tie(file, committed, staged) <
               std::tie(other.file, other.committed, other.staged);
    }

    bool hasChanges() const {
        for (const auto& number : staged) {
            if (number) return true;
        }
        return false;
    }
    void merge() {
        committed = file;
        for (std::size_t key = 0; key < kKeys; ++key) {
            if (staged[key]) committed[key] = *std::exchange(staged[key], std::nullopt);
        }
    }
};

// The states in which the call can leave the model, given its result. None: the call cannot be at
// this position of the order.
std::vector<Model> after(const Model& before, const Call& call) {
    Model model = before;
    const auto gave = [&](int result) {
        return call.result == result ? std::vector<Model>{model} : std::vector<Model>{};
    };
    std::optional<int>& staged = model.staged[call.key];
    switch (call.kind) {
        case Kind::Set:
            if (call.number == model.committed[call.key]) {
                staged.reset();
            } else {
                staged = call.number;
            }
            return gave(0);
        case Kind::Get:
            return gave(staged.value_or(model.committed[call.key]));
        case Kind::IsPending:
            return gave(staged.has_value());
        case Kind::HasPending:
            return gave(model.hasChanges());
        case Kind::Discard:
            model.staged = {};
            return gave(0);
        case Kind::Reload:
            model.committed = model.file;
            return gave(0);
        case Kind::CommitWithoutRead:
            return gave(model.hasChanges() ? XERR_FAILURE : 0);
        case Kind::Commit:
        case Kind::CommitWithoutMove:
            break;
    }
    std::vector<Model> states;
    if (!model.hasChanges() && call.result == 0) states.push_back(model);
    // Another thread may discard its changes before the merge, which then merges none.
    model.merge();
    if (call.kind == Kind::Commit) model.file = model.committed;
    if (call.result == (call.kind == Kind::Commit ? 0 : XERR_ACCES)) states.push_back(model);
    return states;
}

// Searches for an order of the calls in which each comes after those that ended before it began.
class Explanation {
 public:
    explicit Explanation(const std::vector<Call>& calls) : calls_(calls) {}

    bool exists() { return search(0, Model{}); }

 private:
    bool search(std::uint32_t done, const Model& model) {
        if (done == (1u << calls_.size()) - 1) return true;
        if (!tried_.insert({done, model}).second) return false;
        for (std::size_t i = 0; i < calls_.size(); ++i) {
            if ((done & (1u << i)) != 0 || !mayBeNext(done, i)) continue;
            for (const Model& next : after(model, calls_[i])) {
                if (search(done | (1u << i), next)) return true;
            }
        }
        return false;
    }

    bool mayBeNext(std::uint32_t done, std::size_t call) const {
        for (std::size_t i = 0; i < calls_.size(); ++i) {
            if ((done & (1u << i)) == 0 && calls_[i].ended < calls_[call].began) return false;
        }
        return true;
    }

    const std::vector<Call>& calls_;
    std::set<std::pair<std::uint32_t, Model>> tried_;
};

// The file operation that fails in this thread's commits.
thread_local std::optional<HookedFiles::Step> failing;

int play(ConfStore& store, const Call& call) {
    const char* const key = kNames[call.key];
    switch (call.kind) {
        case Kind::Set:
            return confSetI32(store, key, call.number);
        case Kind::Get:
            return confGetI32(store, key);
        case Kind::IsPending:
            return confIsPropPending(store, key);
        case Kind::HasPending:
            return confHasPendingChanges(store);
        case Kind::Discard:
            return confDiscardChanges(store);
        case Kind::Reload:
            return confReload(store);
        case Kind::CommitWithoutRead:
            failing = HookedFiles::Step::Read;
            break;
        case Kind::CommitWithoutMove:
            failing = HookedFiles::Step::Replace;
            break;
        case Kind::Commit:
            break;
    }
    const int result = confCommit(store);
    failing.reset();
    return result;
}

class ConfModelTest : public ConfTest {
 protected:
    static constexpr int kThreads = 3;
    static constexpr int kCallsOfAThread = 5;

    std::vector<Call> someCalls() {
        static constexpr Kind kinds[] = {Kind::Set,       Kind::Set,
                                         Kind::Set,       Kind::Get,
                                         Kind::Get,       Kind::Get,
                                         Kind::IsPending, Kind::HasPending,
                                         Kind::Commit,    Kind::Commit,
                                         Kind::Reload,    Kind::CommitWithoutRead,
                                         Kind::Discard,   Kind::CommitWithoutMove};
        std::vector<Call> calls(kCallsOfAThread);
        for (Call& call : calls) {
            call.kind = kinds[random() % std::size(kinds)];
            call.key = random() % kKeys;
            call.number = 1 + static_cast<int>(random() % 3);
        }
        return calls;
    }

    // Plays the scripts at the same time on a new store. Returns all calls.
    std::vector<Call> playAtOnce(std::vector<std::vector<Call>> scripts) {
        folder.write("vantrel.conf", "vtr.instance.A.dpi=\"1\"\nvtr.instance.A.ram=\"1\"\n");
        HookedFiles files([](HookedFiles::Step step) {
            if (failing != step) return XERR_SUCCESS;
            return step == HookedFiles::Step::Replace ? XERR_ACCES : XERR_FAILURE;
        });
        ConfStore shared(catalogue, files);
        shared.fileLockName = store.fileLockName;
        EXPECT_EQ(confLibInit(shared, path(), false), 0);
        std::atomic<int> time{0};
        std::atomic<std::size_t> ready{0};
        std::vector<std::thread> threads;
        for (std::vector<Call>& script : scripts) {
            threads.emplace_back([&] {
                ++ready;
                while (ready < scripts.size()) std::this_thread::yield();
                for (Call& call : script) {
                    call.began = ++time;
                    call.result = play(shared, call);
                    call.ended = ++time;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        std::vector<Call> calls;
        for (const auto& script : scripts) calls.insert(calls.end(), script.begin(), script.end());
        return calls;
    }

    std::mt19937 random{1};
};

}  // namespace

TEST_F(ConfModelTest, SomeOrderOfTheCallsExplainsEveryResult) {
    const int rounds = proofSize(60, 20'000);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        std::vector<std::vector<Call>> scripts;
        for (int thread = 0; thread < kThreads; ++thread) scripts.push_back(someCalls());
        const std::vector<Call> calls = playAtOnce(std::move(scripts));
        std::string history;
        for (const Call& call : calls) history += textOf(call);
        EXPECT_TRUE(Explanation(calls).exists()) << "round " << round << ":\n" << history;
        log.clear();
    }
}

// The checker itself.
TEST_F(ConfModelTest, AResultThatNoOrderExplainsIsDetected) {
    const Call set{Kind::Set, 0, 2, 1, 2, 0};
    EXPECT_TRUE(Explanation({set, {Kind::Get, 0, 0, 3, 4, 2}}).exists());
    EXPECT_FALSE(Explanation({set, {Kind::Get, 0, 0, 3, 4, 1}}).exists()) << "the set had ended";
    EXPECT_TRUE(Explanation({set, {Kind::Get, 0, 0, 1, 4, 1}}).exists()) << "at the same time";
    const Call commit{Kind::Commit, 0, 0, 3, 8, 0};
    EXPECT_FALSE(Explanation({set, commit, {Kind::IsPending, 0, 0, 9, 10, 1}}).exists());
    EXPECT_FALSE(Explanation({set, commit, {Kind::Get, 0, 0, 4, 5, 1}}).exists());
}
