#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

namespace tla {

// The records of a text that are reported already, by their numbers. Few are kept one by one, so
// that a small text costs little; for many there is a bit for each that there could be.
class Reported_records {
public:
    explicit Reported_records(std::uint64_t limit) : limit_(limit) {}

    void clear() {
        few_.clear();
        bits_ = {};
    }
    void add(std::uint64_t number) {
        if (!bits_.empty()) {
            bits_[static_cast<std::size_t>(number)] = true;
            return;
        }
        few_.insert(number);
        if (few_.size() > MOST_FEW) spread();
    }
    [[nodiscard]] bool holds(std::uint64_t number) const {
        return bits_.empty() ? few_.contains(number) : bits_[static_cast<std::size_t>(number)];
    }

private:
    static constexpr std::size_t MOST_FEW = 4096;

    void spread() {
        bits_.resize(static_cast<std::size_t>(limit_));
        for (const std::uint64_t number : few_) {
            bits_[static_cast<std::size_t>(number)] = true;
        }
        few_.clear();
    }

    std::uint64_t limit_;
    std::unordered_set<std::uint64_t> few_;
    std::vector<bool> bits_;
};

} // namespace tla
