#include "windows/workspace/text_window.h"

#include "core/common/callback.h"
#include "core/os/argument_vector.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_output = 1;

constexpr WindowResource resource(TextKind kind, int width, int height) {
    return {.number = static_cast<int>(kind), .width = width, .height = height};
}
constexpr std::array k_windows{resource(TextKind::compile_output, 640, 300),
                               resource(TextKind::tool_versions, 640, 120),
                               resource(TextKind::file, 680, 400)};

Vector<Owned<TextWindow>> texts;
TextHooks g_hooks;

Window output_of(Window window) {
    return xvt_win_get_ctl(window, k_output);
}

TextWindow* find_text(Window window) {
    const auto found =
        std::ranges::find(texts, window, [](const auto& text) { return text->window; });
    return found == texts.end() ? nullptr : found->get();
}

TextWindow* find_text(const TextSubject& subject) {
    const auto found = std::ranges::find_if(texts, [&](const auto& text) {
        return text->kind == subject.kind && text->project == subject.project &&
               view(text->path) == subject.path;
    });
    return found == texts.end() ? nullptr : found->get();
}

long on_key(Window window, const CharacterEvent& key) {
    constexpr int k_escape = 27;
    constexpr int k_control_w = 'W' - 'A' + 1;
    if (key.code == k_escape || key.code == k_control_w) {
        xvt_vobj_destroy(window);
        return 0;
    }
    const TextWindow* text = find_text(window);
    if (text == nullptr || text->project == Window::none)
        return 1;
    return g_hooks.take_key(text->project, key) ? 0 : 1;
}

/// Says in the title, and to the project, whether a program runs.
void show_program(const TextWindow& text) {
    const bool runs = text.program != nullptr && text.program->running();
    xvt_vobj_set_title(text.window, runs ? view(format_message(msg_text_runs, text.title.c_str()))
                                         : view(text.title));
    if (text.project != Window::none)
        g_hooks.show_program(text.project);
}

void on_destruction(Window window) {
    const TextWindow* text = find_text(window);
    if (text == nullptr)
        return;
    const Window project = text->project;
    std::erase_if(texts, [window](const auto& each) { return each->window == window; });
    if (project != Window::none)
        g_hooks.show_program(project);
}

long on_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        xvt_ctl_create({.parent = window,
                        .kind = ControlKind::output,
                        .id = k_output,
                        .rect = xvt_vobj_get_client_rect(window)});
    } else if (event.get<SizeEvent>() != nullptr) {
        xvt_vobj_move(output_of(window), xvt_vobj_get_client_rect(window));
    } else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained) {
        xvt_vobj_set_focus(output_of(window));
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return on_key(window, *key);
    } else if (event.get<CloseEvent>() != nullptr) {
        xvt_vobj_destroy(window);
    } else if (event.get<DestructionEvent>() != nullptr) {
        on_destruction(window);
    }
    return event.type() == EventType::wheel ? 1 : 0;
}

/// Why there is no result, of a program that has not told it.
void append_cause(TextWindow& text, const char* program) {
    const SpawnerEnd& end = text.program->end();
    if (end.has_told)
        return;
    if (!end.process)
        append_line(text, view(format_message(msg_program_given_up, program)));
    else if (end.process->by_signal)
        append_line(text, view(format_message(msg_program_crashed, program, end.process->code)));
    else
        append_line(text, view(format_message(end.has_spoken ? msg_program_broke_off
                                                             : msg_program_never_spoke,
                                              program, end.process->code)));
}

void on_words(void* context, const char* words, int done, int status) {
    auto& text = from_context<TextWindow>(context);
    if (done == 0) {
        append_text(text, words);
        return;
    }
    append_cause(text, text.name.c_str());
    show_program(text);
    text.ended(text, status);
}

} // namespace

void register_text_windows(const TextHooks& hooks) {
    texts.clear();
    g_hooks = hooks;
    xvt_res_register({.windows = k_windows});
}

TextWindow* open_text_window(const TextSubject& subject, std::string_view title) {
    TextWindow* text = find_text(subject);
    if (text == nullptr) {
        const Window window =
            xvt_win_create_res(static_cast<int>(subject.kind), {on_event, nullptr});
        if (window == Window::none) {
            post_error(msg_no_project_window);
            return nullptr;
        }
        texts.push_back(make_owned<TextWindow>(TextWindow{.window = window,
                                                          .kind = subject.kind,
                                                          .project = subject.project,
                                                          .path = String(subject.path)}));
        text = texts.back().get();
        associate_help({.window = window}, subject.kind == TextKind::compile_output
                                               ? HelpTopic::messages
                                               : HelpTopic::reports);
    }
    text->program.reset();
    text->title = title;
    show_program(*text);
    set_text(*text, {});
    xvt_vobj_raise(text->window);
    return text;
}

bool is_speaking(const TextSubject& subject) {
    const TextWindow* text = find_text(subject);
    return text != nullptr && text->program != nullptr && text->program->running();
}

void raise_text_window(const TextSubject& subject) {
    if (const TextWindow* text = find_text(subject))
        xvt_vobj_raise(text->window);
}

void close_text_windows(Window project) {
    Vector<Window> windows;
    for (const Owned<TextWindow>& text : texts)
        if (text->project == project)
            windows.push_back(text->window);
    for (const Window window : windows)
        xvt_vobj_destroy(window);
}

void set_text(TextWindow& text, std::string_view words) {
    xvt_output_set_text(output_of(text.window), words);
    text.at_line_start = words.empty() || words.back() == '\n';
}

void append_text(TextWindow& text, std::string_view words) {
    if (words.empty())
        return;
    xvt_output_append(output_of(text.window), words);
    text.at_line_start = words.back() == '\n';
}

void append_line(TextWindow& text, std::string_view words) {
    String line(text.at_line_start ? "" : "\n");
    line += words;
    append_text(text, view(line += '\n'));
}

void run_program_in(TextWindow& text, const Vector<String>& words,
                    void (*ended)(TextWindow& text, int status)) {
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
