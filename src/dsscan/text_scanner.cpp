#include "text_scanner.hpp"

#include "shown.hpp"

#include <cstdio>
#include <memory>
#include <new>

namespace dsscan {

namespace {

// Large enough that a call's cost does not show, small enough for the cache.
constexpr std::size_t ROOM_BYTES = std::size_t{256} << 10;

tla::Tla_scan_options scan_options(const Options& options) {
    return {.least = options.least,
            .within = options.within,
            .is_converted = !options.encoding.empty()};
}

} // namespace

Text_scanner::Text_scanner(const Options& options, const tla::Tla_scan_index& index)
    : options_(options),
      report_(options.format, index),
      scan_(index, scan_options(options)),
      room_(ROOM_BYTES) {
    if (!options.encoding.empty()) converter_.emplace(options.encoding);
}

// A name on the command line may be a folder; then each text in it is one of its own.
bool Text_scanner::scan(const std::string& name) {
    return each_text(
        name,
        [this](const std::string& text, File_bytes::Kind kind) { return scan_text(text, kind); },
        [this](const std::string& folder, std::string_view fault) { tell(folder, fault); });
}

// A fault ends this text alone.
bool Text_scanner::scan_text(const std::string& name, File_bytes::Kind kind) {
    report_.start(name);
    bool is_faultless = false;
    try {
        std::unique_ptr<Text_bytes> bytes;
        const bool is_input = name == "-" && kind == File_bytes::Kind::any;
        if (options_.command.empty() || is_input) {
            bytes = std::make_unique<File_bytes>(name, kind);
        } else {
            bytes = std::make_unique<Command_bytes>(options_.command, name);
        }
        progress_.start(name, bytes->size());
        read_through(*bytes);
        is_faultless = true;
    } catch (const Text_fault& fault) {
        tell(name, fault.what());
        // The next text may be smaller: memory that ran out ends this text alone.
    } catch (const std::bad_alloc&) {
        tell(name, "There is not enough memory.");
    }
    if (progress_.shares_terminal()) progress_.clear();
    report_.finish(is_faultless);
    return options_.format != Format::nothing || !has_found();
}

// To the text's end, or until no more is asked for.
void Text_scanner::read_through(Text_bytes& bytes) {
    scan_.start(report_);
    if (converter_) converter_->start();
    while (const std::size_t size = bytes.read(room_)) {
        if (progress_.shares_terminal()) progress_.clear();
        if (!feed(std::span(room_).first(size))) return;
        progress_.add(size);
    }
    if (converter_) {
        converted_.clear();
        converter_->finish(converted_);
        if (!feed_converted()) return;
    }
    // Only a text that was read to its end tells whether its program ended well.
    if (scan_.finish()) bytes.finish();
}

// The converter's room is used again and again.
bool Text_scanner::feed(std::span<const std::byte> bytes) {
    if (!converter_) return scan_.feed(bytes);
    converted_.clear();
    converter_->convert(bytes, converted_);
    return feed_converted();
}

bool Text_scanner::feed_converted() {
    return scan_.feed(std::as_bytes(std::span(converted_)));
}

// What was found before comes first, where both go to one place.
void Text_scanner::tell(const std::string& name, std::string_view fault) {
    had_fault_ = true;
    progress_.clear();
    report_.flush();
    std::fprintf(stderr, "%s: %s\n", shown_name(name).c_str(), std::string(fault).c_str());
}

// Here a full disk shows at last.
void Text_scanner::finish() {
    progress_.clear();
    report_.flush();
}

} // namespace dsscan
