#include "progress.hpp"

#include "files.hpp"
#include "shown.hpp"

#include <algorithm>
#include <cstdio>

namespace dsscan {

namespace {

// A quick scan shows nothing, and a slow one no more often than a reader can see.
constexpr auto BEFORE_FIRST = std::chrono::seconds(1);
constexpr auto BETWEEN = std::chrono::milliseconds(200);
constexpr const char* CLEAR_LINE = "\r\x1B[K";

} // namespace

Progress::Progress()
    : is_on_(is_terminal(Stream::errors)),
      shares_terminal_(is_on_ && is_terminal(Stream::output)),
      next_(Clock::now() + BEFORE_FIRST) {}

// A folder has many texts, of which most end before anything is shown: so the text is counted.
void Progress::start(std::string_view name, std::uint64_t size) {
    if (!is_on_) return;
    name_ = name;
    size_ = size;
    done_ = 0;
    ++texts_;
    add(0);
}

void Progress::add(std::uint64_t bytes) {
    if (!is_on_) return;
    done_ += bytes;
    if (Clock::now() >= next_) show();
}

// The end of a long name says more than its front.
void Progress::show() {
    constexpr std::size_t NAME_BYTES = 40;
    constexpr std::uint64_t MEGABYTE = 1000000;
    constexpr std::uint64_t HUNDRED = 100;
    const std::string_view name = name_;
    std::string line = "text " + std::to_string(texts_) + ", " +
                       shown_in_line(name.substr(name.size() - std::min(name.size(), NAME_BYTES))) +
                       ": ";
    if (size_ != 0) {
        line += std::to_string(std::min(done_, size_) * HUNDRED / size_) + " % of " +
                std::to_string(size_ / MEGABYTE) + " MB";
    } else {
        line += std::to_string(done_ / MEGABYTE) + " MB";
    }
    std::fprintf(stderr, "%s%s", CLEAR_LINE, line.c_str());
    is_shown_ = true;
    next_ = Clock::now() + BETWEEN;
}

// Before anything else is written to the terminal.
void Progress::clear() {
    if (is_shown_) std::fputs(CLEAR_LINE, stderr);
    is_shown_ = false;
}

} // namespace dsscan
