#include "windows/controls/toolbar.h"

#include "core/common/utf8.h"
#include "core/diagnostics/message.h"
#include "windows/controls/control_looks.h"
#include "windows/controls/control_report.h"
#include "windows/controls/property_text.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar_layout.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace pellux {
namespace {

struct ToolbarEntry {
    int id = 0;
    Window control = Window::none; ///< none for a separator
    ToolbarPart type = ToolbarPart::none;
    Rect rect;
};

constexpr std::size_t k_title_characters_max = 30;

struct Toolbar {
    String title; ///< for a screen reader
    ToolbarSettings settings;
    Vector<ToolbarEntry> entries;
    int next_position = 0;
    int width = 0;
    int height = 0;
};

Map<Window, Toolbar> toolbars;

Toolbar* find_toolbar(Window window) {
    const auto found = toolbars.find(window);
    return found == toolbars.end() ? nullptr : &found->second;
}

const ToolbarEntry* find_entry(const Toolbar& bar, int id) {
    const auto found =
        std::find_if(bar.entries.begin(), bar.entries.end(), [&](const ToolbarEntry& entry) {
            return entry.id == id && entry.control != Window::none;
        });
    return found == bar.entries.end() ? nullptr : &*found;
}

// Controls.

/// The way of one character in the bar's font, on average.
int character_width(Window window) {
    constexpr std::string_view k_sample = "abcdefghijklmnopqrstuvwxyz";
    const int all = xvt_dwin_get_text_width(window, k_sample);
    return (all + static_cast<int>(k_sample.size()) - 1) / static_cast<int>(k_sample.size());
}

Window create_native(Window window, ControlKind kind, const ToolbarItem& item, const Rect& rect) {
    const Window control = xvt_ctl_create(
        {.parent = window, .kind = kind, .id = item.id, .title = view(item.title), .rect = rect});
    xvt_vobj_set_tool_tip(control, view(item.description));
    return control;
}

Window create_list(Window window, ControlKind kind, const ToolbarItem& item, Rect rect,
                   const Toolbar& bar) {
    // An opened list is a window of its own: in the bar it needs the bar's room only.
    rect.bottom = std::min(rect.bottom, std::max(rect.top, bar.height - bar.settings.top_offset));
    const Window control = create_native(window, kind, item, rect);
    xvt_list_set_items(control, item.items);
    if (item.selection >= 0 && std::cmp_less(item.selection, item.items.size()))
        xvt_list_set_selection(control, item.selection);
    return control;
}

String size_text(const Rect& rect) {
    return format_text("%dx%d", width(rect), height(rect));
}

String place_text(const Rect& rect) {
    return format_text("%d,%d", rect.left, rect.top);
}

Window create_toggle(Window window, const Toolbar& bar, const ToolbarItem& item, const Rect& rect) {
    Vector<String> lines;
    lines.emplace_back(item.title.empty() ? k_no_title : view(item.title));
    lines.push_back("SIZE=" + size_text(rect));
    lines.push_back("POS=" + place_text(rect));
    lines.emplace_back(item.type == ToolbarPart::picture_button ? "STATE=PUSH" : "STATE=UP");
    if (!item.description.empty())
        lines.push_back(format_text("DESC=\"%s\"", item.description.c_str()));
    if (item.resource_id > 0)
        lines.push_back(format_text("IMAGE=%d", item.resource_id));
    lines.push_back("FILL_COLOR=" + color_text(bar.settings.fill));
    lines.push_back("TEXT_COLOR=" + color_text(bar.settings.text));
    const Vector<std::string_view> properties(lines.begin(), lines.end());
    const Window control = xvt_cxo_create({.class_name = k_toggle_button_class,
                                           .parent = window,
                                           .id = item.id,
                                           .rect = rect,
                                           .title = view(item.title),
                                           .properties = properties,
                                           .takes_focus = true,
                                           .takes_tab = true});
    xvt_dwin_set_font(control, xvt_dwin_get_font(window));
    return control;
}

/// None for a separator, and for what can't be made.
Window create_control(Window window, const Toolbar& bar, const ToolbarItem& item,
                      const Rect& rect) {
    switch (item.type) {
    case ToolbarPart::button:
        return create_native(window, ControlKind::button, item, rect);
    case ToolbarPart::list_button:
        return create_list(window, ControlKind::list_button, item, rect, bar);
    case ToolbarPart::list_edit:
        return create_list(window, ControlKind::list_edit, item, rect, bar);
    case ToolbarPart::picture_button:
    case ToolbarPart::toggle_button:
    case ToolbarPart::toggle_text:
        return create_toggle(window, bar, item, rect);
    case ToolbarPart::none:
    case ToolbarPart::custom:
    case ToolbarPart::separator:
        break;
    }
    return Window::none;
}

const char* debug_name(ToolbarPart type) {
    switch (type) {
    case ToolbarPart::button:
        return "BUTTON";
    case ToolbarPart::list_button:
        return "LISTBUTTON";
    case ToolbarPart::list_edit:
        return "LISTEDIT";
    case ToolbarPart::picture_button:
        return "PICBUTN";
    case ToolbarPart::toggle_button:
        return "TOGLBUTN";
    case ToolbarPart::toggle_text:
        return "TOGLTEXT";
    case ToolbarPart::custom:
        return "CUSTOM";
    case ToolbarPart::none:
    case ToolbarPart::separator:
        break;
    }
    return "SEPARATOR";
}

void debug_added(const Toolbar& bar, const ToolbarEntry& entry, const String& title, int width_px) {
    if (!bar.settings.is_debug)
        return;
    switch (entry.type) {
    case ToolbarPart::separator:
        report_control_debug(
            view(format_text("Separator of width=%d being added to toolbar\n", width_px)));
        break;
    case ToolbarPart::picture_button:
    case ToolbarPart::toggle_button:
    case ToolbarPart::toggle_text:
        report_control_debug(view(format_text(
            "TOOLBAR_%s '%s': id=%d, size='%s', POS='%s'", debug_name(entry.type), title.c_str(),
            entry.id, size_text(entry.rect).c_str(), place_text(entry.rect).c_str())));
        break;
    case ToolbarPart::none:
    case ToolbarPart::button:
    case ToolbarPart::list_button:
    case ToolbarPart::list_edit:
    case ToolbarPart::custom:
        report_control_debug(view(format_text("TOOLBAR_%s '%s': id=%d, toolbar index=%d, width=%d",
                                              debug_name(entry.type), title.c_str(), entry.id,
                                              static_cast<int>(bar.entries.size()), width_px)));
        break;
    }
}

/// Takes a control that `make` has made at its place into the bar's table.
template <typename Make>
bool add_entry(Window window, const ToolbarItem& item, Make make) {
    Toolbar* bar = find_toolbar(window);
    if (bar == nullptr)
        return false;
    const bool is_separator = item.type == ToolbarPart::separator;
    if ((item.id < 1 && !is_separator) || item.type == ToolbarPart::none) {
        report_control_error("Need a legal control id and type in toolbar_add_control!");
        return false;
    }
    const int code = static_cast<int>(item.type);
    if (code < 0 || code > k_toolbar_part_max) {
        report_control_error(view(format_text("Toolbar given an illegal control type=%d", code)));
        return false;
    }
    // The font is not loaded for pictures alone.
    const int of_text = shows_text(item.type) ? character_width(window) : 0;
    const ToolbarMeasures measures{bar->width, bar->height, of_text};
    const ToolbarPlace place = place_item(item, bar->settings, measures, bar->next_position);
    ToolbarEntry entry{item.id, Window::none, item.type, place.rect};
    const bool has_room = bar->entries.size() < k_toolbar_controls_max;
    if (has_room && !is_separator && find_entry(*bar, item.id) == nullptr)
        entry.control = make(*bar, place.rect);
    // A control's own class may have ended the bar.
    bar = find_toolbar(window);
    if (bar == nullptr)
        return false;
    if (!has_room || (!is_separator && entry.control == Window::none)) {
        report_control_error(view(format_text("Could not create control #%d in toolbar", item.id)));
        return false;
    }
    debug_added(*bar, entry, item.title, place.width);
    bar->next_position = place.next;
    bar->entries.push_back(entry);
    return true;
}

// Drawing.

constexpr int k_separator_margin_px = 4;

/// A thin line in the middle of the gap.
void draw_separator(Window window, bool is_vertical, const Rect& rect) {
    const int x = (rect.left + rect.right) / 2;
    const int y = (rect.top + rect.bottom) / 2;
    if (is_vertical)
        xvt_dwin_draw_line(window, {rect.left + k_separator_margin_px, y},
                           {rect.right - 1 - k_separator_margin_px, y});
    else
        xvt_dwin_draw_line(window, {x, rect.top + k_separator_margin_px},
                           {x, rect.bottom - 1 - k_separator_margin_px});
}

void draw(Window window, const Toolbar& bar) {
    const bool is_vertical = bar.settings.is_vertical;
    xvt_dwin_clear(window, bar.settings.fill);
    xvt_dwin_set_back_color(window, bar.settings.fill);
    xvt_dwin_set_pen(window, {.color = k_control_defaults.separator});
    for (const ToolbarEntry& entry : bar.entries)
        if (entry.type == ToolbarPart::separator)
            draw_separator(window, is_vertical, entry.rect);
    // The edge to what the window shows beside the bar.
    xvt_dwin_set_pen(window, {.color = bar.settings.is_plain ? k_control_defaults.plain_edge
                                                             : k_control_defaults.edge});
    const Point end{bar.width - 1, bar.height - 1};
    xvt_dwin_draw_line(window, is_vertical ? Point{end.x, 0} : Point{0, end.y}, end);
}

void take_size(Window window, Toolbar& bar) {
    const Rect rect = xvt_vobj_get_client_rect(window);
    bar.width = width(rect);
    bar.height = height(rect);
}

// What happens to it.

void on_creation(Window window) {
    Toolbar& bar = toolbars[window];
    bar.title = first_characters(view(xvt_vobj_get_title(window)), k_title_characters_max);
    xvt_cxo_set_access(window, {.role = ControlRole::tool_bar});
    xvt_vobj_set_name(window, view(bar.title));
    Font font = xvt_font_get_default();
    xvt_font_set_family(font, "helvetica");
    xvt_font_set_style(font, k_control_defaults.font_style);
    xvt_font_set_size(font, k_control_defaults.font_size);
    xvt_dwin_set_font(window, font);
    take_size(window, bar);

    const ToolbarDescription description = parse_toolbar_lines(xvt_cxo_get_properties(window));
    bar.settings = description.settings;
    bar.next_position = first_position(bar.settings);
    for (const String& error : description.errors)
        report_control_error(view(error));
    for (const ToolbarItem& item : description.items)
        toolbar_add_control(window, item);
    if (!bar.settings.is_debug)
        return;
    report_control_debug(
        view(format_text("TOOLBAR created @ win=%ld with %d controls", static_cast<long>(window),
                         static_cast<int>(bar.entries.size()))));
    if (!bar.settings.is_autosized)
        report_control_debug("Toolbar is NOT autosized");
}

/// Tells the owner of what happened to one of the controls.
void tell_owner(Window window, const Toolbar& bar, int id, const Event& cause) {
    const ToolbarEntry* entry = find_entry(bar, id);
    if (entry == nullptr)
        return;
    xvt_cxo_notify(window, {.number = k_toolbar_notice,
                            .part_id = entry->id,
                            .part_type = static_cast<int>(entry->type),
                            .cause = &cause});
}

/// Gives the focus to the next control that can have it, from the one that has it round the bar.
bool move_focus(const Toolbar& bar, bool forwards) {
    const auto& entries = bar.entries;
    const auto focused =
        std::find_if(entries.begin(), entries.end(),
                     [](const ToolbarEntry& entry) { return xvt_vobj_has_focus(entry.control); });
    if (focused == entries.end())
        return false;
    const auto count = std::ssize(entries);
    const auto from = focused - entries.begin();
    for (std::ptrdiff_t step = 1; step < count; ++step) {
        const auto index =
            static_cast<std::size_t>((from + (forwards ? step : count - step)) % count);
        const ToolbarEntry& entry = entries[index];
        if (entry.control != Window::none && xvt_vobj_is_enabled(entry.control)) {
            xvt_vobj_set_focus(entry.control);
            break;
        }
    }
    return true;
}

long on_character(Window window, const Toolbar& bar, const Event& event, int code) {
    constexpr int k_tab = 9;
    constexpr int k_escape = 27;
    const bool is_back = code == static_cast<int>(KeyCode::left) ||
                         (bar.settings.is_vertical && code == static_cast<int>(KeyCode::up));
    const bool is_on = code == static_cast<int>(KeyCode::right) ||
                       (bar.settings.is_vertical && code == static_cast<int>(KeyCode::down));
    if ((is_back || is_on) && move_focus(bar, is_on))
        return 0;
    const Window owner = xvt_vobj_get_parent(window);
    if (code != k_tab && code != k_escape)
        return xvt_win_dispatch_event(owner, event);
    xvt_vobj_set_focus(owner);
    return 0;
}

} // namespace

bool toolbar_add_control(Window toolbar, const ToolbarItem& item) {
    return add_entry(toolbar, item, [&](const Toolbar& bar, const Rect& rect) {
        return create_control(toolbar, bar, item, rect);
    });
}

bool toolbar_add_custom_control(Window toolbar, const ToolbarCustomControl& control) {
    ToolbarItem item;
    item.type = ToolbarPart::custom;
    item.id = control.id;
    item.title = control.title;
    item.width = control.width;
    return add_entry(toolbar, item, [&](const Toolbar&, const Rect& rect) {
        return xvt_cxo_create({.class_name = control.class_name,
                               .parent = toolbar,
                               .id = control.id,
                               .rect = rect,
                               .title = control.title,
                               .properties = control.properties,
                               .takes_focus = control.takes_focus});
    });
}

void toolbar_delete_all_controls(Window toolbar) {
    Toolbar* bar = find_toolbar(toolbar);
    if (bar == nullptr)
        return;
    bar->next_position = first_position(bar->settings);
    const Vector<ToolbarEntry> gone = std::exchange(bar->entries, {});
    for (const ToolbarEntry& entry : gone)
        xvt_vobj_destroy(entry.control);
    xvt_dwin_invalidate_rect(toolbar, xvt_vobj_get_client_rect(toolbar));
}

void toolbar_force_update(Window toolbar) {
    const Toolbar* bar = find_toolbar(toolbar);
    if (bar == nullptr)
        return;
    const auto update = [](Window window) {
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
        xvt_dwin_update(window);
    };
    update(toolbar);
    for (const ToolbarEntry& entry : bar->entries)
        update(entry.control);
}

Window toolbar_get_control(Window toolbar, int id) {
    const Toolbar* bar = find_toolbar(toolbar);
    const ToolbarEntry* entry = bar == nullptr ? nullptr : find_entry(*bar, id);
    return entry == nullptr ? Window::none : entry->control;
}

void toolbar_autosize(Window toolbar) {
    const Toolbar* bar = find_toolbar(toolbar);
    if (bar == nullptr || !bar->settings.is_autosized)
        return;
    const Window around =
        bar->settings.is_task_window ? xvt_win_get_task() : xvt_vobj_get_parent(toolbar);
    const Rect room = xvt_vobj_get_client_rect(around);
    const Rect rect = bar->settings.is_vertical ? Rect{0, 0, height(room), bar->width}
                                                : Rect{0, 0, bar->height, width(room)};
    const bool is_debug = bar->settings.is_debug;
    xvt_vobj_move(toolbar, rect);
    if (is_debug)
        report_control_debug(view(format_text("toolbar_autosize autosized toolbar to parent: %dx%d",
                                              width(rect), height(rect))));
}

long toolbar_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr)
        on_creation(window);
    Toolbar* bar = find_toolbar(window);
    if (bar == nullptr)
        return 0;
    if (event.get<SizeEvent>() != nullptr) {
        take_size(window, *bar);
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
    } else if (event.get<UpdateEvent>() != nullptr)
        draw(window, *bar);
    else if (const auto* character = event.get<CharacterEvent>())
        return on_character(window, *bar, event, character->code);
    else if (const auto* control = event.get<ControlEvent>())
        tell_owner(window, *bar, control->id, event);
    else if (const auto* notice = event.get<NoticeEvent>())
        tell_owner(window, *bar, notice->id, event);
    else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained)
        xvt_vobj_set_focus(xvt_vobj_get_parent(window));
    else if (event.get<DestructionEvent>() != nullptr)
        toolbars.erase(window);
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace pellux
