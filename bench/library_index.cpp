// A library of 20,000 units put into a new index, against the same rows imported by SQLite's shell.

#include "bench/ratio.h"
#include "core/diagnostics/message.h"
#include "core/library/unit_records.h"
#include "core/os/process.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr int k_sources = 2000;
constexpr int k_units_of_source = 10;

struct Source {
    String file;
    Vector<LibraryUnit> units;
};

Vector<Source> large_library() {
    Vector<Source> sources;
    for (int i = 0; i < k_sources; ++i) {
        Source& source = sources.emplace_back();
        source.file = format_text("block%02d_part%04d.vhd", i % 40, i);
        for (int j = 0; j < k_units_of_source; j += 2) {
            const String name = format_text("part%04d_stage%d", i, j);
            source.units.push_back({UnitKind::entity, name, {}});
            source.units.push_back({UnitKind::architecture, name, "rtl"});
        }
    }
    return sources;
}

bool by_index(const Vector<Source>& sources) {
    LibraryIndex index;
    if (replace_index(index, ".") != IndexStatus::opened || !begin_changes(index))
        return false;
    for (const Source& source : sources) {
        if (!insert_source(index, view(source.file), source.units))
            return false;
    }
    return commit_changes(index);
}

/// The rows as the shell reads them, in the order in which the index gets them, and its orders.
void prepare_shell(const Vector<Source>& sources) {
    std::ofstream rows("rows.tsv", std::ios::binary);
    for (const Source& source : sources) {
        for (const LibraryUnit& unit : source.units) {
            String key;
            if (!compose_unit_key(unit, key))
                std::abort();
            const String tie = "0064" + source.file + "@" + key;
            const String record = key + "@" + source.file;
            rows << tie << '\t' << tie << '\n' << record << '\t' << record << '\n';
        }
    }
    std::ofstream("orders") << "CREATE TABLE records(key TEXT NOT NULL PRIMARY KEY, "
                               "record TEXT NOT NULL) STRICT, WITHOUT ROWID;\n"
                               ".mode tabs\n"
                               ".import rows.tsv records\n";
}

bool by_shell() {
    fs::remove("shell");
    Process process;
    const char* const words[] = {"sqlite3", "-init", "/dev/null", "shell", ".read orders", nullptr};
    return !failed(start_process(process, {.program = words[0], .arguments = words})) &&
           wait_for_process(process).code == 0;
}

std::int64_t count_records() {
    LibraryIndex index;
    std::int64_t count = 0;
    if (open_index(index, ".", IndexMode::read) == IndexStatus::opened) {
        for (std::int64_t n = seek_record(index, ""); n > 0; n = next_record(index))
            ++count;
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    const fs::path scratch = fs::temp_directory_path() / "pellux-bench-library-index";
    fs::remove_all(scratch);
    fs::create_directory(scratch);
    fs::current_path(scratch);
    const Vector<Source> sources = large_library();
    prepare_shell(sources);
    bool succeeded = true;
    compare(
        {.name = "20,000 units put into a new index",
         .yardstick = "SQLite's shell",
         .units = double{k_sources} * k_units_of_source,
         .reach = 2,
         .round_ms = 500},
        moment, [&] { succeeded = by_shell() && succeeded; },
        [&] { succeeded = by_index(sources) && succeeded; });
    const auto index_bytes = static_cast<double>(fs::file_size("index"));
    const auto shell_bytes = static_cast<double>(fs::file_size("shell"));
    std::printf("  files: ours %.2f MB, the shell's %.2f MB, %lld records\n", index_bytes / 1e6,
                shell_bytes / 1e6, static_cast<long long>(count_records()));
    fs::current_path("/");
    fs::remove_all(scratch);
    if (!succeeded)
        std::printf("  a run failed\n");
    return succeeded ? 0 : 1;
}
