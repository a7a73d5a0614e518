#include "windows/workspace/project_font.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/font.h"
#include "windows/toolkit/message_box.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/project_windows.h"

namespace pellux {
namespace {

/// The desktop's where the project names none.
Font font_of(const Project& project) {
    const Font_spec& kept = project.list_font;
    Font font = xvt_font_get_default();
    if (kept.face.present() && !kept.face.view().empty())
        xvt_font_set_family(font, kept.face.view());
    if (kept.size > 0)
        xvt_font_set_size(font, kept.size);
    xvt_font_set_style(font, static_cast<std::uint16_t>(kept.style & 0xFFFF));
    return font;
}

} // namespace

void show_list_font(Window window, const Project& project) {
    xvt_list_set_font(project_list(window), font_of(project));
}

void choose_list_font(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    Font font = font_of(*open->project);
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

} // namespace pellux
