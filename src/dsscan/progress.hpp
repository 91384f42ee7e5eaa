#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace dsscan {

// Says on a terminal how far long work is: from its second second on, a line of standard error that
// is written over again and again. Elsewhere it says nothing.
class Progress {
public:
    Progress();
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Begins a text of so many bytes; 0 when that is not known.
    void start(std::string_view name, std::uint64_t size);
    // So many bytes of it were read.
    void add(std::uint64_t bytes);
    // To be called before anything else is written: the line makes way.
    void clear();
    // Whether lines of results would stand in its way.
    [[nodiscard]] bool shares_terminal() const { return shares_terminal_; }

private:
    using Clock = std::chrono::steady_clock;

    void show();

    bool is_on_;
    bool shares_terminal_;
    bool is_shown_ = false;
    Clock::time_point next_; // when it is to be shown again
    std::string name_;
    std::uint64_t size_ = 0;
    std::uint64_t done_ = 0;
    std::uint64_t texts_ = 0;
};

} // namespace dsscan
