// Going to lines and changing texts, against an editor's text and against ours with many views.

#include "bench/large_text.h"
#include "core/text/line_reader.h"
#include "core/text/text_editing.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPlainTextDocumentLayout>
#include <QTextCursor>
#include <QTextDocument>

#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

namespace {

using namespace pellux;

/// How much of everything; a moment does a hundredth of most.
struct Scale {
    std::size_t large_bytes;
    std::size_t edited_bytes;
    int insertions;
    int typed;
    int undone;
    int read;
    int appended;
};
constexpr Scale k_full{100'000'000, 10'000'000, 100'000, 1'000'000, 10'000, 100'000, 1'000'000};
constexpr Scale k_moment{5'000'000, 500'000, 1'000, 10'000, 200, 1'000, 10'000};

void measure_reading(const std::string& large, const Scale& scale, bool moment) {
    ScintillaText text;
    fill(text, large);
    TextDocument document;
    fill(document, large);
    const std::vector<std::int64_t> lines = random_numbers(scale.read, line_count(document) - 1);
    compare_with_scintilla(
        {.name = "random lines gone to and read",
         .units = static_cast<double>(lines.size()),
         .reach = 0.7},
        moment,
        [&] {
            char buffer[k_line_piece_bytes];
            for (const std::int64_t line : lines) {
                const auto number = static_cast<std::uintptr_t>(line);
                benchmark::DoNotOptimize(text.tell(Sci::line_start, number));
                text.tell(Sci::get_line, number, buffer);
                benchmark::DoNotOptimize(buffer);
            }
        },
        [&] {
            char buffer[k_line_piece_bytes];
            for (const std::int64_t line : lines) {
                LineReader reader = read_lines(document, line);
                benchmark::DoNotOptimize(read_next(reader, buffer));
                benchmark::DoNotOptimize(buffer);
            }
        });
}

void measure_insertions(const std::string& edited, const Scale& scale, bool moment) {
    const auto places = random_numbers(scale.insertions, static_cast<std::int64_t>(edited.size()));
    const auto ours = [&] {
        TextDocument document;
        fill(document, edited);
        return time_of([&] { insert_all(document, places); });
    };
    const RatioRow row{.name = "characters inserted at random places",
                       .units = static_cast<double>(places.size()),
                       .reach = 0.004};
    compare_with_scintilla(
        row, moment,
        [&] {
            // Each costs the same, and all of them take half a minute.
            ScintillaText text;
            fill(text, edited);
            const std::size_t count = places.size() / 10;
            return 10 * time_of([&] {
                       for (std::size_t i = 0; i < count; ++i)
                           text.tell(Sci::insert_text, static_cast<std::uintptr_t>(places[i]), "x");
                   });
        },
        ours);
    compare({.name = "the same with 20 views and 10,000 marks",
             .yardstick = "without",
             .units = row.units,
             .reach = 2.0,
             .round_ms = 0},
            moment, ours, [&] {
                TextDocument document;
                fill(document, edited);
                std::deque<TextEditing> views;
                for (int i = 0; i < 20; ++i)
                    views.emplace_back(document);
                std::deque<TextMark> marks;
                for (const std::int64_t at : random_numbers(10'000, text_size(document)))
                    marks.emplace_back(point_at(document, at), false);
                return time_of([&] { insert_all(document, places); });
            });
}

void measure_typing(const std::string& edited, const Scale& scale, bool moment) {
    constexpr int k_line_characters = 40;
    compare_with_scintilla(
        {.name = "characters typed in a row, with undo",
         .units = static_cast<double>(scale.typed),
         .reach = 0.3},
        moment,
        [&] {
            ScintillaText text;
            fill(text, edited);
            text.tell(Sci::set_undo_collection, 1);
            text.tell(Sci::go_to, edited.size() / 2);
            return time_of([&] {
                for (int i = 1; i <= scale.typed; ++i)
                    text.tell(Sci::add_text, 1, i % k_line_characters == 0 ? "\n" : "x");
            });
        },
        [&] {
            TextDocument document;
            fill(document, edited);
            TextEditing editing(document);
            go_to_offset(editing, static_cast<ByteOffset>(edited.size() / 2));
            return time_of([&] {
                for (int i = 1; i <= scale.typed; ++i) {
                    if (i % k_line_characters == 0)
                        insert_text(editing, "\n");
                    else
                        insert_char(editing, U'x');
                }
            });
        });
}

void measure_undo(const std::string& edited, const Scale& scale, bool moment) {
    const auto places = random_numbers(scale.undone, static_cast<std::int64_t>(edited.size()));
    const auto theirs = [&](bool has_layout) {
        QTextDocument document;
        if (has_layout)
            document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
        document.setPlainText(QString::fromStdString(edited));
        QTextCursor cursor(&document);
        for (const std::int64_t at : places) {
            cursor.setPosition(static_cast<int>(at));
            cursor.insertText(QStringLiteral("x"));
        }
        return time_of([&] {
            while (document.isUndoAvailable())
                document.undo();
        });
    };
    const auto ours = [&] {
        TextDocument document;
        fill(document, edited);
        TextEditing editing(document);
        editing.undo_limit = 32'000;
        for (const std::int64_t at : places) {
            go_to_offset(editing, at);
            insert_char(editing, U'x');
        }
        return time_of([&] {
            while (undo(editing))
                continue;
        });
    };
    RatioRow row{.name = "scattered insertions undone",
                 .yardstick = "QTextDocument with an editor's layout",
                 .units = static_cast<double>(places.size()),
                 .reach = 0.02,
                 .round_ms = 0};
    compare(
        row, moment, [&] { return theirs(true); }, ours);
    row.yardstick = "QTextDocument alone";
    row.reach = 0;
    compare(
        row, moment, [&] { return theirs(false); }, ours);
}

void measure_appending(const Scale& scale, bool moment) {
    const std::string line = std::string(59, '-') + '\n';
    compare_with_scintilla(
        {.name = "lines of 60 characters appended one by one",
         .units = static_cast<double>(scale.appended),
         .reach = 0.15},
        moment,
        [&] {
            ScintillaText text;
            return time_of([&] {
                for (int i = 0; i < scale.appended; ++i)
                    text.tell(Sci::append_text, line.size(), line.c_str());
            });
        },
        [&] {
            TextDocument document;
            return time_of([&] {
                for (int i = 0; i < scale.appended; ++i)
                    insert_bytes(document, text_size(document), line);
            });
        });
}

} // namespace

int main(int argument_count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QApplication application(argument_count, arguments);
    const bool moment = is_moment(argument_count, arguments);
    const Scale& scale = moment ? k_moment : k_full;
    const std::string edited = make_text(scale.edited_bytes);
    measure_reading(make_text(scale.large_bytes), scale, moment);
    measure_insertions(edited, scale, moment);
    measure_typing(edited, scale, moment);
    measure_undo(edited, scale, moment);
    measure_appending(scale, moment);
    return 0;
}
