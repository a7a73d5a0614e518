#include "windows/editor/differences_window.h"

#include "core/common/text_file.h"
#include "core/text/line_differences.h"
#include "core/text/text_storage.h"
#include "windows/controls/boxes.h"
#include "windows/controls/button_row.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/editor/messages.h"
#include "windows/textview/text_output.h"
#include "windows/textview/window_list.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_window = 2001;
constexpr std::array k_windows{WindowResource{.number = k_window, .width = 720, .height = 440}};

constexpr int k_restore = 1;
constexpr int k_close = 2;
constexpr std::array k_buttons{RowButton{k_restore, "&Restore"}, RowButton{k_close, "&Close"}};
constexpr int k_escape = 27;

class DifferencesWindow final : public TextWindow {
public:
    explicit DifferencesWindow(const DifferencesSubject& of) : subject(of) {}

    const DifferencesSubject subject;

    void lay_out() override;
    static void draw(void* context, TextView& view, const TextSegment& segment);

protected:
    long on_event(const Event& event) override;
    bool take_key(const CharacterEvent& key) override;

private:
    void run(int button);

    char mark_ = ' '; ///< of the line that is being drawn
};

WindowList<DifferencesWindow> windows;

void DifferencesWindow::lay_out() {
    place_text(lay_out_button_row(window(), k_buttons));
}

/// What was lost and what is new differ in their colours as in their marks.
void DifferencesWindow::draw(void* context, TextView& view, const TextSegment& segment) {
    auto& self = *static_cast<DifferencesWindow*>(context);
    constexpr Color k_lost = make_color(176, 32, 32);
    constexpr Color k_new = make_color(16, 120, 48);
    if (segment.starts_line)
        self.mark_ = segment.text.empty() ? ' ' : segment.text.front();
    if (!segment.is_seen)
        return;
    if (!segment.is_selected)
        xvt_dwin_set_fore_color(view.target, self.mark_ == '-'   ? k_lost
                                             : self.mark_ == '+' ? k_new
                                             : self.mark_ == '@' ? Color::gray
                                                                 : Color::black);
    xvt_dwin_draw_text(view.target, segment.x, segment.baseline, segment.text);
    if (!segment.is_selected)
        xvt_dwin_set_fore_color(view.target, Color::black);
}

void DifferencesWindow::run(int button) {
    if (button == k_restore && !subject.restore(subject))
        return;
    if (has_view())
        xvt_vobj_destroy(window());
}

bool DifferencesWindow::take_key(const CharacterEvent& key) {
    if (key.code != k_escape && key.letter != 'W')
        return TextWindow::take_key(key);
    xvt_vobj_destroy(window());
    return true;
}

long DifferencesWindow::on_event(const Event& event) {
    if (event.get<CreationEvent>() != nullptr)
        create_button_row(window(), k_buttons);
    if (const auto* control = event.get<ControlEvent>();
        control != nullptr && (control->id == k_restore || control->id == k_close)) {
        run(control->id);
        return 0;
    }
    if (event.get<CloseEvent>() != nullptr) {
        xvt_vobj_destroy(window());
        return 0;
    }
    if (event.get<DestructionEvent>() != nullptr)
        windows.forget(*this);
    return TextWindow::on_event(event);
}

DifferencesWindow* make_window(const DifferencesSubject& subject) {
    DifferencesWindow* made = &windows.add(subject);
    if (xvt_win_create_res(k_window, {TextWindow::handle, made}) == Window::none) {
        windows.forget(*made);
        post_error(msg_no_editor_window);
        return nullptr;
    }
    made->set_read_only(true);
    made->view().editing.undo_limit = 0;
    set_draw_callback(made->view(), DifferencesWindow::draw, made);
    associate_help({.window = made->window()}, HelpTopic::editor);
    const String title = format_message(
        msg_differences, subject.file.empty() ? format_message(msg_untitled).c_str()
                                              : String(file_name_part(view(subject.file))).c_str());
    xvt_vobj_set_title(made->window(), view(title));
    return made;
}

} // namespace

void register_differences_windows() {
    windows.all.clear();
    xvt_res_register({.windows = k_windows});
}

void show_differences(const DifferencesSubject& subject, const TextDocument& file,
                      const TextDocument& copy) {
    constexpr std::size_t k_most_bytes = std::size_t{4} << 20;
    const auto found = std::ranges::find_if(
        windows.all, [&](const auto& each) { return each->subject.copy == subject.copy; });
    DifferencesWindow* window = found != windows.all.end() ? found->get() : make_window(subject);
    if (window == nullptr)
        return;
    const String text = differences_text(file, copy, k_most_bytes);
    set_output(window->view(),
               text.empty() ? view(format_message(msg_no_differences)) : view(text));
    xvt_vobj_raise(window->window());
}

void show_text_differences(const DifferencesSubject& subject) {
    const Owned<TextDocument> file = make_owned<TextDocument>();
    const Owned<TextDocument> copy = make_owned<TextDocument>();
    if (!subject.file.empty())
        static_cast<void>(load_text(*file, view(subject.file), user_encoding()));
    const TextLoad load = load_text(*copy, view(subject.copy), user_encoding());
    if (failed(load.error))
        post_error(msg_file_unreadable, subject.copy.c_str(), error_text(load.error).c_str());
    else
        show_differences(subject, *file, *copy);
}

void close_differences_windows(Window project) {
    Vector<Window> closed;
    for (const Owned<DifferencesWindow>& each : windows.all)
        if (each->subject.project == project)
            closed.push_back(each->window());
    for (const Window window : closed)
        xvt_vobj_destroy(window);
}

} // namespace pellux
