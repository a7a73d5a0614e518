// The editor window: keys, a second window, a large file; against Qt's own edit control and against
// the loading of the text alone.

#include "bench/key_times.h"
#include "bench/large_text.h"
#include "bench/window_program.h"
#include "core/os/loop.h"
#include "core/text/text_storage.h"
#include "windows/controls/controls.h"
#include "windows/controls/shell_hooks.h"
#include "windows/editor/keyword_table.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/window.h"

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QSyntaxHighlighter>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace pellux;

Source_options options;

/// What people write with Qt's own means: a word that is in a set, and comments.
class Highlighter final : public QSyntaxHighlighter {
public:
    explicit Highlighter(QTextDocument* document) : QSyntaxHighlighter(document) {
        keyword_.setForeground(Qt::blue);
        comment_.setForeground(Qt::red);
    }

protected:
    void highlightBlock(const QString& line) override {
        const auto is_part = [](QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); };
        for (qsizetype at = 0; at < line.size();) {
            if (line[at] == QLatin1Char('-') && at + 1 < line.size() &&
                line[at + 1] == QLatin1Char('-')) {
                setFormat(static_cast<int>(at), static_cast<int>(line.size() - at), comment_);
                return;
            }
            if (!line[at].isLetter()) {
                ++at;
                continue;
            }
            qsizetype end = at + 1;
            while (end < line.size() && is_part(line[end]))
                ++end;
            const QByteArray word = line.mid(at, end - at).toUtf8();
            if (is_keyword({word.data(), static_cast<std::size_t>(word.size())}))
                setFormat(static_cast<int>(at), static_cast<int>(end - at), keyword_);
            at = end;
        }
    }

private:
    QTextCharFormat keyword_;
    QTextCharFormat comment_;
};

QFont fixed_font() {
    const Font font = xvt_font_get_fixed();
    return {QString::fromStdString(std::string(view(xvt_font_get_family(font)))), font.size};
}

QMdiArea* area_of_windows() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* frame = qobject_cast<QMainWindow*>(widget))
            return frame->findChild<QMdiArea*>();
    return nullptr;
}

QMdiSubWindow* show_plain_edit(QMdiArea& area, const std::string& text, bool highlights) {
    auto* edit = new QPlainTextEdit;
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setFont(fixed_font());
    if (highlights)
        new Highlighter(edit->document());
    edit->setPlainText(QString::fromStdString(text));
    QMdiSubWindow* window = area.addSubWindow(edit);
    window->resize(800, 620);
    window->show();
    return window;
}

/// Files that go with the program.
struct Files {
    std::filesystem::path directory;

    Files() {
        std::string name =
            (std::filesystem::temp_directory_path() / "pellux-bench-XXXXXX").string();
        directory = mkdtemp(name.data());
        setenv("XDG_CONFIG_HOME", directory.c_str(), 1);
    }
    ~Files() { std::filesystem::remove_all(directory); }
    [[nodiscard]] std::string write(const char* name, const std::string& text) const {
        std::ofstream(directory / name, std::ios::binary) << text;
        return directory / name;
    }
};

EditorWindow* open(const std::string& path) {
    EditorWindow* editor = open_editor(xvt_win_get_task(), path);
    show_all();
    return editor;
}

void measure_typing(QMdiArea& area, const Files& files, bool moment) {
    const std::string text = make_text(moment ? 100'000 : 10'000'000);
    EditorWindow* editor = open(files.write("large.vhd", text));
    go_to_offset(editor->view().editing, static_cast<ByteOffset>(text.size() / 2));
    show_caret(editor->view());
    show_all();
    QWidget* ours = QApplication::focusWidget();
    QMdiSubWindow* window = show_plain_edit(area, text, true);
    auto* edit = qobject_cast<QPlainTextEdit*>(window->widget());
    QTextCursor cursor = edit->textCursor();
    cursor.setPosition(static_cast<int>(text.size() / 2));
    edit->setTextCursor(cursor);
    area.tileSubWindows();
    show_all();
    measure_keys(
        ours, edit,
        {.yardstick = "plain edit with a highlighter", .median_reach = 0.8, .high_reach = 1},
        moment);
    delete window;
    xvt_vobj_destroy(editor->window());
    show_all();
}

void measure_second_window(QMdiArea& area, const Files& files, bool moment) {
    const std::string text = make_text(4000);
    const std::string path = files.write("small.vhd", text);
    EditorWindow* first = open(files.write("first.vhd", text));
    compare(
        {.name = "a file of 100 lines opened in a second editor, to painted",
         .yardstick = "a plain edit's window",
         .reach = 1.5,
         .round_ms = 200},
        moment,
        [&] {
            QMdiSubWindow* window = nullptr;
            const double ns = time_of([&] {
                window = show_plain_edit(area, text, false);
                show_all();
            });
            delete window;
            show_all();
            return ns;
        },
        [&] {
            EditorWindow* editor = nullptr;
            const double ns = time_of([&] { editor = open(path); });
            xvt_vobj_destroy(editor->window());
            show_all();
            return ns;
        });
    xvt_vobj_destroy(first->window());
    show_all();
}

void measure_large_file(const Files& files, bool moment) {
    const std::string path = files.write("huge.vhd", make_text(moment ? 5'000'000 : 100'000'000));
    compare(
        {.name = "100 MB opened, to painted",
         .yardstick = "loading it into a document",
         .reach = 1.3,
         .round_ms = 0},
        moment,
        [&] {
            TextDocument document;
            return time_of(
                [&] { static_cast<void>(load_text(document, path, TextEncoding::utf_8)); });
        },
        [&] {
            EditorWindow* editor = nullptr;
            const double ns = time_of([&] { editor = open(path); });
            xvt_vobj_destroy(editor->window());
            show_all();
            return ns;
        });
}

/// Copies of texts that are not saved, while the program goes on.
void measure_copies(const Files& files, bool moment) {
    const int count = moment ? 3 : 20;
    const std::string text = make_text(moment ? 10'000 : 1'000'000);
    Vector<EditorWindow*> editors;
    for (int i = 0; i < count; ++i) {
        editors.push_back(open(files.write(std::to_string(i).c_str(), text)));
        insert_text(editors.back()->view().editing, "x");
    }
    const auto flush = [&](int i) {
        File file;
        const std::string path = files.directory / ("flushed" + std::to_string(i));
        if (failed(open_file(file, path, OpenMode::truncate)) ||
            failed(write_all(file, std::as_bytes(std::span(text)))) || failed(flush_file(file)))
            std::abort();
    };
    double longest_ns = 0;
    const auto save = [&] {
        save_copies(xvt_win_get_task());
        const std::filesystem::path last = files.directory / "peltmp/0";
        const auto before = std::filesystem::exists(last) ? std::filesystem::last_write_time(last)
                                                          : std::filesystem::file_time_type();
        do {
            longest_ns = std::max(longest_ns, time_of([] { run_turn(TurnWait::none); }));
        } while (!std::filesystem::exists(last) ||
                 std::filesystem::last_write_time(last) == before);
    };
    compare(
        {.name = "copies of 20 modified texts of 1 MB",
         .yardstick = "writing and flushing the same bytes",
         .reach = 2,
         .round_ms = 0},
        moment,
        [&] {
            for (int i = 0; i < count; ++i)
                flush(i);
        },
        save);
    compare(
        {.name = "the longest turn of the loop meanwhile",
         .yardstick = "the longest writing of one",
         .reach = 2,
         .round_ms = 0},
        moment,
        [&] {
            double ns = 0;
            for (int i = 0; i < count; ++i)
                ns = std::max(ns, time_of([&] { flush(i); }));
            return ns;
        },
        [&] {
            longest_ns = 0;
            save();
            return longest_ns;
        });
    for (EditorWindow* editor : editors)
        editor->close_now();
    show_all();
}

void run(bool moment) {
    QMdiArea* area = area_of_windows();
    if (area == nullptr) {
        std::printf("there is no window to draw on\n");
        return;
    }
    area->window()->resize(1700, 1000);
    const Files files;
    install_shell({.insert_tools_menu = [](void*, Window) {}});
    register_controls();
    options.set(OptionFlag::line_numbers, true);
    EditorHooks hooks;
    hooks.options = [](Window) -> const Source_options* { return &options; };
    register_editors(hooks);
    measure_typing(*area, files, moment);
    measure_second_window(*area, files, moment);
    measure_large_file(files, moment);
    measure_copies(files, moment);
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "text", .windows = {}, .run = run};
    return program.main(argument_count, arguments);
}
