// Finding in a large text and replacing all that is found, until it is painted, against an editor.

#include "bench/large_text.h"
#include "bench/window_program.h"
#include "core/text/text_replace.h"
#include "windows/textview/text_window.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

using namespace pellux;

struct Scale {
    std::size_t searched_bytes;
    std::size_t edited_bytes;
    std::size_t words;
};
constexpr Scale k_full{100'000'000, 10'000'000, 100'000};
constexpr Scale k_moment{2'000'000, 100'000, 1'000};

constexpr int k_width = 640;
constexpr int k_height = 600;
constexpr WindowResource k_windows[] = {
    {.number = 1, .title = "text", .width = k_width, .height = k_height}};

void show_all() {
    xvt_app_process_pending_events();
}

constexpr std::uintptr_t k_match_case = 4; ///< a search flag of Scintilla

/// Where a word stands from an offset on; -1: nowhere.
std::intptr_t find(ScintillaText& text, std::string_view word, std::intptr_t from) {
    text.tell(Sci::set_target_start, static_cast<std::uintptr_t>(from));
    text.tell(Sci::set_target_end, static_cast<std::uintptr_t>(text.tell(Sci::get_length)));
    return text.tell(Sci::search_in_target, word.size(), word.data());
}

void measure_finding(const Scale& scale, bool moment) {
    std::string large = make_text(scale.searched_bytes);
    const std::string_view word = "interrupt_state";
    large.replace(large.size() - 1000, word.size(), word);
    ScintillaText text;
    fill(text, large);
    TextDocument document;
    fill(document, large);
    for (const bool ignores_case : {false, true}) {
        text.tell(Sci::set_search_flags, ignores_case ? 0 : k_match_case);
        const SearchPattern pattern =
            compile_search({.pattern = word, .ignores_case = ignores_case}, document.encoding);
        compare_with_scintilla(
            {.name =
                 ignores_case ? "the same, ignoring case" : "a word found near the end, with case",
             .reach = 0.12},
            moment, [&] { benchmark::DoNotOptimize(find(text, word, 0)); },
            [&] { benchmark::DoNotOptimize(find_from(document, pattern, 0)); });
    }
}

void measure_replacing(const Scale& scale, bool moment) {
    const std::string_view word = "valve";
    const std::string_view other = "throttle";
    std::string edited = make_text(scale.edited_bytes);
    for (std::size_t i = 0; i < scale.words; ++i)
        edited.replace(edited.size() / scale.words * i, word.size(), word);
    const auto units = static_cast<double>(scale.words);
    const SearchPattern pattern = compile_search({.pattern = word}, TextEncoding::utf_8);
    compare_with_scintilla(
        {.name = "words replaced and painted, with undo", .units = units, .reach = 0.4}, moment,
        [&] {
            ScintillaText text;
            fill(text, edited);
            text.tell(Sci::set_undo_collection, 1);
            text.tell(Sci::set_search_flags, k_match_case);
            text.show(k_width, k_height);
            show_all();
            return time_of([&] {
                text.tell(Sci::begin_undo);
                for (std::intptr_t at = 0; (at = find(text, word, at)) >= 0;) {
                    text.tell(Sci::replace_target, other.size(), other.data());
                    at = text.tell(Sci::get_target_end);
                }
                text.tell(Sci::end_undo);
                show_all();
            });
        },
        [&] {
            TextWindow window;
            fill(window.document(), edited);
            xvt_win_create_res(1, {TextWindow::handle, &window});
            show_all();
            std::int64_t count = 0;
            const double time = time_of([&] {
                count = replace_all(window.view().editing, pattern, other);
                show_caret(window.view());
                show_all();
            });
            xvt_vobj_destroy(window.window());
            show_all();
            if (count != static_cast<std::int64_t>(scale.words))
                std::abort();
            return time;
        });
}

void run(bool moment) {
    const Scale& scale = moment ? k_moment : k_full;
    measure_finding(scale, moment);
    measure_replacing(scale, moment);
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "text", .windows = k_windows, .run = run};
    return program.main(argument_count, arguments);
}
