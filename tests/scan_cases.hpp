#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// A data set and a text that have much in common.
struct Scan_case {
    std::string file;
    std::string text;
    std::vector<std::u16string> key_names; // none for those of the file
    std::size_t least;
    std::optional<std::uint64_t> within;
    std::string told; // what it was made of, for messages
};

// Cases that are hard: few different pieces, so that values overlap and repeat, of all that the
// rules name.
class Scan_case_maker {
public:
    explicit Scan_case_maker(unsigned seed) : random_(seed) {}

    [[nodiscard]] Scan_case make();
    std::size_t below(std::size_t limit) { return random_() % limit; }

private:
    std::string piece();
    std::string joint();
    std::string value();
    std::string number();
    std::string value_of_type(std::string_view type);
    std::string altered(const std::string& value);
    std::string text(const std::vector<std::vector<std::string>>& rows);

    std::mt19937 random_;
};

} // namespace test
