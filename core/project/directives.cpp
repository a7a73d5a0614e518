#include "core/project/directives.h"

#include "core/common/blanks.h"
#include "core/common/text_file.h"
#include "core/os/environment.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_mark = "#$";
constexpr std::size_t k_line_max = 1023; ///< characters of a line that are looked at

struct GroupKeyword {
    std::string_view keyword;
    std::string_view option;
};

constexpr GroupKeyword k_group_keywords[] = {
    {"DFORCE", "-ff"},  {"TFORCE", "-ft"}, {"DT-OPT", "-fo"}, {"FLOAT", "-ff"}, {"USEPOL", "-fp"},
    {"KEEPPOL", "-fk"}, {"FACTOR", "-fl"}, {"MCELL", "-fm"},  {"SOFT", "-fs"},
};

/// Takes the next line off `rest`, its LF included; false at the end.
bool next_source_line(std::string_view& rest, std::string_view& line) {
    const std::size_t feed = rest.find('\n');
    line = rest.substr(0, feed == std::string_view::npos ? feed : feed + 1);
    rest.remove_prefix(line.size());
    return !line.empty();
}

/// The directive that a line begins with, its mark included; empty when it is none.
std::string_view directive_of(std::string_view line) {
    return line.starts_with(k_mark) ? line.substr(0, line.find_first_of("\r\n"))
                                    : std::string_view{};
}

void add_group_option(std::string_view keyword, String& options) {
    const auto* const found =
        std::find_if(std::begin(k_group_keywords), std::end(k_group_keywords),
                     [&](const GroupKeyword& row) { return row.keyword == keyword; });
    if (found == std::end(k_group_keywords))
        return;
    if (!options.empty())
        options += ' ';
    options += found->option;
}

void take_directive(std::string_view directive, String& options, String& device, String& package) {
    std::string_view rest = directive.substr(0, k_line_max);
    rest.remove_prefix(k_mark.size());
    std::string_view word;
    std::string_view name;
    if (!next_word(rest, word) || !next_word(rest, name))
        return;
    if (word == "GROUP") {
        std::string_view scope;
        if (next_word(rest, scope) && scope == "ALL")
            add_group_option(name, options);
    } else if (word == "DEVICE") {
        device = name;
    } else if (word == "PACKAGE") {
        package = name;
    }
}

} // namespace

bool scanDirectives(std::string_view file_name, String& options, String& device, String& package) {
    options.clear();
    device.clear();
    package.clear();
    String source;
    SystemError error = SystemError::none;
    if (read_text_file(file_name, k_source_max, source, error) != TextFileStatus::read)
        return false;
    std::string_view rest = view(source);
    for (std::string_view line; next_source_line(rest, line);)
        if (const std::string_view directive = directive_of(line); !directive.empty())
            take_directive(directive, options, device, package);
    return true;
}

void take_switches(Source_options& options, std::string_view switches) {
    constexpr struct {
        std::string_view word;
        OptionFlag flag;
        bool is_set;
    } k_rows[] = {
        {"-ff", OptionFlag::float_nodes, true},   {"-ft", OptionFlag::t_force, true},
        {"-fo", OptionFlag::dt_opt, true},        {"-fl", OptionFlag::factor, true},
        {"-fk", OptionFlag::keep_polarity, true}, {"-fp", OptionFlag::keep_polarity, false},
    };
    for (std::string_view word; next_list_entry(switches, word, ' ');)
        for (const auto& row : k_rows)
            if (word == row.word)
                options.set(row.flag, row.is_set);
}

bool has_directives(std::string_view source) {
    for (std::string_view line; next_source_line(source, line);)
        if (!directive_of(line).empty())
            return true;
    return false;
}

String without_directives(std::string_view source) {
    String copy;
    copy.reserve(source.size());
    for (std::string_view line; next_source_line(source, line);)
        copy += line.substr(directive_of(line).size());
    return copy;
}

} // namespace pellux
