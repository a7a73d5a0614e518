#include "core/common/blanks.h"
#include "core/common/containers.h"
#include "core/devices/catalogue_file.h"
#include "fuzz/input_file.h"
#include "fuzz/require.h"

#include <cstdint>

namespace {

using namespace pellux;

void check(const CatalogueReader& reader, std::size_t size) {
    require(reader.level >= -1 && reader.level < static_cast<int>(k_catalogue_ranges_max));
    require(reader.position >= 0 && reader.position <= static_cast<std::int64_t>(size));
    for (int i = 0; i <= reader.level; ++i) {
        const CatalogueRange& range = reader.ranges[static_cast<std::size_t>(i)];
        require(range.start >= 0 && range.start <= range.end &&
                range.end <= static_cast<std::int64_t>(size));
        require(i == 0 || range.start >= reader.ranges[static_cast<std::size_t>(i) - 1].start);
    }
}

/// Reads the innermost range to a line that holds "begin" and a name; false when its end, or a line
/// that is too long, comes first.
bool read_to_block(CatalogueReader& reader, std::size_t size, String& name) {
    CatalogueLine line;
    std::size_t lines = 0;
    while (next_line(reader, line) == CatalogueStatus::done) {
        require(line.length <= k_catalogue_line_max && line.text[line.length] == '\0');
        require(++lines <= size);
        check(reader, size);
        std::string_view rest = line.view(), word;
        if (next_word(rest, word) && word == "begin" && next_word(rest, word)) {
            name = word;
            return true;
        }
    }
    return false;
}

void walk_section(CatalogueReader& reader, std::string_view name, std::size_t size) {
    if (find_section(reader, name) != CatalogueStatus::done)
        return require(reader.level == -1 && is_at_end(reader));
    check(reader, size);
    String block;
    CatalogueLine line;
    int depth = 1;
    for (; read_to_block(reader, size, block) &&
           find_block(reader, view(block), line) == CatalogueStatus::done;
         ++depth)
        check(reader, size);
    for (; close_range(reader) == CatalogueStatus::done; --depth)
        static_cast<void>(read_to_block(reader, size, block));
    require(depth == 0);
}

} // namespace

/// Reads the input as "devices.dat": every device family of its index, and two names that a reader
/// asks for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CatalogueReader reader;
    const char* path = write_input_file({reinterpret_cast<const char*>(data), size});
    require(open_catalogue(reader, path) == CatalogueStatus::done);
    for (const char* name : {"tools_dos", "c"})
        walk_section(reader, name, size);
    CatalogueLine name;
    for (std::size_t names = 0; next_device_name(reader, name) == CatalogueStatus::done; ++names) {
        require(names < size);
        if (names < 100)
            walk_section(reader, name.view(), size);
    }
    return 0;
}
