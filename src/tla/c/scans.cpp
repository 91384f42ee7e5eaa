#include "tla/c/open_data_set.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <span>

using tla::c::Caller_fault;
using tla::c::Open_data_set;
using tla::c::Report;
using tla::c::view_of;

namespace {

// Hands finds on to a function in C.
class Listener final : public tla::Tla_scan_listener {
public:
    Listener(dsmake_listener* listener, void* context) : listener_(listener), context_(context) {}

    bool take(const tla::Tla_scan_find& find) override {
        if (listener_ == nullptr) return true;
        fields_.assign(find.fields.begin(), find.fields.end());
        const dsmake_find_in_text told{
            .line = find.line,
            .place = find.place,
            .length = find.length,
            .record = find.record,
            .quote = {.bytes = find.text.data(), .size = find.text.size()},
            .quote_is_whole = find.text_is_whole ? 1 : 0,
            .key = static_cast<std::uint32_t>(find.key),
            .fields = fields_.data(),
            .field_count = static_cast<std::uint32_t>(fields_.size()),
        };
        return listener_(context_, &told) != 0;
    }

private:
    dsmake_listener* listener_;
    void* context_;
    std::vector<std::uint32_t> fields_; // a file has 65,535 at most
};

} // namespace

struct dsmake_scan {
    explicit dsmake_scan(std::string_view path) : report(path) {}

    Report report;
    std::shared_ptr<const Open_data_set> open; // as long as its index is used
    std::optional<tla::Tla_text_scan> scan;    // none when it could not be opened
    std::optional<Listener> listener;          // while there is a text
};

namespace {

// More fields than records have would be found in no text, which is hardly what is meant.
void open(dsmake_scan& scan, std::uint64_t least, std::uint64_t within, scl::Scl_status& status) {
    const std::size_t fields = scan.open->fields().size();
    if (least > fields) {
        throw Caller_fault(DSMAKE_BAD_ARGUMENT, std::to_string(least) + " fields are asked for, " +
                                                    "and records have " + std::to_string(fields));
    }
    const tla::Tla_scan_index* const index = scan.open->scan_index(status);
    if (index == nullptr || status.has_failed()) return;
    tla::Tla_scan_options options;
    if (least != DSMAKE_USUAL_LEAST) options.least = least;
    options.within = within != DSMAKE_ANY_DISTANCE ? std::optional(within) : std::nullopt;
    scan.scan.emplace(*index, options);
}

// Does a step of a text that was begun: 1 to go on, 0 at its end, -1 after a failure, which is the
// end of the text.
template <typename Step>
int done(dsmake_scan* scan, const Step& step) noexcept {
    if (scan == nullptr || !scan->scan) return -1;
    bool goes_on = false;
    const bool is_good = scan->report.guard([&](scl::Scl_status&) {
        if (!scan->listener) throw Caller_fault(DSMAKE_BAD_ARGUMENT, "no text was begun");
        goes_on = step(*scan->scan);
    });
    // The text is over: feeding goes on only after the next start.
    if (!is_good) scan->listener.reset();
    return is_good ? static_cast<int>(goes_on) : -1;
}

} // namespace

// As dsmake_open(): a failure gives a scan that tells its message.
dsmake_scan* dsmake_scan_open(const dsmake_data_set* set, uint64_t least, uint64_t within) {
    if (set == nullptr) return nullptr;
    try {
        auto scan = std::make_unique<dsmake_scan>(set->report.path());
        // Shared: the data set stays open as long as a scan uses it, whoever closes its handle
        // first.
        scan->open = set->open;
        if (scan->open == nullptr) {
            scan->report.copy(set->report);
        } else {
            (void)scan->report.guard(
                [&](scl::Scl_status& status) { open(*scan, least, within, status); });
        }
        return scan.release();
    } catch (...) {
        return nullptr;
    }
}

void dsmake_scan_close(dsmake_scan* scan) {
    delete scan; // NOLINT(cppcoreguidelines-owning-memory): the caller in C owned it
}

// A text that was not finished is forgotten.
int dsmake_scan_start(dsmake_scan* scan, dsmake_listener* listener, void* context) {
    if (scan == nullptr || !scan->scan) return -1;
    scan->listener.emplace(listener, context);
    return done(scan, [scan](tla::Tla_text_scan& text) {
        text.start(*scan->listener);
        return true;
    });
}

int dsmake_scan_feed(dsmake_scan* scan, const void* bytes, size_t size) {
    const std::string_view piece = view_of(static_cast<const char*>(bytes), size);
    return done(scan, [piece](tla::Tla_text_scan& text) {
        return text.feed(std::as_bytes(std::span(piece)));
    });
}

// Without a listener no more can be fed until the next text.
int dsmake_scan_finish(dsmake_scan* scan) {
    const int result = done(scan, [](tla::Tla_text_scan& text) { return text.finish(); });
    if (scan != nullptr) scan->listener.reset();
    return result;
}

uint32_t dsmake_scan_code(const dsmake_scan* scan) {
    return scan != nullptr ? scan->report.code() : DSMAKE_NO_MEMORY;
}

const char* dsmake_scan_message(const dsmake_scan* scan) {
    return scan != nullptr ? scan->report.message() : Report::NO_MEMORY;
}
