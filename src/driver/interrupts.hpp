#pragma once

#include <csignal>
#include <string_view>

namespace driver {

// A run that SIGINT, SIGTERM or SIGHUP ends leaves no part of its work behind: the scratch file
// goes, and the output that the run created. Then the signal takes its course. Nothing else in the
// program knows of signals.

// Called once, at the process entry. A signal that is ignored at the start stays ignored. Also lets
// a write past the file size limit, and one to a closed pipe, fail like any other instead of ending
// the process by a signal.
void prepare_for_signals();

// While one lives, those three signals wait. For steps that must be done whole: creating a file and
// noting its name, or removing it and forgetting the name.
class Signals_wait {
public:
    Signals_wait();
    Signals_wait(const Signals_wait&) = delete;
    Signals_wait& operator=(const Signals_wait&) = delete;
    ~Signals_wait();

private:
    sigset_t before_{};
};

// The output to remove from now on, until the process has ended; nothing for an empty name. Only
// while signals wait.
void remove_when_interrupted(std::string_view output_name);

} // namespace driver
