// Lookups of the same values in a data set file, in a table of sqlite3 with an index, and in a cdb.
// bench/lookup.sh makes the files, in the folder it starts this program in.

#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <benchmark/benchmark.h>

#include <cdb.h>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <sqlite3.h>
#include <unistd.h>

namespace {

std::vector<std::string> read_lines(const std::string& name) {
    std::ifstream in(name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    if (lines.empty()) {
        std::cerr << "no values in " << name << '\n';
        std::exit(EXIT_FAILURE);
    }
    return lines;
}

enum class Where : std::uint8_t { in_memory, from_file };

// Looked up by text, as most callers do.
class Data_set {
public:
    explicit Data_set(Where where) {
        if (where == Where::in_memory) connector.hold_in_memory();
        connector.set_parameter("DataFileName", u"data.ds", status);
        connector.open(status);
        connector.load(status, false);
    }
    std::size_t count(const std::string& value) {
        scl::scl_stow(value, text_);
        found_.clear();
        connector.find_entries({0, text_.c_str()}, u"Surname", found_, status);
        return status.ok() ? found_.size() : 0;
    }

    scl::Scl_status status;
    tla::Tla_data_set_connector_file connector;

private:
    std::u16string text_;
    std::vector<std::unique_ptr<tla::Tla_data_set_entry_file>> found_;
};

// Looked up by token values, as by a program that has found the words of a text already.
class Data_set_by_tokens {
public:
    explicit Data_set_by_tokens(Where where) : data_(where) {}
    [[nodiscard]] static std::vector<std::uint64_t> key_of(const std::string& value) {
        std::u16string text;
        scl::scl_stow(value, text);
        std::vector<std::uint64_t> tokens;
        (void)txtdfc::txtdfc_token_values(text, tokens);
        return tokens;
    }
    std::size_t count(std::span<const std::uint64_t> tokens) {
        found_.clear();
        data_.connector.find_records(tokens, 0, found_, data_.status);
        return data_.status.ok() ? found_.size() : 0;
    }

private:
    Data_set data_;
    std::vector<std::int64_t> found_;
};

class Sqlite {
public:
    Sqlite() {
        sqlite3_open_v2("data.sqlite", &base_, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_prepare_v2(base_, "SELECT first, card FROM record WHERE surname = ?", -1, &query_,
                           nullptr);
    }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;
    ~Sqlite() {
        sqlite3_finalize(query_);
        sqlite3_close(base_);
    }
    std::size_t count(std::string_view value) {
        sqlite3_bind_text(query_, 1, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
        std::size_t rows = 0;
        while (sqlite3_step(query_) == SQLITE_ROW) {
            benchmark::DoNotOptimize(sqlite3_column_text(query_, 1));
            ++rows;
        }
        sqlite3_reset(query_);
        return rows;
    }

private:
    sqlite3* base_ = nullptr;
    sqlite3_stmt* query_ = nullptr;
};

class Cdb {
public:
    Cdb() : descriptor_(open("data.cdb", O_RDONLY | O_CLOEXEC)) { cdb_init(&cdb_, descriptor_); }
    Cdb(const Cdb&) = delete;
    Cdb& operator=(const Cdb&) = delete;
    ~Cdb() {
        cdb_free(&cdb_);
        close(descriptor_);
    }
    std::size_t count(std::string_view value) {
        struct cdb_find search {};
        cdb_findinit(&search, &cdb_, value.data(), static_cast<unsigned>(value.size()));
        std::size_t records = 0;
        while (cdb_findnext(&search) > 0) {
            benchmark::DoNotOptimize(cdb_getdata(&cdb_));
            ++records;
        }
        return records;
    }

private:
    struct cdb cdb_ {};
    int descriptor_;
};

void load(benchmark::State& state, Where where) {
    for (auto _ : state) {
        const Data_set data(where);
        if (!data.status.ok()) state.SkipWithError("the file cannot be loaded");
    }
}

// All keys once before the clock runs: the first lookups in a block, and in a file, do more.
template <class Keys>
void look_up(benchmark::State& state, auto& store, const Keys& keys, bool there) {
    std::size_t found = 0;
    for (const auto& key : keys) {
        found += store.count(key) > 0 ? 1U : 0U;
    }
    if (found != (there ? keys.size() : 0)) state.SkipWithError("a wrong answer");
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.count(keys[next]));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}
std::vector<std::string> values(bool there) {
    return read_lines(there ? "values" : "others");
}
void by_text(benchmark::State& state, bool there, Where where) {
    Data_set data(where);
    look_up(state, data, values(there), there);
}
void by_tokens(benchmark::State& state, bool there, Where where) {
    Data_set_by_tokens data(where);
    std::vector<std::vector<std::uint64_t>> keys;
    for (const std::string& value : values(there)) {
        keys.push_back(Data_set_by_tokens::key_of(value));
    }
    look_up(state, data, keys, there);
}
void sqlite(benchmark::State& state, bool there) {
    Sqlite base;
    look_up(state, base, values(there), there);
}
void cdb(benchmark::State& state, bool there) {
    Cdb base;
    look_up(state, base, values(there), there);
}

BENCHMARK_CAPTURE(load, in_memory, Where::in_memory)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, from_file, Where::from_file)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(by_text, found_in_memory, true, Where::in_memory);
BENCHMARK_CAPTURE(by_text, missing_in_memory, false, Where::in_memory);
BENCHMARK_CAPTURE(by_tokens, found_in_memory, true, Where::in_memory);
BENCHMARK_CAPTURE(by_tokens, missing_in_memory, false, Where::in_memory);
BENCHMARK_CAPTURE(by_text, found_from_file, true, Where::from_file);
BENCHMARK_CAPTURE(by_text, missing_from_file, false, Where::from_file);
BENCHMARK_CAPTURE(by_tokens, found_from_file, true, Where::from_file);
BENCHMARK_CAPTURE(by_tokens, missing_from_file, false, Where::from_file);
BENCHMARK_CAPTURE(sqlite, found, true);
BENCHMARK_CAPTURE(sqlite, missing, false);
BENCHMARK_CAPTURE(cdb, found, true);
BENCHMARK_CAPTURE(cdb, missing, false);

} // namespace
