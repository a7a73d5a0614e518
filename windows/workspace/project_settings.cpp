#include "windows/workspace/project_settings.h"

#include "windows/toolkit/message_box.h"
#include "windows/toolkit/page_setup.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

namespace pellux {

void choose_list_font(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    Font font = list_font_of(*open->project);
    if (!xvt_dm_post_font_sel(font))
        return;
    OpenProject* now = find_open_project(window);
    if (now == nullptr)
        return;
    Font_spec& kept = now->project->list_font;
    kept.face.assign(view(xvt_font_get_family(font)));
    kept.size = font.size;
    kept.style = font.style;
    show_list_font(window, *now->project);
    show_project_change(window);
}

void set_up_page(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    PrintRecord record = xvt_print_get_default();
    const bool is_set_up = read_print_record(open->project->print_record, record);
    const PrintRecord before = record;
    if (!xvt_dm_post_page_setup(record))
        return;
    OpenProject* now = find_open_project(window);
    // A record that says the same may say more, which a later version has put there.
    if (now == nullptr || (is_set_up && record == before))
        return;
    now->project->print_record = write_print_record(record);
    show_project_change(window);
}

} // namespace pellux
