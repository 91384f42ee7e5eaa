// Lookups of the same values in a data set file, in a table of sqlite3 with an index, and in a cdb.
// bench/lookup.sh makes the files, in the folder it starts this program in.

#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

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

class Data_set {
public:
    Data_set() {
        connector_.set_parameter("DataFileName", u"data.ds", status_);
        connector_.open(status_);
        connector_.load(status_, false);
    }
    std::size_t count(std::string_view value) {
        scl::scl_stow(value, text_);
        found_.clear();
        connector_.find_entries({0, text_.c_str()}, u"Surname", found_, status_);
        return status_.ok() ? found_.size() : 0;
    }
    [[nodiscard]] bool ok() const { return status_.ok(); }

private:
    scl::Scl_status status_;
    std::u16string text_;
    std::vector<std::unique_ptr<tla::Tla_data_set_entry_file>> found_;
    tla::Tla_data_set_connector_file connector_;
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

void load(benchmark::State& state) {
    for (auto _ : state) {
        const Data_set data;
        if (!data.ok()) state.SkipWithError("the file cannot be loaded");
    }
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

template <class Store>
void look_up(benchmark::State& state, const std::string& values_file, bool there) {
    const std::vector<std::string> values = read_lines(values_file);
    Store store;
    std::size_t next = 0;
    for (auto _ : state) {
        const bool found = store.count(values[next]) > 0;
        next = (next + 1) % values.size();
        if (found != there) state.SkipWithError("a wrong answer");
    }
    state.SetItemsProcessed(state.iterations());
}
void data_set(benchmark::State& state, const std::string& values_file, bool there) {
    look_up<Data_set>(state, values_file, there);
}
void sqlite(benchmark::State& state, const std::string& values_file, bool there) {
    look_up<Sqlite>(state, values_file, there);
}
void cdb(benchmark::State& state, const std::string& values_file, bool there) {
    look_up<Cdb>(state, values_file, there);
}
BENCHMARK_CAPTURE(data_set, found, "values", true);
BENCHMARK_CAPTURE(sqlite, found, "values", true);
BENCHMARK_CAPTURE(cdb, found, "values", true);
BENCHMARK_CAPTURE(data_set, missing, "others", false);
BENCHMARK_CAPTURE(sqlite, missing, "others", false);
BENCHMARK_CAPTURE(cdb, missing, "others", false);

} // namespace
