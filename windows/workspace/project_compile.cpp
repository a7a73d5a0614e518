#include "windows/workspace/project_compile.h"

#include "core/common/callback.h"
#include "core/launch/spawner.h"
#include "core/project/compile_arguments.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/boxes.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/project_windows.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_output_window = 109;
constexpr int k_output_text = 1;
constexpr std::array k_windows{
    WindowResource{.number = k_output_window, .title = "Compile", .width = 640, .height = 300}};

/// What the compiler says about a project.
struct CompileOutput {
    Window project = Window::none;
    Window window = Window::none;
    Owned<Spawner> spawner;
    bool at_line_start = true;

    void append(std::string_view text) {
        if (text.empty())
            return;
        xvt_output_append(xvt_win_get_ctl(window, k_output_text), text);
        at_line_start = text.back() == '\n';
    }
};
Vector<Owned<CompileOutput>> outputs;

CompileOutput* find_output(Window project) {
    const auto found =
        std::ranges::find(outputs, project, [](const auto& output) { return output->project; });
    return found == outputs.end() ? nullptr : found->get();
}

void lay_out(Window window) {
    const Rect client = xvt_vobj_get_client_rect(window);
    xvt_vobj_move(xvt_win_get_ctl(window, k_output_text), client);
}

long on_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        xvt_ctl_create({.parent = window, .kind = ControlKind::output, .id = k_output_text});
        lay_out(window);
    } else if (event.get<SizeEvent>() != nullptr) {
        lay_out(window);
    } else if (event.get<CloseEvent>() != nullptr) {
        xvt_vobj_destroy(window);
    } else if (event.get<DestructionEvent>() != nullptr) {
        std::erase_if(outputs, [window](const auto& output) { return output->window == window; });
    }
    return 0;
}

void on_text(void* context, const char* text, int done, int status) {
    auto& output = from_context<CompileOutput>(context);
    if (done == 0) {
        output.append(text);
        return;
    }
    if (!output.at_line_start)
        output.append("\n");
    output.append(format_message(status == 0 ? msg_compile_succeeded : msg_compile_failed));
    output.append("\n");
}

/// The project's output, empty and in front; null when there is no window for it.
CompileOutput* open_output(const OpenProject& open) {
    CompileOutput* output = find_output(open.window);
    if (output == nullptr) {
        const Window window = xvt_win_create_res(k_output_window, {on_event, nullptr});
        if (window == Window::none)
            return nullptr;
        outputs.push_back(make_owned<CompileOutput>());
        output = outputs.back().get();
        output->project = open.window;
        output->window = window;
    }
    xvt_vobj_set_title(output->window,
                       view(format_message(msg_compile_title, open.project->file_name.c_str())));
    xvt_output_clear(xvt_win_get_ctl(output->window, k_output_text));
    output->at_line_start = true;
    xvt_vobj_raise(output->window);
    return output;
}

Vector<CompileEntry> entries_of(const OpenProject& open) {
    Vector<CompileEntry> entries;
    for (const Owned<VHDL_source>& source : open.project->sources)
        entries.push_back({source.get(), false});
    for (const std::size_t index : selected_sources(open.window))
        if (index < entries.size())
            entries[index].selected = true;
    return entries;
}

} // namespace

void register_project_compile() {
    outputs.clear();
    xvt_res_register({.windows = k_windows});
}

void compile_project(Window project, bool all) {
    OpenProject* open = find_open_project(project);
    const CompileOutput* running = find_output(project);
    if (open == nullptr)
        return;
    if (running != nullptr && running->spawner != nullptr && running->spawner->running()) {
        xvt_vobj_raise(running->window);
        return;
    }
    Vector<String> vector;
    const bool is_prepared = prepare_compile(*open->project, entries_of(*open), all, vector);
    show_project_change(project);
    if (!is_prepared)
        return;
    CompileOutput* output = open_output(*open);
    if (output == nullptr) {
        post_error(msg_no_project_window);
        return;
    }
    Vector<const char*> words;
    String line;
    for (const String& word : vector) {
        (line += word) += ' ';
        words.push_back(word.c_str());
    }
    words.push_back(nullptr);
    output->append(view(line += '\n'));
    output->spawner = make_owned<Spawner>(on_text, output);
    if (!output->spawner->launch(words.front(), words.data()))
        post_error(msg_cannot_run_compiler, words.front());
}

void end_project_compile(Window project) {
    if (const CompileOutput* output = find_output(project))
        xvt_vobj_destroy(output->window);
}

} // namespace pellux
