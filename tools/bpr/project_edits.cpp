#include "tools/bpr/project_edits.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/project/source_list.h"
#include "tools/bpr/commands.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_slots.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace pellux {
namespace {

/// The project's entries count from its directory.
bool set_directory(Project& project, std::string_view file) {
    const std::string_view directory = directory_part(file);
    PathBuffer place;
    if (failed(real_path(directory.empty() ? "." : directory, place))) {
        tell(msg_cannot_enter, String(directory).c_str());
        return false;
    }
    project.directory = place.view();
    return true;
}

bool check_library(std::string_view name) {
    const String fault = library_fault(name);
    return fault.empty() || tell_fault({}, fault);
}

String refusal(AddStatus status, const String& path) {
    switch (status) {
    case AddStatus::holds_blank:
        return format_message(msg_edit_blank, path.c_str());
    case AddStatus::too_long:
        return format_message(msg_edit_long, path.c_str(), static_cast<int>(k_source_name_max));
    case AddStatus::beside_pla:
    case AddStatus::pla_not_alone:
        return format_message(msg_edit_pla, path.c_str());
    case AddStatus::added:
    case AddStatus::already_listed:
    case AddStatus::impossible_name:
        break;
    }
    return format_message(msg_edit_impossible, path.c_str());
}

/// Resolves the links of directories, each of which most names share with the one before.
class Places {
public:
    String of(std::string_view path) {
        const std::string_view directory = directory_part(path);
        if (directory != view(directory_) || resolved_.empty()) {
            directory_ = directory;
            resolved_ = directory_part(view(resolved_place(path)));
        }
        return joined_path(view(resolved_), file_name_part(path));
    }

private:
    String directory_;
    String resolved_;
};

/// Finds entries by their names in the list, or by paths from the current directory.
class Entries {
public:
    explicit Entries(const EditedProject& edited)
        : file_(edited.file), index_(index_sources(*edited.project)) {
        const auto& sources = edited.project->sources;
        for (std::size_t i = 0; i < sources.size(); ++i)
            by_name_.try_emplace(String(sources[i]->file_name.view()), i);
    }
    /// Nothing after telling that there is none.
    std::optional<std::size_t> find(std::string_view name) {
        if (const auto found = by_name_.find(name); found != by_name_.end())
            return found->second;
        const auto found = index_.by_path.find(view(places_.of(name)));
        if (found != index_.by_path.end())
            return found->second;
        tell(msg_no_such_source, file_.c_str(), String(name).c_str());
        return std::nullopt;
    }

private:
    const String& file_;
    SourceIndex index_;
    TextMap<std::size_t> by_name_;
    Places places_;
};

/// Gives a field its new value; false after telling what is wrong.
bool assign(const FieldMatch& field, std::string_view value, const String& word) {
    const auto misfit = [&] {
        tell(msg_edit_value, word.c_str(), expectation(field.slot).c_str());
        return false;
    };
    if (NullableText* const* text = std::get_if<NullableText*>(&field.slot)) {
        if (field.name == "library" && !value.empty() && !check_library(value))
            return false;
        if (value.empty())
            (*text)->clear();
        else
            (*text)->assign(value);
        return true;
    }
    std::int64_t number = 0;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return (read.ec == std::errc() && read.ptr == end && store_number(field.slot, number)) ||
           misfit();
}

} // namespace

bool open_project(EditedProject& edited, const char* file) {
    edited.file = file;
    edited.project = read_project(file, edited.header);
    return edited.project != nullptr && set_directory(*edited.project, file);
}

bool start_project(EditedProject& edited, const char* file) {
    edited.file = file;
    edited.project = make_owned<Project>();
    edited.project->file_name.assign(file_name_part(file));
    if (!file_exists(file))
        return set_directory(*edited.project, file);
    tell(msg_edit_exists, file);
    return false;
}

bool close_project(const EditedProject& edited) {
    return tell_write_result(write_project_as(*edited.project, view(edited.file), edited.header),
                             view(edited.file));
}

bool add_files(const EditedProject& edited, const Vector<NamedFile>& files,
               std::string_view library) {
    Project& project = *edited.project;
    if (!library.empty() && !check_library(library))
        return false;
    SourceIndex index = index_sources(project);
    index.by_path.reserve(project.sources.size() + files.size());
    project.sources.reserve(project.sources.size() + files.size());
    Places places;
    for (const NamedFile& file : files) {
        FileStat stat;
        if (const SystemError error = stat_file(view(file.path), stat); failed(error))
            return tell_fault(file, format_message(msg_bpr_cannot_read, file.path.c_str(),
                                                   error_text(error).c_str()));
        if (stat.kind != FileKind::regular)
            return tell_fault(file, format_message(msg_edit_no_file, file.path.c_str()));
        const AddResult result = add_source(project, index, view(places.of(view(file.path))));
        if (result.status == AddStatus::already_listed)
            continue;
        if (result.status != AddStatus::added)
            return tell_fault(file, refusal(result.status, file.path));
        const std::string_view own = file.library.empty() ? library : view(file.library);
        if (!own.empty() && own != "work")
            project.sources[result.index]->options.library.assign(own);
    }
    return true;
}

bool find_all(const EditedProject& edited, std::span<const char* const> names,
              Vector<std::size_t>& indexes) {
    Entries entries(edited);
    for (const char* name : names) {
        const auto index = entries.find(name);
        if (!index)
            return false;
        indexes.push_back(*index);
    }
    std::ranges::sort(indexes);
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    return true;
}

bool set_top(const EditedProject& edited, std::string_view name) {
    clear_top_design(*edited.project);
    if (name.empty())
        return true;
    const auto index = Entries(edited).find(name);
    return index && set_top_design(*edited.project, *index);
}

bool change(const EditedProject& edited, const Vector<std::size_t>& sources, const String& word) {
    const std::size_t equals = word.find('=');
    if (equals == String::npos) {
        tell(msg_edit_no_value, word.c_str());
        return false;
    }
    const std::string_view key = view(word).substr(0, equals);
    const std::string_view value = view(word).substr(equals + 1);
    if (sources.empty() && key == "top_design")
        return set_top(edited, value);
    const auto change_of = [&](Source_options& options, VHDL_source* source) {
        const FieldMatch field = source != nullptr && key == "note" ? find_field(source, key)
                                                                    : find_field(&options, key);
        if (field.bit != 0)
            return assign(field, value, word);
        tell(msg_edit_value, word.c_str(), String(msg_unknown_key.text()).c_str());
        return false;
    };
    if (sources.empty()) {
        if (key == "library" && !value.empty())
            tell(msg_library_unused, edited.file.c_str());
        return change_of(edited.project->options, nullptr);
    }
    return std::ranges::all_of(sources, [&](std::size_t index) {
        VHDL_source& source = *edited.project->sources[index];
        return change_of(source.options, &source);
    });
}

} // namespace pellux
