#include "core/text/text_storage.h"
#include "windows/textview/text_window.h"
#include "windows/toolkit/app.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/timer.h"

#include <cstdio>
#include <string>

// text_pages FILE [FILE]: texts to be changed, side by side, for the script that types into them.
// Ctrl+S writes a text into its file, Ctrl+Q ends the program.

namespace {

using namespace pellux;

constexpr int k_width = 400;
constexpr int k_height = 300;
constexpr int k_apart = 440;
constexpr WindowResource k_windows[] = {
    {.number = 1, .title = "Page", .width = k_width, .height = k_height}};

class Page final : public TextWindow {
public:
    explicit Page(const char* path) : path_(path) {
        static_cast<void>(load_text(document(), path, user_encoding()));
    }
    void open() override { xvt_win_create_res(1, {handle, this}); }
    void move_to(int left) {
        xvt_vobj_move(window(), {k_top, left, k_top + k_height, left + k_width});
    }
    bool save() override {
        SafeWriter writer;
        return !failed(save_text(document(), path_, writer));
    }

protected:
    bool take_key(const CharacterEvent& key) override {
        if (key.letter == 'S')
            return save();
        if (key.letter == 'Q')
            xvt_app_destroy();
        return key.letter == 'Q' || TextWindow::take_key(key);
    }
    void show_words(std::string_view words) override {
        std::printf("%.*s\n", static_cast<int>(words.size()), words.data());
        std::fflush(stdout);
    }

private:
    static constexpr int k_top = 40;

    const char* path_;
};

struct Pages {
    Page first;
    Page second;
};

long on_task_event(void* context, Window window, const Event& event) {
    auto& pages = *static_cast<Pages*>(context);
    if (event.type() == EventType::creation) {
        pages.second.open();
        pages.first.open();
        xvt_timer_create(window, 0);
    } else if (const auto* timer = event.get<TimerEvent>()) {
        // The desktop has given the windows their first places.
        xvt_timer_destroy(timer->timer);
        pages.second.move_to(k_apart);
        pages.first.move_to(0);
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("usage: text_pages FILE FILE\n", stderr);
        return 2;
    }
    int toolkit_arguments = 1;
    xvt_app_start(toolkit_arguments, arguments);
    xvt_res_register({.windows = k_windows});
    Pages pages{Page(arguments[1]), Page(arguments[2])};
    const int status = xvt_app_create(
        {.base_name = "pages", .name = "Pages", .task_title = "Pages"}, {on_task_event, &pages});
    xvt_app_end();
    return status;
}
