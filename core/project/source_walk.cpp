#include "core/project/source_walk.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "core/project/source_list.h"

#include <algorithm>
#include <bit>

namespace pellux {
namespace {

constexpr std::size_t k_directories_max = 10'000;
constexpr int k_levels_max = 32;

/// What the compiler leaves in a library's directory; one kind counts once.
struct LibraryMark {
    unsigned bit;
    std::string_view name;
    std::string_view end; ///< of a name
};
constexpr LibraryMark k_marks[] = {
    {1, "index", ""},     {2, "lock", ""},      {4, "plain", ""}, {8, "", "-obj87.cf"},
    {8, "", "-obj93.cf"}, {8, "", "-obj08.cf"}, {16, "", ".vif"},
};

unsigned mark_of(std::string_view name) {
    for (const LibraryMark& mark : k_marks) {
        if (mark.end.empty() ? name == mark.name : name.ends_with(mark.end))
            return mark.bit;
    }
    return 0;
}

struct Found {
    String name;
    bool is_link = false;
};

struct Listing {
    std::string_view directory;
    Vector<Found> files;
    Vector<Found> directories;
    unsigned marks = 0;
};

bool note_entry(void* context, std::string_view name, FileKind kind) {
    auto& listing = from_context<Listing>(context);
    listing.marks |= mark_of(name);
    const bool is_link = kind == FileKind::link;
    const bool is_vhdl = has_extension(name, "vhd") || has_extension(name, "vhdl");
    if (name.starts_with('.') || (kind == FileKind::regular && !is_vhdl))
        return true;
    PathBuffer path(listing.directory);
    FileStat stat;
    // Some file systems do not say what an entry is.
    if (kind != FileKind::regular && kind != FileKind::directory && path.join(name) &&
        !failed(stat_file(path.view(), stat)))
        kind = stat.kind;
    if (kind == FileKind::directory)
        listing.directories.push_back({String(name), is_link});
    else if (kind == FileKind::regular && is_vhdl)
        listing.files.push_back({String(name), is_link});
    return true;
}

} // namespace

SourceWalk::SourceWalk(std::span<const String> paths) {
    for (const String& path : paths) {
        FileStat stat;
        PathBuffer place;
        if (failed(stat_file(view(path), stat)) || failed(real_path(view(path), place)))
            continue;
        if (stat.kind == FileKind::directory)
            enter(String(place.view()), 0);
        else
            add_file(resolved_place(view(path)), true);
    }
    std::ranges::reverse(waiting_);
}

void SourceWalk::add_file(const String& path, bool is_link) {
    PathBuffer place(view(path));
    if (is_link && failed(real_path(view(path), place)))
        return;
    if (files_.size() == k_files_max)
        is_cut_ = true;
    else if (met_.emplace(place.view()).second)
        files_.push_back(path);
}

void SourceWalk::enter(String path, int level) {
    if (!met_.insert(path).second)
        return;
    if (level > k_levels_max || ++directories_ > k_directories_max)
        is_cut_ = true;
    else
        waiting_.push_back({std::move(path), level});
}

bool SourceWalk::step() {
    if (waiting_.empty())
        return false;
    const Directory directory = std::move(waiting_.back());
    waiting_.pop_back();
    Listing listing{view(directory.path), {}, {}};
    // One that can't be read is as if it were empty; a library shows several of its marks, since
    // one alone may stand among anybody's sources.
    if (failed(list_directory(view(directory.path), note_entry, &listing)) ||
        std::popcount(listing.marks) > 1)
        return !waiting_.empty();
    std::ranges::sort(listing.files, {}, &Found::name);
    std::ranges::sort(listing.directories, std::ranges::greater(), &Found::name);
    for (const Found& file : listing.files)
        add_file(joined_path(view(directory.path), view(file.name)), file.is_link);
    for (const Found& each : listing.directories) {
        String path = joined_path(view(directory.path), view(each.name));
        if (PathBuffer place; each.is_link && !failed(real_path(view(path), place))) {
            path = place.view();
            if (common_directory(view(path), view(directory.path)) == path)
                continue; // it leads up
        }
        enter(std::move(path), directory.level + 1);
    }
    return !waiting_.empty();
}

} // namespace pellux
