// Paging through a large text with its VHDL highlighted; what of it a change makes known anew.

#include "bench/large_text.h"
#include "bench/window_program.h"
#include "windows/editor/highlighting.h"
#include "windows/editor/keyword_table.h"
#include "windows/textview/text_window.h"

#include <string>

namespace {

using namespace pellux;

constexpr WindowResource k_windows[] = {
    {.number = 1, .title = "text", .width = 640, .height = 600}};

void page_through(TextView& view, std::int64_t pages) {
    const std::int64_t rows = full_rows(view);
    for (std::int64_t page = 0; page < pages; ++page) {
        set_top_line(view, page * rows);
        xvt_app_process_pending_events();
    }
}

void measure_pages(TextView& view, Highlighter& highlighter, bool moment) {
    const std::int64_t pages = moment ? 10 : 500;
    compare(
        {.name = "a page down, painted with highlighting",
         .yardstick = "plain",
         .units = static_cast<double>(pages),
         .reach = 1.5},
        moment,
        [&] {
            set_draw_callback(view, nullptr, nullptr);
            page_through(view, pages);
        },
        [&] {
            set_draw_callback(view, Highlighter::draw, &highlighter);
            page_through(view, pages);
        });
}

/// The state of the last line of a text, against a copy of it: both read every byte once.
void measure_first_scan(const std::string& text, bool moment) {
    TextDocument document;
    append_loaded(document, text);
    const ByteOffset last = line_start(document, line_count(document) - 2);
    compare(
        {.name = "is the last line of all in a comment?",
         .yardstick = "a copy",
         .reach = 1,
         .round_ms = 0},
        moment, [&] { benchmark::DoNotOptimize(copy_text(document, 0, text_size(document))); },
        [&] {
            CommentLines lines(document);
            benchmark::DoNotOptimize(lines.starts_in_comment(last));
        });
}

/// Changes in the middle, and the states of a page of lines after each.
void measure_changes(const std::string& text, bool moment) {
    constexpr int k_rows = 40;
    const int keys = moment ? 10 : 1000;
    TextDocument document;
    append_loaded(document, text);
    CommentLines lines(document);
    const std::int64_t top = line_count(document) / 2;
    const ByteOffset at = line_start(document, top + k_rows / 2);
    benchmark::DoNotOptimize(lines.starts_in_comment(text_size(document)));
    const auto type = [&](bool asks) {
        for (int key = 0; key < keys; ++key) {
            insert_bytes(document, at, "x");
            for (int row = 0; row < k_rows; ++row) {
                const ByteOffset start = line_start(document, top + row);
                benchmark::DoNotOptimize(asks ? lines.starts_in_comment(start) : start != 0);
            }
        }
        erase_bytes(document, at, keys);
    };
    compare(
        {.name = "which lines of a page are in a comment, after a key",
         .yardstick = "where they start",
         .units = static_cast<double>(keys),
         .reach = 0},
        moment, [&] { type(false); }, [&] { type(true); });
}

void run(bool moment) {
    load_keywords();
    const std::string text = make_text(moment ? 100'000 : 10'000'000);
    TextWindow ours;
    append_loaded(ours.document(), text);
    const Window window = xvt_win_create_res(1, {TextWindow::handle, &ours});
    if (window == Window::none) {
        std::printf("there is no window to draw on\n");
        return;
    }
    Highlighter highlighter(ours.document());
    Source_options options;
    options.set(OptionFlag::highlight_keywords, true);
    highlighter.looks = looks_of(options);
    measure_pages(ours.view(), highlighter, moment);
    measure_changes(text, moment);
    measure_first_scan(make_text(moment ? 100'000 : 100'000'000), moment);
    xvt_vobj_destroy(window);
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "text", .windows = k_windows, .run = run};
    return program.main(argument_count, arguments);
}
