// SPDX-License-Identifier: MIT
// A thread is ended by a real-time signal whose handler never returns. The handler first looks at the
// instruction that it interrupted: inside the C library the thread may hold the allocator's lock, and a
// process whose allocator is locked for good stands still. So the handler then reports the place and returns,
// and the ending thread tries again a little later. A thread that shows the same system call of the C library
// again and again is blocked there and holds no such lock, and is suspended where it is. An allocator of
// another library gets no such end: a system call of its own is most likely a wait for one of its locks, with
// another one held.
#include "system/thread.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <dlfcn.h>
#include <link.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace lm::system {

namespace {

using Clock = std::chrono::steady_clock;
using Word = std::atomic<std::uint32_t>;
static_assert(sizeof(Word) == sizeof(std::uint32_t) && Word::is_always_lock_free);

constexpr auto kRetryPause = std::chrono::microseconds(300);
/// Tries at one place after which the thread counts as blocked there.
constexpr int kTriesWhenBlocked = 10;
/// A thread that never takes the signal is waited for this long.
constexpr auto kPatience = std::chrono::seconds(5);
/// A thread that takes it and never leaves the C library is stopped all the same after this. On a machine
/// that is busy with other things an allocating thread can be met there very many times.
constexpr auto kLongPatience = std::chrono::seconds(100);

/// Where a thread was interrupted.
struct Place {
    std::uintptr_t instruction = 0;
    std::uintptr_t stack = 0;
    friend bool operator==(const Place&, const Place&) = default;
};

/// One thread. The table, each waiting thread and the running thread itself hold it.
struct Record {
    void (*entry)(void*) = nullptr;
    void* argument = nullptr;
    std::shared_ptr<Record> self; // let go when the thread returns; never for a suspended one
    pthread_t thread{};
    bool gone = false; // guarded by the table's mutex: the thread takes no signal any more
    Word ended{0};
    Word reports{0}; // counts the places reported and the end
    std::atomic<bool> stopAnywhere{false};
    // Set once the thread seems to be blocked: it is then stopped if the next signal still finds it where it
    // was. Who is handed the allocator's lock meanwhile isn't.
    std::atomic<bool> stopWhenBlocked{false};
    std::atomic<std::uintptr_t> instruction{0};
    std::atomic<std::uintptr_t> stack{0};
    std::atomic<bool> brokenOff{false}; // whether the place is a system call that the signal broke off
};

struct Table {
    std::mutex mutex;
    std::unordered_map<ThreadHandle, std::shared_ptr<Record>> records;
    ThreadHandle last = 0;
    bool failNext = false;
};

/// Lives as long as the process: threads may still end while the program's own objects are being destroyed.
Table& table() {
    static Table* const instance = new Table;
    return *instance;
}

// --- waiting on a word: no lock stands behind it, so a thread that is stopped inside a wait leaves nothing
// locked.

void wake(Word& word) {
    ::syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(&word), FUTEX_WAKE_PRIVATE, INT_MAX, nullptr,
              nullptr, 0);
}

/// Sleeps until the word differs from `seen`; false when `deadline` (null for none) came first.
bool waitChanged(const Word& word, std::uint32_t seen, const timespec* deadline) {
    while (word.load() == seen) {
        const long result =
            ::syscall(SYS_futex, reinterpret_cast<const std::uint32_t*>(&word), FUTEX_WAIT_BITSET_PRIVATE,
                      seen, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
        if (result == -1 && errno == ETIMEDOUT) return word.load() != seen;
    }
    return true;
}

timespec deadlineIn(std::chrono::nanoseconds time) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const auto total = std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec) + time;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(total);
    return {static_cast<time_t>(seconds.count()), static_cast<long>((total - seconds).count())};
}

// --- the C library's place in memory

struct Range {
    std::uintptr_t first, last;
    bool blocks; // whether a thread may stand blocked in it without a lock of the allocator
};

enum class Library { kOther, kC, kAllocator };

/// Code of the C library, the loader and whatever else stands in for the allocator.
struct LibraryCode {
    std::array<Range, 64> ranges{};
    std::size_t count = 0;

    const Range* rangeOf(std::uintptr_t address) const {
        for (std::size_t i = 0; i < count; ++i)
            if (address >= ranges[i].first && address < ranges[i].last) return &ranges[i];
        return nullptr;
    }
};

template<std::size_t N>
bool startsWithAny(std::string_view name, const std::string_view (&starts)[N]) {
    return std::any_of(std::begin(starts), std::end(starts),
                       [name](std::string_view start) { return name.substr(0, start.size()) == start; });
}

Library libraryOfName(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    constexpr std::string_view kC[] = {"libc.so", "libc-",      "libc.musl", "ld-",
                                       "ld.so",   "libpthread", "libgcc_s"};
    // The kernel's own page of code is among them: an allocator asks it for the time with its lock held.
    constexpr std::string_view kAllocators[] = {"libasan.", "liblsan.", "libtsan.", "libubsan.",
                                                "linux-vdso."};
    if (startsWithAny(name, kC)) return Library::kC;
    return startsWithAny(name, kAllocators) ? Library::kAllocator : Library::kOther;
}

int addRanges(dl_phdr_info* info, std::size_t, void* out) {
    auto& code = *static_cast<LibraryCode*>(out);
    const auto allocator = reinterpret_cast<std::uintptr_t>(::dlsym(RTLD_DEFAULT, "malloc"));
    const std::string_view name = info->dlpi_name != nullptr ? info->dlpi_name : "";
    Library library = libraryOfName(name);
    const auto rangeOf = [&](const ElfW(Phdr) & header) {
        const std::uintptr_t first = info->dlpi_addr + header.p_vaddr;
        return Range{first, first + header.p_memsz, library == Library::kC};
    };
    const auto isCode = [](const ElfW(Phdr) & header) {
        return header.p_type == PT_LOAD && (header.p_flags & PF_X) != 0;
    };
    // An allocator of another library counts too, but not one inside the program: all its code would.
    for (int i = 0; i < info->dlpi_phnum && library == Library::kOther && !name.empty(); ++i) {
        const Range range = rangeOf(info->dlpi_phdr[i]);
        if (isCode(info->dlpi_phdr[i]) && allocator >= range.first && allocator < range.last)
            library = Library::kAllocator;
    }
    for (int i = 0; i < info->dlpi_phnum && library != Library::kOther; ++i)
        if (isCode(info->dlpi_phdr[i]) && code.count < code.ranges.size())
            code.ranges[code.count++] = rangeOf(info->dlpi_phdr[i]);
    return 0;
}

/// Filled before the first signal is sent, so that the handler only reads it.
const LibraryCode& libraryCode() {
    static const LibraryCode code = [] {
        LibraryCode found;
        ::dl_iterate_phdr(&addRanges, &found);
        return found;
    }();
    return code;
}

// --- the signal

Place placeOf(const void* context) {
    const auto& machine = static_cast<const ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
    return {static_cast<std::uintptr_t>(machine.gregs[REG_RIP]),
            static_cast<std::uintptr_t>(machine.gregs[REG_RSP])};
#elif defined(__aarch64__)
    return {static_cast<std::uintptr_t>(machine.pc), static_cast<std::uintptr_t>(machine.sp)};
#else
#error "say where this machine keeps its instruction and stack pointers"
#endif
}

/// Calls by which an allocator gets and gives memory: it makes them with its lock held.
bool isMemoryCall(long number) {
    constexpr long kCalls[] = {SYS_brk, SYS_mmap, SYS_munmap, SYS_mprotect, SYS_mremap, SYS_madvise};
    return std::find(std::begin(kCalls), std::end(kCalls), number) != std::end(kCalls);
}

/// Whether the thread stands in a system call of the C library that the signal broke off. Such a call is
/// either shown at the call itself, about to be made again, or right behind it with the error "interrupted".
/// A call that came to its end looks else: it may have changed memory with the allocator's lock held, or have
/// been handed a lock.
bool isInBrokenOffCall(std::uintptr_t instruction, const void* context) {
    const Range* const range = libraryCode().rangeOf(instruction);
    if (range == nullptr || !range->blocks) return false;
    const auto* const at = reinterpret_cast<const unsigned char*>(instruction);
    const auto& machine = static_cast<const ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
    constexpr unsigned char kCall[] = {0x0F, 0x05};
    const auto number = static_cast<long>(machine.gregs[REG_RAX]);
    const long result = number;
#else
    constexpr unsigned char kCall[] = {0x01, 0x00, 0x00, 0xD4};
    const auto number = static_cast<long>(machine.regs[8]);
    const auto result = static_cast<long>(machine.regs[0]);
#endif
    if (std::memcmp(at, kCall, sizeof kCall) == 0) return !isMemoryCall(number);
    return std::memcmp(at - sizeof kCall, kCall, sizeof kCall) == 0 && result == -EINTR;
}

[[noreturn]] void suspendForGood() {
    for (;;) ::pause();
}

void markEnded(Record& record) {
    record.ended.store(1);
    record.reports.fetch_add(1);
    wake(record.ended);
    wake(record.reports);
}

/// Runs on the thread that is to end, with all signals held back.
void onEndSignal(int, siginfo_t* info, void* context) {
    if (info->si_code != SI_QUEUE || info->si_value.sival_ptr == nullptr) return;
    const int savedError = errno;
    Record& record = *static_cast<Record*>(info->si_value.sival_ptr);
    const Place place = placeOf(context);
    const bool brokenOff = isInBrokenOffCall(place.instruction, context);
    const bool blocked = record.stopWhenBlocked.load() && brokenOff &&
                         place == Place{record.instruction.load(), record.stack.load()};
    if (blocked || record.stopAnywhere.load() || libraryCode().rangeOf(place.instruction) == nullptr) {
        markEnded(record);
        suspendForGood();
    }
    record.instruction.store(place.instruction);
    record.stack.store(place.stack);
    record.brokenOff.store(brokenOff);
    record.reports.fetch_add(1);
    wake(record.reports);
    errno = savedError;
}

/// The first real-time signal that nobody handles; it gets our handler.
int installSignal() {
    for (int signal = SIGRTMIN + 4; signal <= SIGRTMAX; ++signal) {
        struct sigaction old {};
        if (::sigaction(signal, nullptr, &old) != 0 || (old.sa_flags & SA_SIGINFO) != 0) continue;
        if (old.sa_handler != SIG_DFL) continue;
        struct sigaction action {};
        action.sa_sigaction = &onEndSignal;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        ::sigfillset(&action.sa_mask);
        if (::sigaction(signal, &action, nullptr) == 0) return signal;
    }
    return 0;
}

int endSignal() {
    static const int signal = installSignal();
    return signal;
}

void setEndSignal(int how) {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, endSignal());
    ::pthread_sigmask(how, &set, nullptr);
}

/// The table's lock, with the end signal held back: a thread must not be stopped while it has the table.
class Locked {
public:
    Locked() {
        sigset_t set;
        ::sigemptyset(&set);
        ::sigaddset(&set, endSignal());
        ::pthread_sigmask(SIG_BLOCK, &set, &m_before);
        table().mutex.lock();
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() {
        table().mutex.unlock();
        ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_before{};
};

std::shared_ptr<Record> find(ThreadHandle handle) {
    const Locked lock;
    const auto at = table().records.find(handle);
    return at == table().records.end() ? nullptr : at->second;
}

// --- a thread's life

void* threadMain(void* given) noexcept {
    Record* const record = static_cast<Record*>(given);
    setEndSignal(SIG_UNBLOCK);
    record->entry(record->argument);
    setEndSignal(SIG_BLOCK);
    std::shared_ptr<Record> last;
    {
        const Locked lock;
        record->gone = true;
        last.swap(record->self);
    }
    markEnded(*last);
    return nullptr;
}

bool start(Record& record) {
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0) return false;
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const bool started = ::pthread_create(&record.thread, &attributes, &threadMain, &record) == 0;
    ::pthread_attr_destroy(&attributes);
    return started;
}

/// Sends the signal and waits for the answer; false when none came before the deadline. An ended thread has
/// answered.
bool ask(Record& record, const timespec& deadline) {
    const std::uint32_t seen = record.reports.load();
    {
        const Locked lock;
        if (record.gone || record.ended.load() != 0) return true;
        sigval value{};
        value.sival_ptr = &record;
        if (::pthread_sigqueue(record.thread, endSignal(), value) != 0)
            return true; // the queue is full: once more
    }
    return waitChanged(record.reports, seen, &deadline);
}

void endOther(Record& record) {
    const auto patienceEnd = Clock::now() + kLongPatience;
    Place last;
    int tries = 0;
    while (record.ended.load() == 0) {
        const bool answered = ask(record, deadlineIn(kPatience));
        if (record.ended.load() != 0) return;
        const Place place{record.instruction.load(), record.stack.load()};
        tries = place == last ? tries + 1 : 1;
        last = place;
        record.stopWhenBlocked.store(tries >= kTriesWhenBlocked && record.brokenOff.load());
        if (!answered || Clock::now() >= patienceEnd) record.stopAnywhere.store(true);
        if (!answered) return; // it holds the signal back; it stops when it lets it through
        const timespec pause{0, std::chrono::nanoseconds(kRetryPause).count()};
        ::nanosleep(&pause, nullptr);
    }
}

} // namespace

ThreadHandle createThread(void (*entry)(void*), void* argument) {
    libraryCode();
    const auto record = std::make_shared<Record>();
    record->entry = entry;
    record->argument = argument;
    record->self = record;
    const Locked lock;
    Table& all = table();
    const bool refused = std::exchange(all.failNext, false);
    if (refused || !start(*record)) {
        record->self.reset();
        return 0;
    }
    all.records.emplace(++all.last, record);
    return all.last;
}

unsigned long waitThread(ThreadHandle handle, unsigned long milliseconds) {
    const std::shared_ptr<Record> record = find(handle);
    if (record == nullptr) return kWaitFailed;
    if (milliseconds >= kForever) {
        waitChanged(record->ended, 0, nullptr);
        return kWaitEnded;
    }
    const timespec deadline = deadlineIn(std::chrono::milliseconds(milliseconds));
    return waitChanged(record->ended, 0, &deadline) ? kWaitEnded : kWaitTimeout;
}

void endThread(ThreadHandle handle) {
    const std::shared_ptr<Record> record = find(handle);
    if (record == nullptr || record->ended.load() != 0) return;
    if (::pthread_equal(record->thread, ::pthread_self()) == 0) {
        endOther(*record);
        return;
    }
    setEndSignal(SIG_BLOCK);
    markEnded(*record);
    suspendForGood();
}

void closeThread(ThreadHandle handle) {
    std::shared_ptr<Record> last;
    const Locked lock;
    const auto at = table().records.find(handle);
    if (at == table().records.end()) return;
    last = std::move(at->second);
    table().records.erase(at);
}

unsigned long openThreadHandles() {
    const Locked lock;
    return table().records.size();
}

void failNextThread() {
    const Locked lock;
    table().failNext = true;
}

} // namespace lm::system
