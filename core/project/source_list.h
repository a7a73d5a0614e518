#pragma once

#include "core/os/system_error.h"
#include "core/project/records.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace pellux {

// What a user does with the file list of a project, without a window. The disk is asked by
// `resolved_place` and `list_vhdl_files` alone.

/// Indexes of entries, ascending and none twice; what lies past the list's end counts for nothing.
using Selection = std::span<const std::size_t>;

/// Bytes of an entry; the buffers that entries go through hold no more.
inline constexpr std::size_t k_source_name_max = 119;

enum class AddStatus {
    added,
    already_listed,
    holds_blank,     ///< or a tab, a line end, another control character
    too_long,        ///< more than `k_source_name_max` bytes as an entry
    impossible_name, ///< no file's, or the project has no directory
    beside_pla,      ///< the project's file is a PLA file, which stands alone
    pla_not_alone,   ///< a PLA file for a project that has files
};

struct AddResult {
    AddStatus status = AddStatus::added;
    std::size_t index = 0; ///< of the entry, when the list holds it now
};

/// Finds entries by their files. Good while nothing but `add_source` changes the list.
struct SourceIndex {
    TextMap<std::size_t> by_path;
};
[[nodiscard]] SourceIndex index_sources(const Project& project);

/// Adds the file at the end, with the options of a new source. `path` is absolute or counts from
/// the project's directory, which is absolute; neither goes through links (`resolved_place`). The
/// entry is the way from that directory, "./" before a '-', so that it looks like no switch. One
/// file has one entry, however that is written.
[[nodiscard]] AddResult add_source(Project& project, SourceIndex& index, std::string_view path);
/// The same for one file, the list looked through once.
[[nodiscard]] AddResult add_source(Project& project, std::string_view path);
/// What adding it would answer, were it not listed yet.
[[nodiscard]] AddStatus check_source(const Project& project, std::string_view path);

/// The index of a file's entry; nothing when it is not listed. `path` as of `add_source`.
[[nodiscard]] std::optional<std::size_t> find_source(const Project& project, std::string_view path);

struct RenameResult {
    AddStatus status = AddStatus::added;
    Owned<VHDL_source> old; ///< what stood there before; the top design is another now if it was
};
/// Lists another file in the place of an entry, with its options. `path` as of `add_source`; what
/// could not be added there is refused.
[[nodiscard]] RenameResult rename_source(Project& project, std::size_t index,
                                         std::string_view path);

/// The kind of a file, by its extension.
[[nodiscard]] SourceKind kind_of_name(std::string_view name);
[[nodiscard]] bool may_add_vhdl(const Project& project);
[[nodiscard]] bool may_add_pla(const Project& project);

/// Is the text after the last '.' "vhd", whatever its case?
[[nodiscard]] bool is_vhdl_name(std::string_view name);
/// The names of a directory's VHDL files, links to files included, ascending by their bytes.
[[nodiscard]] SystemError list_vhdl_files(std::string_view directory, Vector<String>& names);
/// `path` with the links in front of its last name resolved; as it stands where that is impossible.
[[nodiscard]] String resolved_place(std::string_view path);

/// The entries, and the top design if it is among them, are gone from the project afterwards, and
/// answered.
Vector<Owned<VHDL_source>> remove_sources(Project& project, Selection selection);
/// Each selected entry moves one place, except at the end and against a selected one that stays.
/// Answers where they are now.
[[nodiscard]] Vector<std::size_t> move_sources_up(Project& project, Selection selection);
[[nodiscard]] Vector<std::size_t> move_sources_down(Project& project, Selection selection);

/// False when there is no such entry.
[[nodiscard]] bool set_top_design(Project& project, std::size_t index);
void clear_top_design(Project& project);

} // namespace pellux
