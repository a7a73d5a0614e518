#include "windows/workspace/reading_window.h"

#include "core/common/callback.h"
#include "core/os/argument_vector.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/textview/text_output.h"
#include "windows/textview/window_list.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr WindowResource resource(ReadingKind kind, int width, int height) {
    return {.number = static_cast<int>(kind), .width = width, .height = height};
}
constexpr std::array k_windows{resource(ReadingKind::tool_versions, 640, 120),
                               resource(ReadingKind::last_compiles, 760, 200),
                               resource(ReadingKind::file, 680, 400)};

WindowList<ReadingWindow> texts;
bool (*take_project_key)(Window project, const CharacterEvent& key) = nullptr;

ReadingWindow* find_text(const ReadingSubject& subject) {
    const auto found = std::ranges::find_if(texts.all, [&](const auto& text) {
        return text->kind == subject.kind && text->project == subject.project &&
               view(text->path) == subject.path;
    });
    return found == texts.all.end() ? nullptr : found->get();
}

/// Says in the title whether a program runs.
void show_program(const ReadingWindow& text) {
    const bool runs = text.program != nullptr && text.program->running();
    xvt_vobj_set_title(text.window(), runs ? view(format_message(msg_text_runs, text.title.c_str()))
                                           : view(text.title));
}

void forget(ReadingWindow& text) {
    if (texts.forget(text))
        text.program.reset();
}

void on_words(void* context, const char* words, int done, int status) {
    auto& text = from_context<ReadingWindow>(context);
    if (done == 0) {
        append_text(text, words);
        return;
    }
    const String cause = end_cause_text(text.program->end(), text.name.c_str());
    if (!cause.empty())
        append_line(text, view(cause));
    show_program(text);
    text.ended(text, status);
}

} // namespace

ReadingWindow::ReadingWindow(const ReadingSubject& subject)
    : kind(subject.kind), project(subject.project), path(subject.path) {}

long ReadingWindow::on_event(const Event& event) {
    if (event.get<CloseEvent>() != nullptr) {
        xvt_vobj_destroy(window());
        return 0;
    }
    if (const auto* key = event.get<CharacterEvent>())
        return project != Window::none && take_project_key(project, *key) ? 0 : 1;
    if (event.get<DestructionEvent>() != nullptr)
        forget(*this);
    return TextWindow::on_event(event);
}

bool ReadingWindow::take_key(const CharacterEvent& key) {
    constexpr int k_escape = 27;
    if (key.code != k_escape && key.letter != 'W')
        return TextWindow::take_key(key);
    xvt_vobj_destroy(window());
    return true;
}

void register_reading_windows(bool (*take_key)(Window project, const CharacterEvent& key)) {
    texts.all.clear();
    take_project_key = take_key;
    xvt_res_register({.windows = k_windows});
}

ReadingWindow* open_reading_window(const ReadingSubject& subject, std::string_view title) {
    ReadingWindow* text = find_text(subject);
    if (text == nullptr) {
        text = &texts.add(subject);
        if (xvt_win_create_res(static_cast<int>(subject.kind), {TextWindow::handle, text}) ==
            Window::none) {
            forget(*text);
            post_error(msg_no_project_window);
            return nullptr;
        }
        text->set_read_only(true);
        text->view().editing.undo_limit = 0;
        associate_help({.window = text->window()}, HelpTopic::reports);
    }
    text->program.reset();
    text->title = title;
    show_program(*text);
    set_text(*text, {});
    xvt_vobj_raise(text->window());
    return text;
}

void close_reading_windows(Window project) {
    Vector<Window> windows;
    for (const Owned<ReadingWindow>& text : texts.all)
        if (text->project == project)
            windows.push_back(text->window());
    for (const Window window : windows)
        xvt_vobj_destroy(window);
}

void set_text(ReadingWindow& text, std::string_view words) {
    set_output(text.view(), words);
    text.at_line_start = words.empty() || words.back() == '\n';
}

void append_text(ReadingWindow& text, std::string_view words) {
    if (words.empty())
        return;
    append_output(text.view(), words);
    text.at_line_start = words.back() == '\n';
}

void append_line(ReadingWindow& text, std::string_view words) {
    String line(text.at_line_start ? "" : "\n");
    line += words;
    append_text(text, view(line += '\n'));
}

void run_program_in(ReadingWindow& text, const Vector<String>& words,
                    void (*ended)(ReadingWindow& text, int status)) {
    const auto arguments = argument_vector<Vector<const char*>>(words);
    text.ended = ended;
    text.program = make_owned<Spawner>(on_words, &text);
    text.name = words.front();
    const LaunchResult result = text.program->launch(arguments.front(), arguments.data());
    if (result) {
        show_program(text);
        return;
    }
    append_line(text, view(launch_failure_text(result)));
    ended(text, 1);
}

} // namespace pellux
