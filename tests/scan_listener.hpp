#pragma once

#include "scan_model.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <vector>

namespace test {

// Keeps what a scan finds, in the form in which the model tells it.
class Finds_listener : public tla::Tla_scan_listener {
public:
    bool take(const tla::Tla_scan_find& find) override {
        finds.push_back({find.line,
                         find.place,
                         find.length,
                         find.key,
                         static_cast<std::uint64_t>(find.record),
                         {find.fields.begin(), find.fields.end()}});
        return true;
    }
    std::vector<Scan_model::Find> finds;
};

} // namespace test
