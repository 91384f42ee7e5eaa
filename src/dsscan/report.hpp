#pragma once

#include "options.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dsscan {

// Standard output cannot be written: there is nothing left to do.
class Output_fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Prints what is found, in the format that was asked for. Throws Output_fault.
class Report final : public tla::Tla_scan_listener {
public:
    // The index must outlive the report.
    Report(Format format, const tla::Tla_scan_index& index);

    // Begins a text.
    void start(std::string_view name);
    bool take(const tla::Tla_scan_find& find) override;
    // Ends a text; after a fault of it, what was printed of it stays.
    void finish(bool is_faultless);

    // Everything is on its way out.
    void flush();

    [[nodiscard]] bool has_found() const { return has_found_; }

private:
    [[nodiscard]] std::string line_of(const tla::Tla_scan_find& find) const;
    [[nodiscard]] std::string json_of(const tla::Tla_scan_find& find) const;

    Format format_;
    std::vector<std::string> fields_; // as they are printed
    std::string name_;                // of the text, likewise
    std::uint64_t count_ = 0;         // of finds in it
    bool has_found_ = false;
};

} // namespace dsscan
