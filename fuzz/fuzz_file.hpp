#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fuzz {

// A file, in memory only, that can be opened by its path. Where a data set file has its checksum,
// the right one stands, so that what lies behind the check is reached.
class Fuzz_file {
public:
    explicit Fuzz_file(std::span<const std::byte> bytes);
    Fuzz_file(const Fuzz_file&) = delete;
    Fuzz_file& operator=(const Fuzz_file&) = delete;
    ~Fuzz_file();

    [[nodiscard]] std::string path() const;
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    int descriptor_;
    std::string bytes_;
};

} // namespace fuzz
