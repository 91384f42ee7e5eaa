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

// More descriptors than a shell would ever hand down are not searched.
constexpr int MOST_DESCRIPTORS = 65536;

// Read by the handler, and so written only while it cannot run. The system opens no longer name.
// It outlives every object: a run may be interrupted while it ends.
char output_to_remove[PATH_MAX] = "";

sigset_t ending_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : ENDING_SIGNALS) {
        sigaddset(&signals, signal);
    }
    return signals;
}

bool is_open_here(const struct stat& entry, int descriptor) {
    struct stat facts {};
    return ::fstat(descriptor, &facts) == 0 && facts.st_dev == entry.st_dev &&
           facts.st_ino == entry.st_ino;
}

// The entry may be another run's by now. It is ours when this process has it open, by a descriptor
// that it opened itself: those it was handed are not closed on exec.
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

// Calls nothing but the system, and only what it allows in a handler.
extern "C" void clean_up_and_end(int signal) {
    if (output_to_remove[0] != '\0') (void)::unlink(output_to_remove);
    constexpr const char* SCRATCH = tla::TLA_SCRATCH_FILE_NAME.data();
    struct stat entry {};
    if (::lstat(SCRATCH, &entry) == 0 && is_own_scratch(entry)) (void)::unlink(SCRATCH);
    // Its own action is back by SA_RESETHAND; it comes when this returns and the signal is let in.
    (void)::raise(signal);
}

} // namespace

void prepare_for_signals() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = clean_up_and_end;
    action.sa_mask = ending_signals(); // a second one waits, and finds everything gone
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction before {};
        const bool ignored =
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

void remove_when_interrupted(std::string_view output_name) {
    const std::string_view name = output_name.substr(0, sizeof output_to_remove - 1);
    *std::ranges::copy(name, output_to_remove).out = '\0';
}

} // namespace driver
