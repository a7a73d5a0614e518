#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/project/messages.h"
#include "core/project/source_list.h"
#include "tools/bpr/commands.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_slots.h"
#include "tools/bpr/source_lists.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace pellux {
namespace {

using Arguments = std::span<const char* const>;

/// A project that is changed where it lies.
struct EditedProject {
    String file;
    ProjectHeader header;
    Owned<Project> project;
};

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

bool open_project(EditedProject& edited, const char* file) {
    edited.file = file;
    edited.project = read_project(file, edited.header);
    return edited.project != nullptr && set_directory(*edited.project, file);
}

int close_project(const EditedProject& edited) {
    return tell_write_result(write_project_as(*edited.project, view(edited.file), edited.header),
                             view(edited.file))
               ? k_status_done
               : k_status_unusable;
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
        const String directory(directory_part(path));
        if (directory != directory_ || resolved_.empty()) {
            directory_ = directory;
            resolved_ = directory_part(view(resolved_place(path)));
        }
        return joined_path(view(resolved_), file_name_part(path));
    }

private:
    String directory_;
    String resolved_;
};

/// Adds them all, or tells what is wrong with the first that cannot be. One that is listed already
/// stays as it is. `library` is for those whose list says none.
bool add_files(Project& project, const Vector<NamedFile>& files, std::string_view library) {
    if (!library.empty() && !check_library(library))
        return false;
    SourceIndex index = index_sources(project);
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

bool find_all(const EditedProject& edited, Arguments names, Vector<std::size_t>& indexes) {
    Entries entries(edited);
    for (const char* name : names) {
        const auto index = entries.find(name);
        if (!index)
            return false;
        indexes.push_back(*index);
    }
    std::ranges::sort(indexes);
    indexes.erase(std::ranges::unique(indexes).begin(), indexes.end());
    return true;
}

bool set_top(const EditedProject& edited, std::string_view name) {
    clear_top_design(*edited.project);
    if (name.empty())
        return true;
    const auto index = Entries(edited).find(name);
    return index && set_top_design(*edited.project, *index);
}

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

/// Carries out "KEY=VALUE" on the project, or on the sources.
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

/// Takes "NAME" that follows the option at `at`; null after telling that there is none.
const char* operand(Arguments words, std::size_t& at) {
    if (at + 1 < words.size())
        return words[++at];
    tell(msg_edit_operand, words[at]);
    return nullptr;
}

/// "2008" or "8" and so on; empty after telling that it is none.
String standard_number(std::string_view text) {
    constexpr std::pair<std::string_view, std::string_view> k_standards[] = {
        {"1987", "87"}, {"1993", "93"}, {"2002", "2"}, {"2008", "8"}};
    String all;
    for (const auto& [year, number] : k_standards) {
        if (text == year || text == number || text == year.substr(2))
            return String(number);
        all += (all.empty() ? "" : ", ") + String(year);
    }
    tell(msg_edit_standard, String(text).c_str(), all.c_str());
    return {};
}

struct NewOptions {
    Vector<const char*> sources;
    const char* top = "";
    const char* library = "";
    const char* standard = "";
    const char* device = "";
};

bool parse_new(Arguments words, bool may_have_all, NewOptions& options) {
    const struct {
        std::string_view word;
        const char*& value;
        bool is_for_all;
    } rows[] = {{"--library", options.library, true},
                {"--top", options.top, false},
                {"--standard", options.standard, false},
                {"--device", options.device, false}};
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        const auto row = std::ranges::find_if(rows, [&](const auto& each) {
            return each.word == word && (may_have_all || each.is_for_all);
        });
        if (row != std::end(rows)) {
            row->value = operand(words, i);
            if (row->value == nullptr)
                return false;
        } else if (word.starts_with('-')) {
            tell(msg_edit_option, words[i]);
            return false;
        } else {
            options.sources.push_back(words[i]);
        }
    }
    return true;
}

} // namespace

int new_project_file(const char* file, Arguments words) {
    NewOptions options;
    Vector<NamedFile> files;
    if (!parse_new(words, true, options) || !read_source_words(options.sources, files))
        return k_status_unusable;
    if (file_exists(file)) {
        tell(msg_edit_exists, file);
        return k_status_unusable;
    }
    EditedProject edited{file, {}, make_owned<Project>()};
    Project& project = *edited.project;
    if (!set_directory(project, file) || !add_files(project, files, options.library) ||
        !set_top(edited, options.top))
        return k_status_unusable;
    if (*options.standard != '\0') {
        const String number = standard_number(options.standard);
        if (number.empty() || !change(edited, {}, "vhdl_standard=" + number))
            return k_status_unusable;
    }
    if (*options.device != '\0')
        project.options.device.assign(options.device);
    return close_project(edited);
}

int add_sources(const char* file, Arguments words) {
    NewOptions options;
    Vector<NamedFile> files;
    EditedProject edited;
    if (!parse_new(words, false, options) || !read_source_words(options.sources, files) ||
        !open_project(edited, file) || !add_files(*edited.project, files, options.library))
        return k_status_unusable;
    return close_project(edited);
}

int remove_named_sources(const char* file, Arguments names) {
    EditedProject edited;
    Vector<std::size_t> indexes;
    if (!open_project(edited, file) || !find_all(edited, names, indexes))
        return k_status_unusable;
    remove_sources(*edited.project, indexes);
    return close_project(edited);
}

int set_options(const char* file, Arguments words) {
    EditedProject edited;
    Vector<const char*> names;
    Vector<std::size_t> sources;
    Vector<String> changes;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (std::string_view(words[i]) != "--source") {
            changes.emplace_back(words[i]);
            continue;
        }
        names.push_back(operand(words, i));
        if (names.back() == nullptr)
            return k_status_unusable;
    }
    if (changes.empty()) {
        tell(msg_edit_operand, words.back());
        return k_status_unusable;
    }
    if (!open_project(edited, file) || !find_all(edited, names, sources) ||
        !std::ranges::all_of(changes,
                             [&](const String& word) { return change(edited, sources, word); }))
        return k_status_unusable;
    return close_project(edited);
}

} // namespace pellux
