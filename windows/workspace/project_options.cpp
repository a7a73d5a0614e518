#include "windows/workspace/project_options.h"

#include "core/common/callback.h"
#include "core/devices/messages.h"
#include "core/devices/simulator_lines.h"
#include "core/os/ascii.h"
#include "core/project/compile_arguments.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/editor/highlighting.h"
#include "windows/workspace/bench_units.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/option_edits.h"
#include "windows/workspace/option_fields.h"

#include <algorithm>
#include <array>
#include <limits>

namespace pellux {
namespace {

constexpr int k_dialog = 131;
constexpr int k_int_max = std::numeric_limits<int>::max();
constexpr int k_short_max = std::numeric_limits<std::int16_t>::max();
constexpr int k_tab_width_max = 99;

enum Row : int {
    compiler_page = 1,
    standard,
    relaxed_rules,
    vendor_packages,
    error_limit,
    warning_limit,
    quiet,
    rebuild,
    y_p,
    y_b,
    y_t,
    y_s0,
    f_h,
    f_n,
    goal,
    optimise_level,
    xor2,
    d_force,
    t_force,
    dt_opt,
    polarity,
    float_nodes,
    factor,
    factor_limit,
    limit_nodes,
    node_limit,
    unused_outputs,
    arguments,
    editor_page,
    highlight,
    keyword_colour,
    keyword_bold,
    keyword_italic,
    keyword_upper,
    comment_colour,
    comment_bold,
    comment_italic,
    comment_upper,
    text_colour,
    sample,
    tab_width,
    undo_limit,
    line_numbers,
    auto_save,
    prefix_keys,
    simulation_page,
    simulator,
    waveform,
    bench_unit,
    heading, ///< of a group
};

constexpr DialogRowResource group(const char* title, bool is_beside = false) {
    return {heading, DialogRowKind::group, title, 0, is_beside};
}
constexpr DialogRowResource mark(Row row, const char* label, const char* hint) {
    return {row, DialogRowKind::check, label, 0, false, hint};
}
/// On the line of the field before.
constexpr DialogRowResource mark_beside(Row row, const char* label) {
    return {row, DialogRowKind::check, label, 0, true};
}
constexpr DialogRowResource choice(Row row, const char* label, const char* hint) {
    return {row, DialogRowKind::choice, label, 0, false, hint};
}
constexpr DialogRowResource number(Row row, const char* label, const char* hint, int least,
                                   int most) {
    return {row, DialogRowKind::number, label, 0, false, hint, least, most};
}
constexpr DialogRowResource color(Row row, const char* label) {
    return {row, DialogRowKind::color, label};
}

constexpr std::array k_rows{
    DialogRowResource{compiler_page, DialogRowKind::page, "Compiler"},
    group("Language"),
    choice(standard, "&VHDL standard:", "-v"),
    mark(relaxed_rules, "&Relaxed rules", "-yu"),
    mark(vendor_packages, "Vendor &packages, std_logic_arith and so on", "-yv2"),
    group("Messages"),
    number(error_limit, "Most &errors:", "-e", 1, k_int_max),
    number(warning_limit, "Most &warnings:", "-w", 1, k_int_max),
    mark(quiet, "&Quiet, without a banner", "-q"),
    mark(rebuild, "Next compile of all in f&ull", "once"),
    group("Switches that are passed on as they are"),
    DialogRowResource{y_p, DialogRowKind::check, "-yp"},
    mark_beside(y_b, "-yb"),
    mark_beside(y_t, "-yt"),
    mark_beside(y_s0, "-ys0"),
    mark_beside(f_h, "-fh"),
    mark_beside(f_n, "-fN"),
    group("Fitting", true),
    choice(goal, "&Goal:", "-ygs, -yga"),
    number(optimise_level, "Optimise &level:", "-o", 0, k_short_max),
    mark(xor2, "E&xclusive or of two inputs", "-xor2"),
    mark(d_force, "Force &D flip-flops", "-fD"),
    mark(t_force, "Force &T flip-flops", "-fT"),
    mark(dt_opt, "Choose D &or T, whatever is smaller", "-fO"),
    choice(polarity, "Polarit&y:", "-fP, -fK"),
    mark(float_nodes, "&Float nodes", "-fF"),
    mark(factor, "Fa&ctor logic", "-fL"),
    number(factor_limit, "Factor limit:", "-fL", 1, k_short_max),
    mark(limit_nodes, "Limit &nodes", "-ym"),
    number(node_limit, "Node limit:", "-ym", 0, k_short_max),
    choice(unused_outputs, "Unused output&s:", "-fUL, -fUH"),
    group(""),
    DialogRowResource{arguments, DialogRowKind::text, ""},

    DialogRowResource{editor_page, DialogRowKind::page, "Editor"},
    group("Words of VHDL"),
    mark(highlight, "&Highlight keywords and comments", ""),
    color(keyword_colour, "&Keywords:"),
    mark_beside(keyword_bold, "&Bold"),
    mark_beside(keyword_italic, "&Italic"),
    mark_beside(keyword_upper, "&Upper case"),
    color(comment_colour, "&Comments:"),
    mark_beside(comment_bold, "Bol&d"),
    mark_beside(comment_italic, "I&talic"),
    mark_beside(comment_upper, "U&pper case"),
    color(text_colour, "Othe&r text:"),
    DialogRowResource{sample, DialogRowKind::sample, "Sample:"},
    group("Text"),
    number(tab_width, "Tab &width:", "columns", 1, k_tab_width_max),
    number(undo_limit, "Steps that can be undo&ne:", "steps", 1, k_short_max),
    mark(line_numbers, "&Line numbers", ""),
    mark(auto_save, "&Save copies of what is not saved, every 5 minutes", ""),
    mark(prefix_keys, "&Emacs prefix keys, such as Ctrl+X Ctrl+S", ""),

    DialogRowResource{simulation_page, DialogRowKind::page, "Simulation"},
    DialogRowResource{simulator, DialogRowKind::combo, "&Simulator:", 0, false, " "},
    mark(waveform, "&Waveform after a successful compile", ""),
    DialogRowResource{bench_unit, DialogRowKind::combo, "&Test bench:", 0, false,
                      "else the top design"},
};
constexpr char k_wrong_mark = '!';
constexpr const char* k_defaults = "Restore defaults";
constexpr std::array k_buttons{k_ok, k_cancel, "&Apply", k_defaults};
constexpr int k_ok_button = 0;
constexpr int k_apply_button = 2;
constexpr int k_defaults_button = 3;
constexpr std::array k_dialogs{DialogResource{.number = k_dialog,
                                              .title = "Options",
                                              .rows = k_rows,
                                              .buttons = k_buttons,
                                              .help_topic = static_cast<int>(HelpTopic::options)}};

constexpr std::array k_standards{
    ChoiceEntry{"Default (VHDL-2008)", -1},
    ChoiceEntry{"VHDL-87", 87},
    ChoiceEntry{"VHDL-93", 93},
    ChoiceEntry{"VHDL-2002", 2},
    ChoiceEntry{"VHDL-2008", 8},
};
constexpr std::array k_goals{ChoiceEntry{"Speed", 0}, ChoiceEntry{"Area", 1}};
constexpr std::array k_polarities{ChoiceEntry{"The better one", 0}, ChoiceEntry{"As written", 1}};
constexpr std::array k_levels{ChoiceEntry{"No matter", -1}, ChoiceEntry{"Low", 0},
                              ChoiceEntry{"High", 1}};

constexpr std::uint32_t k_bold = 1;
constexpr std::uint32_t k_italic = 2;

using Options = Source_options;
template <OptionFlag flag>
constexpr OptionField flag_field(int row) {
    return mark_field<bit_of(flag)>(row);
}
template <OptionFlag flag>
constexpr OptionField clear_field(int row) {
    return mark_field<bit_of(flag), true>(row);
}

constexpr std::array k_fields{
    choice_field<&Options::vhdl_standard>(standard, k_standards),
    flag_field<OptionFlag::y_u>(relaxed_rules),
    flag_field<OptionFlag::y_v2>(vendor_packages),
    limit_field<&Options::error_limit>(error_limit, 0),
    limit_field<&Options::warning_limit>(warning_limit, 0),
    flag_field<OptionFlag::quiet>(quiet),
    flag_field<OptionFlag::rebuild>(rebuild),
    clear_field<OptionFlag::keep_p>(y_p),
    clear_field<OptionFlag::keep_b>(y_b),
    flag_field<OptionFlag::y_t>(y_t),
    clear_field<OptionFlag::keep_s0>(y_s0),
    flag_field<OptionFlag::f_h>(f_h),
    flag_field<OptionFlag::f_n>(f_n),
    bit_choice_field<bit_of(OptionFlag::y_ga)>(goal, k_goals),
    limit_field<&Options::optimise_level>(optimise_level, -1),
    flag_field<OptionFlag::xor2>(xor2),
    flag_field<OptionFlag::d_force>(d_force),
    flag_field<OptionFlag::t_force>(t_force),
    flag_field<OptionFlag::dt_opt>(dt_opt),
    bit_choice_field<bit_of(OptionFlag::keep_polarity)>(polarity, k_polarities),
    flag_field<OptionFlag::float_nodes>(float_nodes),
    flag_field<OptionFlag::factor>(factor),
    limit_field<&Options::factor_limit>(factor_limit, 0),
    flag_field<OptionFlag::limit_nodes>(limit_nodes),
    number_field<&Options::node_limit>(node_limit),
    choice_field<&Options::unused_outputs>(unused_outputs, k_levels),
    flag_field<OptionFlag::highlight_keywords>(highlight),
    value_field<&Options::keyword_colour>(keyword_colour, OptionShape::color),
    mark_field<k_bold << k_keyword_style_bit>(keyword_bold),
    mark_field<k_italic << k_keyword_style_bit>(keyword_italic),
    flag_field<OptionFlag::upper_case_keywords>(keyword_upper),
    value_field<&Options::comment_colour>(comment_colour, OptionShape::color),
    mark_field<k_bold << k_comment_style_bit>(comment_bold),
    mark_field<k_italic << k_comment_style_bit>(comment_italic),
    flag_field<OptionFlag::upper_case_comments>(comment_upper),
    value_field<&Options::text_colour>(text_colour, OptionShape::color),
    number_field<&Options::tab_width>(tab_width),
    number_field<&Options::undo_limit>(undo_limit),
    flag_field<OptionFlag::line_numbers>(line_numbers),
    flag_field<OptionFlag::auto_save>(auto_save),
    flag_field<OptionFlag::emacs_keys>(prefix_keys),
    text_field(simulator, &Options::simulator),
    flag_field<OptionFlag::make_simulator_file>(waveform),
    text_field(bench_unit, &Options::text_12),
};

enum class Word { plain, keyword, comment };
struct SampleWord {
    Word word;
    const char* text;
};
constexpr std::array k_sample{
    SampleWord{Word::comment, "-- Counts up to its end.\n"},
    SampleWord{Word::keyword, "process"},
    SampleWord{Word::plain, " (clock) "},
    SampleWord{Word::keyword, "is\nbegin\n"},
    SampleWord{Word::keyword, "  if"},
    SampleWord{Word::plain, " rising_edge(clock) "},
    SampleWord{Word::keyword, "then\n"},
    SampleWord{Word::plain, "    count <= count + 1;  "},
    SampleWord{Word::comment, "-- one more"},
};

Vector<SampleRun> sample_runs(const Source_options& options) {
    const HighlightLooks looks = looks_of(options);
    Vector<SampleRun> runs;
    for (const SampleWord& each : k_sample) {
        const WordLook& look = !looks.is_on || each.word == Word::plain ? looks.plain
                               : each.word == Word::keyword             ? looks.keywords
                                                                        : looks.comments;
        String text = each.text;
        if (look.is_upper_case)
            std::ranges::transform(text, text.begin(), ascii_upper);
        runs.push_back({std::move(text), look.color, look.style});
    }
    return runs;
}

String argument_line(const Project& project, const Source_options& options) {
    String line;
    for (const String& argument : option_arguments(project, options))
        (line += line.empty() ? "" : " ") += argument;
    return format_message(msg_arguments, line.c_str());
}

/// The dialog while it is asked.
class OptionsDialog {
public:
    OptionsDialog(Window window, const Project& project)
        : window_(window), shown_(option_values(project)),
          has_catalogue_(read_simulator_names(simulators_) != CatalogueStatus::no_file) {}

    void ask();

private:
    void show(const Source_options& options);
    /// What the rows hold.
    [[nodiscard]] OptionValues values();
    void check();
    void follow();
    void restore_defaults();

    Window window_;
    OptionValues shown_; ///< what the rows were filled with
    Vector<String> simulators_;
    bool has_catalogue_;
    Dialog dialog_;
    bool is_wrong_ = false;
};

void OptionsDialog::show(const Source_options& options) {
    for (const OptionField& field : k_fields)
        show_field(field, options, *find_row(dialog_, field.row));
}

OptionValues OptionsDialog::values() {
    OptionValues to = shown_;
    for (const OptionField& field : k_fields)
        take_field(field, shown_.options, *find_row(dialog_, field.row), to.options);
    return to;
}

/// What is wrong may stand on a page that is not seen: its title says so.
void OptionsDialog::check() {
    is_wrong_ = false;
    DialogRow* page = nullptr;
    for (DialogRow& row : dialog_.rows) {
        if (row.kind == DialogRowKind::page) {
            page = &row;
            std::erase(page->label, k_wrong_mark);
        }
        const auto field = std::ranges::find(k_fields, row.id, &OptionField::row);
        if (field == k_fields.end() || check_field(*field, shown_.options, row))
            continue;
        is_wrong_ = true;
        std::erase(page->label, k_wrong_mark);
        page->label += k_wrong_mark;
    }
}

/// What depends on other rows.
void OptionsDialog::follow() {
    const Project* project = find_project(window_);
    if (project == nullptr)
        return;
    check();
    const OptionValues now = values();
    find_row(dialog_, arguments)->label = argument_line(*project, now.options);
    find_row(dialog_, sample)->runs = sample_runs(now.options);
    find_row(dialog_, factor_limit)->is_enabled = now.options.has(OptionFlag::factor);
    find_row(dialog_, node_limit)->is_enabled = now.options.has(OptionFlag::limit_nodes);
    DialogRow& chosen = *find_row(dialog_, simulator);
    const bool is_known =
        chosen.value.empty() || std::ranges::find(simulators_, chosen.value) != simulators_.end();
    chosen.hint = format_message(!has_catalogue_ ? msg_catalogue_no_file
                                 : is_known      ? msg_in_catalogue
                                                 : msg_not_in_catalogue);
    dialog_.disabled_buttons = is_wrong_ ? 1U << k_ok_button | 1U << k_apply_button : 0;
    if (!differ(shown_, now))
        dialog_.disabled_buttons |= 1U << k_apply_button;
}

/// Those of the page that is seen.
void OptionsDialog::restore_defaults() {
    const Source_options defaults;
    bool is_seen = false;
    for (DialogRow& row : dialog_.rows) {
        if (row.kind == DialogRowKind::page)
            is_seen = row.selected == 1;
        const auto field = std::ranges::find(k_fields, row.id, &OptionField::row);
        if (is_seen && field != k_fields.end())
            show_field(*field, defaults, row);
    }
}

void OptionsDialog::ask() {
    if (!xvt_dlg_create_res(dialog_, k_dialog)) {
        post_error(msg_no_dialog);
        return;
    }
    find_row(dialog_, compiler_page)->selected = 1;
    find_row(dialog_, simulator)->entries = simulators_;
    dialog_.calls = {.on_change = [](void* context, Dialog&,
                                     int) { from_context<OptionsDialog>(context).follow(); },
                     .context = this};
    show(shown_.options);
    BenchUnits units(window_, dialog_, bench_unit);
    for (;;) {
        follow();
        const int button = xvt_dlg_ask(dialog_);
        if (button == k_defaults_button) {
            restore_defaults();
            continue;
        }
        if (button != k_ok_button && button != k_apply_button)
            return;
        const OptionValues to = values();
        change_options_of_project(window_, shown_, to);
        const Project* project = find_project(window_);
        if (button == k_ok_button || project == nullptr)
            return;
        shown_ = option_values(*project);
        show(shown_.options);
    }
}

} // namespace

void register_project_options() {
    xvt_res_register({.dialogs = k_dialogs});
}

void ask_for_project_options(Window window) {
    if (const Project* project = find_project(window))
        OptionsDialog(window, *project).ask();
}

} // namespace pellux
