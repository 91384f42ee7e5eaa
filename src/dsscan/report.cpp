#include "report.hpp"

#include "scl/text/scl_string.hpp"
#include "shown.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace dsscan {

namespace {

// A full disk or a closed pipe ends the program: finds that nobody gets are of no use.
[[noreturn]] void fail() {
    throw Output_fault("standard output: " + std::string(std::strerror(errno)));
}

void print(const std::string& line) {
    if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size()) fail();
}

} // namespace

// The names are shown with each find, so they are made ready once.
Report::Report(Format format, const tla::Tla_scan_index& index) : format_(format) {
    for (const tla::Field_descriptor& field : index.fields()) {
        std::string name;
        scl::scl_wtos(field.name, name, true);
        fields_.push_back(format == Format::json ? json_string(name) : shown_in_line(name));
    }
}

void Report::start(std::string_view name) {
    name_ = format_ == Format::json ? json_string(name) : shown_name(name);
    count_ = 0;
}

// Counting needs every find; names and silence only the first.
bool Report::take(const tla::Tla_scan_find& find) {
    ++count_;
    has_found_ = true;
    if (format_ == Format::lines) print(line_of(find));
    if (format_ == Format::json) print(json_of(find));
    if (format_ == Format::names) print(name_ + '\n');
    return format_ != Format::names && format_ != Format::nothing; // who need no second one
}

void Report::finish(bool is_faultless) {
    if (format_ == Format::counts && is_faultless)
        print(name_ + ':' + std::to_string(count_) + '\n');
}

void Report::flush() {
    if (std::fflush(stdout) != 0) fail();
}

std::string Report::line_of(const tla::Tla_scan_find& find) const {
    std::string line = name_ + ':' + std::to_string(find.line) + ": " + fields_[find.key] + " \"" +
                       shown_in_line(find.text, find.text_is_whole) + "\", " +
                       std::to_string(find.fields.size()) + " of " +
                       std::to_string(fields_.size()) + " fields:";
    for (const std::size_t field : find.fields) {
        line += ' ' + fields_[field];
    }
    return line + " (record " + std::to_string(find.record) + ")\n";
}

// By hand, as it is one line of a fixed form; json_string() sees to what is in it.
std::string Report::json_of(const tla::Tla_scan_find& find) const {
    std::string fields;
    for (const std::size_t field : find.fields) {
        fields += (fields.empty() ? "" : ",") + fields_[field];
    }
    return "{\"text\":" + name_ + ",\"line\":" + std::to_string(find.line) +
           ",\"place\":" + std::to_string(find.place) +
           ",\"length\":" + std::to_string(find.length) + ",\"key\":" + fields_[find.key] +
           ",\"quote\":" + json_string(find.text) + ",\"fields\":[" + fields +
           "],\"of\":" + std::to_string(fields_.size()) +
           ",\"record\":" + std::to_string(find.record) + "}\n";
}

} // namespace dsscan
