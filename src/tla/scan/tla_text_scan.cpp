#include "tla/scan/tla_text_scan.hpp"

#include "tla/scan/index_state.hpp"
#include "tla/scan/scan_engine.hpp"

namespace tla {

// The engine stands apart, so that the installed header needs none of its parts.
Tla_text_scan::Tla_text_scan(const Tla_scan_index& index, const Tla_scan_options& options)
    : engine_(std::make_unique<Engine>(Index_access::state_of(index), options)) {}

Tla_text_scan::~Tla_text_scan() = default;

void Tla_text_scan::start(Tla_scan_listener& listener) {
    engine_->start(listener);
}

bool Tla_text_scan::feed(std::span<const std::byte> bytes) {
    return engine_->feed(bytes);
}

bool Tla_text_scan::finish() {
    return engine_->finish();
}

} // namespace tla
