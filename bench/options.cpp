// The options dialog until it is painted, against a bare dialog of the same rows, and a change of
// 10,000 files' library against writing their project once.

#include "bench/large_project.h"
#include "bench/window_program.h"
#include "core/project/project_file.h"
#include "windows/controls/controls.h"
#include "windows/toolkit/ask.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/option_edits.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_options.h"
#include "windows/workspace/project_windows.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <numeric>
#include <string>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr int k_files = 10'000;

/// Notes when a dialog has been painted, and closes it.
class PaintWatch : public QObject {
public:
    double time(const std::function<void()>& ask) {
        start_ = std::chrono::steady_clock::now();
        spent_ns_ = 0;
        qApp->installEventFilter(this);
        ask();
        qApp->removeEventFilter(this);
        return spent_ns_;
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* dialog = qobject_cast<QDialog*>(object);
        if (dialog == nullptr || event->type() != QEvent::Paint || spent_ns_ != 0)
            return false;
        // What lies in the dialog is painted behind it, before anything else happens.
        spent_ns_ = 1;
        QTimer::singleShot(0, dialog, [this, dialog] {
            spent_ns_ =
                std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start_)
                    .count();
            dialog->reject();
        });
        return false;
    }

private:
    std::chrono::steady_clock::time_point start_;
    double spent_ns_ = 0;
};

/// The rows that the dialog asks with.
Vector<DialogRow> rows_of_options(Window project) {
    static Vector<DialogRow> s_rows;
    const AskSeam before = install_ask({.ask =
                                            [](void*, const Question& question) {
                                                s_rows = question.rows;
                                                return closed_answer(question);
                                            },
                                        .end_dialog = [](void*, std::uint64_t) {}});
    ask_for_project_options(project);
    install_ask(before);
    return s_rows;
}

QString text_of(const String& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QWidget* bare_field(const DialogRow& row) {
    if (row.kind == DialogRowKind::check)
        return new QCheckBox(text_of(row.label));
    if (row.kind == DialogRowKind::number)
        return new QSpinBox;
    const bool drops_down = row.kind == DialogRowKind::choice || row.kind == DialogRowKind::color ||
                            row.kind == DialogRowKind::combo;
    if (!drops_down)
        return new QLabel(text_of(row.label));
    auto* box = new QComboBox;
    for (const String& entry : row.entries)
        box->addItem(text_of(entry));
    box->setEditable(row.kind == DialogRowKind::combo);
    return box;
}

void ask_bare(const Vector<DialogRow>& rows) {
    QDialog dialog;
    auto* stack = new QVBoxLayout(&dialog);
    auto* pages = new QTabWidget;
    stack->addWidget(pages);
    QVBoxLayout* page = nullptr;
    QFormLayout* form = nullptr;
    for (const DialogRow& row : rows) {
        if (row.kind == DialogRowKind::page) {
            auto* widget = new QWidget;
            page = new QVBoxLayout(widget);
            pages->addTab(widget, text_of(row.label));
            form = new QFormLayout;
            page->addLayout(form);
        } else if (row.kind == DialogRowKind::group) {
            auto* group = new QGroupBox(text_of(row.label));
            page->addWidget(group);
            form = new QFormLayout(group);
        } else if (row.kind == DialogRowKind::check) {
            form->addRow(bare_field(row), new QLabel(text_of(row.hint)));
        } else {
            form->addRow(text_of(row.label), bare_field(row));
        }
    }
    stack->addWidget(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                          QDialogButtonBox::Apply |
                                          QDialogButtonBox::RestoreDefaults));
    dialog.exec();
}

void measure_dialog(Window project, bool moment) {
    const Vector<DialogRow> rows = rows_of_options(project);
    PaintWatch watch;
    compare(
        {.name = "the options dialog to painted",
         .yardstick = "a bare dialog of the same rows",
         .reach = 1.5,
         .round_ms = 1000},
        moment, [&] { return watch.time([&] { ask_bare(rows); }); },
        [&] { return watch.time([&] { ask_for_project_options(project); }); });
}

void measure_files(Window window, bool moment) {
    Project& project = *find_project(window);
    Vector<std::size_t> all(project.sources.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    bool is_second = false;
    compare(
        {.name = "10,000 files selected and their library changed",
         .yardstick = "their project written once",
         .reach = 3,
         .round_ms = 1000},
        moment,
        [&] {
            if (failed(write_project(project).error))
                std::exit(1);
        },
        [&] {
            OptionValues from;
            OptionValues to;
            from.options.library.assign(is_second ? "one" : "two");
            to.options.library.assign(is_second ? "two" : "one");
            is_second = !is_second;
            change_options_of_files(window, all, from, to);
            xvt_app_process_pending_events();
        });
}

void run(bool moment) {
    if (!open_project_here("large.bpr"))
        std::exit(1);
    xvt_app_process_pending_events();
    const Window project = workspace().projects.front()->window;
    measure_files(project, moment);
    measure_dialog(project, moment);
}

} // namespace

int main(int count, char** arguments) {
    std::string scratch = (fs::temp_directory_path() / "pellux-options-XXXXXX").string();
    if (mkdtemp(scratch.data()) == nullptr)
        return 1;
    fs::current_path(scratch);
    const Owned<Project> project = large_project(k_files);
    project->directory = scratch;
    if (failed(write_project(*project).error))
        return 1;
    register_controls();
    start_workspace({.insert_tools_menu = [](void*, Window) {}});
    const int status = WindowProgram{.title = "options", .run = run}.main(count, arguments);
    fs::current_path("/");
    fs::remove_all(scratch);
    return status;
}
