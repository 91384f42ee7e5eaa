// Scans texts for the records of a data set file, each in a thread of its own.
//
//   scan DATASET TEXT...
//
// prints what each text holds, in the order of the texts. The index is made once and shared; each
// thread has a scan of its own. dsscan is the program for every day; this one shows the library.

#include "scl/status/scl_status.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/scan/tla_scan_index.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::string narrow(std::u16string_view wide) {
    std::string text;
    scl::scl_wtos(wide, text, true);
    return text;
}

// Is told each find, and keeps a line of it. Only as long as it is told are the find's views valid.
class Listener final : public tla::Tla_scan_listener {
public:
    explicit Listener(const tla::Tla_scan_index& index) : index_(index) {}

    bool take(const tla::Tla_scan_find& find) override {
        lines_ += "  line " + std::to_string(find.line) + ": " +
                  narrow(scl::scl_shown(index_.fields()[find.key].name)) + " \"" +
                  scl::scl_shown(find.text) + "\" and " + std::to_string(find.fields.size() - 1) +
                  " other fields of record " + std::to_string(find.record) + '\n';
        return true; // go on
    }

    [[nodiscard]] const std::string& lines() const { return lines_; }

private:
    const tla::Tla_scan_index& index_;
    std::string lines_;
};

std::unique_ptr<const tla::Tla_scan_index> open_index(const std::string& name) {
    std::u16string wide_name;
    scl::scl_stow(name, wide_name);
    scl::Scl_status status;
    auto index = tla::Tla_scan_index::open(wide_name, {}, status); // by the file's own keys
    if (!status.has_failed()) return index;
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    throw std::runtime_error(name + ": " + narrow(text));
}

std::string scan_text(const tla::Tla_scan_index& index, const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) return name + ": cannot be opened\n";
    Listener listener(index);
    tla::Tla_text_scan scan(index, {.least = 2, .within = 100});
    scan.start(listener);
    std::vector<char> piece(1U << 18U);
    while (file) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        scan.feed(std::as_bytes(std::span(piece).first(static_cast<std::size_t>(file.gcount()))));
    }
    scan.finish();
    return name + ":\n" + listener.lines();
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        if (argument_count < 3) throw std::runtime_error("usage: scan DATASET TEXT...");
        const auto index = open_index(arguments[1]);
        std::vector<std::future<std::string>> results;
        for (const char* const text : std::span(arguments + 2, arguments + argument_count)) {
            results.push_back(std::async(std::launch::async, scan_text, std::cref(*index), text));
        }
        for (std::future<std::string>& result : results) {
            std::cout << result.get();
        }
        return std::cout.flush() ? 0 : 2;
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << '\n';
        return 2;
    }
}
