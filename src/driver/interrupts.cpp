#include "driver/interrupts.hpp"

#include "tla/write/scratch_file.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace driver {

namespace {

constexpr std::array ENDING_SIGNALS = {SIGINT, SIGTERM, SIGHUP};

// How many descriptors the handler searches. The limit may be in the millions or infinite, while
// the program itself opens a handful, which get low numbers.
constexpr int MOST_DESCRIPTORS = 65536;

// The handler reads it, so it is written only while the signals wait. PATH_MAX is the longest name
// that the system opens. A global, since a run can be interrupted after its objects are destroyed.
char output_to_remove[PATH_MAX] = "";

sigset_t ending_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : ENDING_SIGNALS) {
        sigaddset(&signals, signal);
    }
    return signals;
}

// Device and inode, since a name can be given to another file at any time.
bool is_open_here(const struct stat& entry, int descriptor) {
    struct stat facts {};
    return ::fstat(descriptor, &facts) == 0 && facts.st_dev == entry.st_dev &&
           facts.st_ino == entry.st_ino;
}

// Another run may have replaced the scratch file. The entry is ours if this process has it open.
// Only descriptors with FD_CLOEXEC count: all that this program opens have it, and those inherited
// from a parent cannot.
bool is_own_scratch(const struct stat& entry) {
    struct rlimit limit {};
    const bool known = ::getrlimit(RLIMIT_NOFILE, &limit) == 0;
    const int end = known ? static_cast<int>(std::min<rlim_t>(limit.rlim_cur, MOST_DESCRIPTORS))
                          : MOST_DESCRIPTORS;
    for (int descriptor = 0; descriptor < end; ++descriptor) {
        const int flags = ::fcntl(descriptor, F_GETFD);
        const bool is_own = flags >= 0 && (flags & FD_CLOEXEC) != 0;
        if (is_own && is_open_here(entry, descriptor)) return true;
    }
    return false;
}

// Calls async-signal-safe functions only (signal-safety(7)), and getrlimit(), a bare system call.
extern "C" void clean_up_and_end(int signal) {
    if (output_to_remove[0] != '\0') (void)::unlink(output_to_remove);
    constexpr const char* SCRATCH = tla::TLA_SCRATCH_FILE_NAME.data();
    struct stat entry {};
    if (::lstat(SCRATCH, &entry) == 0 && is_own_scratch(entry)) (void)::unlink(SCRATCH);
    // SA_RESETHAND has restored the default action. It follows when this returns, which unblocks
    // the signal.
    (void)::raise(signal);
}

} // namespace

void prepare_for_signals() {
    // Both would end the process before the failed write is told.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = clean_up_and_end;
    action.sa_mask = ending_signals(); // a second signal waits until the first one is handled
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction before {};
        const bool ignored =
            // Under nohup, SIGHUP is ignored: it must stay so.
            ::sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN;
        if (!ignored) (void)::sigaction(signal, &action, nullptr);
    }
}

Signals_wait::Signals_wait() {
    const sigset_t signals = ending_signals();
    (void)::sigprocmask(SIG_BLOCK, &signals, &before_);
}

Signals_wait::~Signals_wait() {
    (void)::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

// Cut off when it is too long: no such name could have been opened.
void remove_when_interrupted(std::string_view output_name) {
    const std::string_view name = output_name.substr(0, sizeof output_to_remove - 1);
    *std::ranges::copy(name, output_to_remove).out = '\0';
}

} // namespace driver
