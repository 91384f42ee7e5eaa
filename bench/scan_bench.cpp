// Measures scanning: how long a data set takes to open, to make its tables, and to be looked for in
// texts.
//
//   scan_bench [-m LEAST] [-w WITHIN|all] [-k KEY]... [-r REPEAT] [-n PIECES] [-p] DATASET TEXT...
//
// prints CPU seconds for each step and how many records were found; with -p also a line for each.
// -n cuts each text at line ends into that many texts, as mails are; -r scans all of them again.
#include "scl/status/scl_status.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

class Count final : public tla::Tla_scan_listener {
public:
    Count(const tla::Tla_scan_index& index, bool prints) : index_(index), prints_(prints) {}
    bool take(const tla::Tla_scan_find& find) override {
        ++count;
        if (!prints_) return true;
        std::string name;
        scl::scl_wtos(index_.fields()[find.key].name, name, true);
        std::printf("%lu: %s \"%s\" %zu of %zu (record %ld) at %lu+%lu\n", find.line, name.c_str(),
                    std::string(find.text).c_str(), find.fields.size(), index_.fields().size(),
                    static_cast<long>(find.record), find.place, find.length);
        return true;
    }
    std::uint64_t count = 0;

private:
    const tla::Tla_scan_index& index_;
    bool prints_;
};

double seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

std::vector<std::string> pieces_of(const std::string& text, std::size_t pieces) {
    std::vector<std::string> result;
    const std::size_t size = text.size() / pieces + 1;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', std::min(text.size(), at + size));
        const std::size_t next = end == std::string::npos ? text.size() : end + 1;
        result.push_back(text.substr(at, next - at));
        at = next;
    }
    return result;
}

int fail(const scl::Scl_status& status) {
    std::u16string wide;
    std::string text;
    scl::Scl_status_lookup::to_string(status, wide);
    scl::scl_wtos(wide, text, true);
    std::fprintf(stderr, "%s\n", text.c_str());
    return 2;
}

struct Job {
    tla::Tla_scan_options options;
    std::vector<std::u16string> keys;
    std::size_t repeats = 1;
    std::size_t pieces = 1;
    bool prints = false;
};

Job read_options(int argc, char** argv) {
    Job job;
    for (int option = 0; (option = getopt(argc, argv, "m:w:k:r:n:p")) != -1;) {
        if (option == 'm') job.options.least = std::strtoull(optarg, nullptr, 10);
        if (option == 'w' && std::string_view(optarg) == "all")
            job.options.within.reset();
        else if (option == 'w')
            job.options.within = std::strtoull(optarg, nullptr, 10);
        if (option == 'k') scl::scl_stow(optarg, job.keys.emplace_back());
        if (option == 'r') job.repeats = std::strtoull(optarg, nullptr, 10);
        if (option == 'n') job.pieces = std::strtoull(optarg, nullptr, 10);
        job.prints |= option == 'p';
    }
    return job;
}

int run(int argc, char** argv) {
    const auto [options, keys, repeats, pieces, prints] = read_options(argc, argv);
    std::u16string name;
    scl::scl_stow(argv[optind], name);
    double last = seconds();
    const auto step = [&last](const char* what) {
        const double now = seconds();
        std::fprintf(stderr, "%-10s %6.3f s\n", what, now - last);
        last = now;
    };
    scl::Scl_status status;
    const auto index = tla::Tla_scan_index::open(name, keys, status);
    if (index == nullptr) return fail(status);
    step("open");
    if (pieces > 1 || repeats > 1) index->prepare();
    step("tables");
    tla::Tla_text_scan scan(*index, options);
    for (int i = optind + 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        const std::string all{std::istreambuf_iterator<char>(in), {}};
        const std::vector<std::string> texts = pieces_of(all, pieces);
        step("reading");
        for (std::size_t repeat = 0; repeat < repeats; ++repeat) {
            Count found(*index, prints && repeat == 0);
            for (const std::string& text : texts) {
                scan.start(found);
                scan.feed(std::as_bytes(std::span(text)));
                scan.finish();
            }
            step("scan");
            std::fprintf(stderr, "%lu found in %zu texts of %zu bytes\n", found.count, texts.size(),
                         all.size());
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return run(argc, argv);
}
