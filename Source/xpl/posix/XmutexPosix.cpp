// The named mutex: a robust mutex in a file in the temporary folder, which every process maps.
// Errors are Windows error numbers, as the log lines show them.
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xtext.h"

namespace {

constexpr XlogModule kLog{XlogTag::XMUTEX, "Source/xpl/XmutexWinnt"};

constexpr int kPathNotFound = 3;
constexpr int kInvalidHandle = 6;
constexpr int kNotOwner = 288;
constexpr int kNoUnicodeTranslation = 1113;

// The state that the processes share. Never freed: it is a few bytes per name.
struct Shared {
    // FIFO turnstile: a thread holds it while it waits for the mutex. A thread that unlocks and
    // locks again therefore queues behind the waiters, as on Windows.
    pthread_mutex_t turn;
    pthread_mutex_t mutex;
};

// State of this process. The owner is not shared: a dead process would leave a thread id that the
// system may reuse.
struct Named {
    Shared* shared = nullptr;
    std::atomic<std::uint64_t> owner{0};  // a thread of this process, or 0
    int depth = 0;                        // of the owner
};

// A number that identifies this thread and is never reused.
std::uint64_t thisThread() {
    static std::atomic<std::uint64_t> last{0};
    thread_local const std::uint64_t number = ++last;
    return number;
}

constexpr std::string_view kGlobal = "Global\\";

// Whether no "\" follows the namespace.
bool isInNamespace(const std::string& name) {
    const std::size_t start = name.rfind(kGlobal, 0) == 0 ? kGlobal.size() : 0;
    return name.find('\\', start) == std::string::npos;
}

std::string pathOf(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '\\' || c == '/'; }, '-');
    const char* const folder = std::getenv("TMPDIR");
    return std::string(folder == nullptr ? "/tmp" : folder) + "/qxb-mutex-" + name;
}

void initialise(Shared& shared) {
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    ::pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    ::pthread_mutex_init(&shared.turn, &attributes);
    ::pthread_mutex_init(&shared.mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

Shared* mapFile(const std::string& path, int flags) {
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC | flags, 0666);
    if (file < 0) return nullptr;
    void* memory = MAP_FAILED;
    if ((flags & O_CREAT) == 0 || ::ftruncate(file, sizeof(Shared)) == 0) {
        memory =
            ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, file, /*offset=*/0);
    }
    ::close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<Shared*>(memory);
}

// Links an initialised mutex to its name, unless another process was first.
Shared* mapNamed(const std::string& path) {
    if (Shared* const existing = mapFile(path, 0)) return existing;
    const std::string draft = path + "." + std::to_string(::getpid());
    Shared* const made = mapFile(draft, O_CREAT | O_TRUNC);
    if (made == nullptr) return nullptr;
    initialise(*made);
    const bool first = ::link(draft.c_str(), path.c_str()) == 0;
    ::unlink(draft.c_str());
    if (first) return made;
    ::munmap(made, sizeof(Shared));
    return mapFile(path, 0);
}

// Maps each name once per process and never unmaps it, since a mutex must have one address. Null
// when it cannot be mapped.
Named* namedOf(const std::string& name) {
    static std::mutex guard;
    static auto& all = *new std::map<std::string, Named>;
    const std::lock_guard<std::mutex> lock(guard);
    Named& known = all[name];
    if (known.shared == nullptr) known.shared = mapNamed(pathOf(name));
    return known.shared == nullptr ? nullptr : &known;
}

// Whether a lock function succeeded. Recovers the mutex of a dead owner.
bool isTaken(pthread_mutex_t& mutex, int answer) {
    if (answer == EOWNERDEAD) ::pthread_mutex_consistent(&mutex);
    return answer == 0 || answer == EOWNERDEAD;
}

// Takes the turn and then the mutex by one of the lock functions.
template <typename Lock>
bool take(Named& named, Lock lock) {
    Shared& shared = *named.shared;
    if (!isTaken(shared.turn, lock(&shared.turn))) return false;
    const bool taken = isTaken(shared.mutex, lock(&shared.mutex));
    ::pthread_mutex_unlock(&shared.turn);
    if (!taken) return false;
    named.owner = thisThread();
    named.depth = 1;
    return true;
}

timespec timeIn(std::chrono::milliseconds limit) {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    const auto nanoseconds = time.tv_nsec + std::chrono::nanoseconds(limit).count();
    time.tv_sec += static_cast<time_t>(nanoseconds / 1'000'000'000);
    time.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    return time;
}

bool isMine(const Named& named) { return named.owner == thisThread(); }

}  // namespace

std::int32_t XmutexNamed::init(const std::string& name) {
    close();
    name_ = name;
    std::wstring ignored;
    int error = 0;
    if (xtextToWide(name, ignored) != XERR_SUCCESS) {
        error = kNoUnicodeTranslation;
    } else if (!isInNamespace(name)) {
        error = kPathNotFound;
    } else {
        handle_ = namedOf(name);
        if (handle_ == nullptr) error = kInvalidHandle;
    }
    if (error == 0) return XERR_SUCCESS;
    XLOG_E(kLog, "Failed to create mutex '%s'. Error = %d", name.c_str(), error);
    return XERR_FAILURE;
}

void XmutexNamed::close() noexcept { handle_ = nullptr; }

void XmutexNamed::lock() {
    auto* const named = static_cast<Named*>(handle_);
    if (named != nullptr) {
        if (isMine(*named)) {
            ++named->depth;
            return;
        }
        if (take(*named, ::pthread_mutex_lock)) return;
    }
    XLOG_E(kLog, "%s: Error in taking lock, GetLastError: %u", "lock",
           static_cast<unsigned>(kInvalidHandle));
    xlogFatalBreak(kLog, __LINE__, "XmutexNamed::lock");
}

bool XmutexNamed::try_lock() {
    auto* const named = static_cast<Named*>(handle_);
    if (named == nullptr) {
        XLOG_E(kLog, "%s: Error in try_lock, GetLastError: %u", "try_lock",
               static_cast<unsigned>(kInvalidHandle));
        return false;
    }
    if (isMine(*named)) {
        ++named->depth;
        return true;
    }
    return take(*named, ::pthread_mutex_trylock);
}

bool XmutexNamed::try_lock_for(std::chrono::milliseconds limit) {
    auto* const named = static_cast<Named*>(handle_);
    if (named == nullptr || isMine(*named)) {
        lock();
        return true;
    }
    const timespec end = timeIn(limit);
    return take(*named,
                [&end](pthread_mutex_t* mutex) { return ::pthread_mutex_timedlock(mutex, &end); });
}

void XmutexNamed::unlock() {
    auto* const named = static_cast<Named*>(handle_);
    if (named != nullptr && isMine(*named)) {
        if (--named->depth > 0) return;
        named->owner = 0;
        ::pthread_mutex_unlock(&named->shared->mutex);
        return;
    }
    XLOG_E(kLog, "%s: Error in unlocking, GetLastError: %u", "unlock",
           static_cast<unsigned>(named == nullptr ? kInvalidHandle : kNotOwner));
    xlogFatalBreak(kLog, __LINE__, "XmutexNamed::unlock");
}
