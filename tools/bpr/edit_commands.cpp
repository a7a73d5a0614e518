#include "core/diagnostics/reporter.h"
#include "core/project/source_list.h"
#include "tools/bpr/commands.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_edits.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

using Arguments = std::span<const char* const>;

int status_of(bool is_done) {
    return is_done ? k_status_done : k_status_unusable;
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
    EditedProject edited;
    if (!parse_new(words, true, options) || !read_source_words(options.sources, files) ||
        !start_project(edited, file) || !add_files(edited, files, options.library) ||
        !set_top(edited, options.top))
        return k_status_unusable;
    if (*options.standard != '\0') {
        const String number = standard_number(options.standard);
        if (number.empty() || !change(edited, {}, "vhdl_standard=" + number))
            return k_status_unusable;
    }
    if (*options.device != '\0')
        edited.project->options.device.assign(options.device);
    return status_of(close_project(edited));
}

int add_sources(const char* file, Arguments words) {
    NewOptions options;
    Vector<NamedFile> files;
    EditedProject edited;
    return status_of(parse_new(words, false, options) &&
                     read_source_words(options.sources, files) && open_project(edited, file) &&
                     add_files(edited, files, options.library) && close_project(edited));
}

int remove_named_sources(const char* file, Arguments names) {
    EditedProject edited;
    Vector<std::size_t> indexes;
    if (!open_project(edited, file) || !find_all(edited, names, indexes))
        return k_status_unusable;
    remove_sources(*edited.project, indexes);
    return status_of(close_project(edited));
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
    const auto carry_out = [&](const String& word) { return change(edited, sources, word); };
    return status_of(open_project(edited, file) && find_all(edited, names, sources) &&
                     std::ranges::all_of(changes, carry_out) && close_project(edited));
}

} // namespace pellux
