#pragma once

#include "converter.hpp"
#include "files.hpp"
#include "options.hpp"
#include "progress.hpp"
#include "report.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace dsscan {

// Scans one text after the other. A fault of a text is told on standard error and the next one is
// scanned; those of the output are thrown.
class Text_scanner {
public:
    // Both must outlive the scanner. Throws std::runtime_error for an unknown encoding.
    Text_scanner(const Options& options, const tla::Tla_scan_index& index);

    // A file, a folder, or "-". False when nothing more is asked for.
    bool scan(const std::string& name);

    // What standard output still has to take.
    void finish();

    [[nodiscard]] bool has_found() const { return report_.has_found(); }
    [[nodiscard]] bool had_fault() const { return had_fault_; }

private:
    bool scan_text(const std::string& name, File_bytes::Kind kind);
    void read_through(Text_bytes& bytes);
    bool feed(std::span<const std::byte> bytes);
    bool feed_converted();
    void tell(const std::string& name, std::string_view fault);

    const Options& options_;
    Report report_;
    Progress progress_;
    tla::Tla_text_scan scan_;
    std::optional<Converter> converter_;
    std::vector<std::byte> room_;
    std::string converted_;
    bool had_fault_ = false;
};

} // namespace dsscan
