#include "windows/workspace/device_dialog.h"

#include "core/common/blanks.h"
#include "core/common/callback.h"
#include "core/devices/messages.h"
#include "core/project/directives.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/toolkit/dialog.h"
#include "windows/workspace/device_pick.h"
#include "windows/workspace/directive_search.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/option_edits.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_dialog = 129;
constexpr int k_fault_row = 1;
constexpr int k_filter_row = 2;
constexpr int k_device_list = 3;
constexpr int k_package_list = 4;
constexpr int k_device_field = 5;
constexpr int k_package_field = 6;
constexpr int k_said_row = 7;
constexpr int k_take_row = 8;
constexpr int k_package_lines = 8;

constexpr std::array k_rows{
    DialogRowResource{k_fault_row, DialogRowKind::text},
    DialogRowResource{k_filter_row, DialogRowKind::edit, "&Find:"},
    DialogRowResource{k_device_list, DialogRowKind::list, "&Device:"},
    DialogRowResource{k_package_list, DialogRowKind::list, "&Package:"},
    DialogRowResource{k_device_field, DialogRowKind::edit, "&Device:"},
    DialogRowResource{k_package_field, DialogRowKind::edit, "&Package:"},
    DialogRowResource{k_said_row, DialogRowKind::text},
    DialogRowResource{k_take_row, DialogRowKind::button, "&Take over"},
};
constexpr std::array k_buttons{k_ok, k_cancel};
constexpr std::array k_dialogs{DialogResource{.number = k_dialog,
                                              .title = "Device",
                                              .rows = k_rows,
                                              .buttons = k_buttons,
                                              .help_topic = static_cast<int>(HelpTopic::device)}};

/// What stands in a line of a list, where line ends and tabs part the entries and their texts.
String one_line(String text) {
    std::ranges::replace(text, '\n', ' ');
    std::ranges::replace(text, '\t', ' ');
    return text;
}

String lines_of(const Vector<PickEntry>& entries) {
    String lines;
    for (const PickEntry& entry : entries) {
        if (entry.name.empty())
            lines += format_message(msg_no_device);
        else if (entry.is_known)
            lines += one_line(entry.name);
        else
            lines += format_message(msg_unknown_device, one_line(entry.name).c_str());
        for (const String& text : entry.more)
            (lines += '\t') += one_line(text);
        lines += '\n';
    }
    return lines;
}

/// As the directive lines have it, but for a group its switches.
String words_of(const SaidDirectives& said) {
    String words;
    const std::pair<const char*, const String&> parts[] = {
        {"DEVICE ", said.device}, {"PACKAGE ", said.package}, {"GROUP ", said.options}};
    for (const auto& [keyword, text] : parts)
        if (!text.empty())
            ((words += words.empty() ? "" : ", ") += keyword) += text;
    return words;
}

String line_of_top(const SaidDirectives& top) {
    if (top.file.empty())
        return format_message(msg_top_missing);
    if (!top.is_read)
        return format_message(msg_top_unreadable, top.file.c_str());
    if (top.is_silent())
        return format_message(msg_top_silent, top.file.c_str());
    return format_message(msg_top_says, top.file.c_str(), words_of(top).c_str());
}

String line_of_other(const DirectiveSearch& search) {
    if (search.is_running())
        return format_message(msg_looking_for_device);
    const SaidDirectives& other = search.other();
    return other.file.empty()
               ? format_message(msg_no_device_said)
               : format_message(msg_file_says, other.file.c_str(), words_of(other).c_str());
}

void set_text(NullableText& text, const String& value) {
    text.clear();
    if (!value.empty())
        text.assign(view(value));
}

/// The dialog while it stands.
class DeviceDialog {
public:
    DeviceDialog(const Project& project, DeviceChoices choices);

    /// False when the user cancels.
    [[nodiscard]] bool ask();
    [[nodiscard]] DevicePackage chosen();
    /// What was taken over of directives beside device and package.
    [[nodiscard]] const String& switches() const { return switches_; }
    [[nodiscard]] bool is_made() const { return is_made_; }

private:
    [[nodiscard]] DialogRow& row(int id) { return *find_row(dialog_, id); }
    /// Leaves those that serve with or without a catalogue.
    void make_rows();
    void show();
    void show_lists();
    void show_said();
    void take();
    void on_change(int number);
    /// Whose words can be taken over.
    [[nodiscard]] const SaidDirectives& said() const;

    bool has_catalogue_;
    CatalogueStatus status_;
    DevicePick pick_;
    Dialog dialog_;
    bool is_made_;
    String switches_;
    DirectiveSearch search_;
};

DeviceDialog::DeviceDialog(const Project& project, DeviceChoices choices)
    : has_catalogue_(!choices.devices.empty()), status_(choices.status),
      is_made_(xvt_dlg_create_res(dialog_, k_dialog)),
      search_(
          project,
          [](void* self) {
              auto& dialog = from_context<DeviceDialog>(self);
              dialog.show();
              xvt_dlg_update(dialog.dialog_);
          },
          this) {
    const Source_options& options = project.options;
    pick_.catalogue = std::move(choices.devices);
    pick_.wanted = {String(options.device.view()), String(options.package.view())};
    pick_.named.push_back(pick_.wanted);
    if (is_made_)
        make_rows();
    dialog_.calls = {
        .on_change = [](void* self, Dialog&,
                        int number) { from_context<DeviceDialog>(self).on_change(number); },
        .context = this};
}

void DeviceDialog::make_rows() {
    std::erase_if(dialog_.rows, [this](const DialogRow& each) {
        const bool is_list =
            each.id == k_filter_row || each.id == k_device_list || each.id == k_package_list;
        const bool is_field = each.id == k_device_field || each.id == k_package_field;
        return has_catalogue_
                   ? is_field || (each.id == k_fault_row && status_ == CatalogueStatus::done)
                   : is_list;
    });
    if (status_ != CatalogueStatus::done || !has_catalogue_)
        row(k_fault_row).label =
            format_message(status_ == CatalogueStatus::no_file ? msg_catalogue_no_file
                           : status_ == CatalogueStatus::done  ? msg_catalogue_empty
                                                               : msg_catalogue_damaged);
    if (has_catalogue_) {
        row(k_device_list).columns = {format_message(msg_device_column),
                                      format_message(msg_family_column)};
        row(k_package_list).columns = {format_message(msg_package_column),
                                       format_message(msg_pins_column),
                                       format_message(msg_signals_column)};
        row(k_package_list).lines = k_package_lines;
    } else {
        row(k_device_field).value = pick_.wanted.device;
        row(k_package_field).value = pick_.wanted.package;
    }
}

bool DeviceDialog::ask() {
    for (;;) {
        show();
        const int button = xvt_dlg_ask(dialog_);
        if (button != k_button_rows + k_take_row)
            return button == 0;
        take();
    }
}

DevicePackage DeviceDialog::chosen() {
    if (has_catalogue_)
        return chosen_of(pick_);
    const DevicePackage typed{row(k_device_field).value, row(k_package_field).value};
    // What nobody has typed stays to the byte.
    const auto without_blanks = [](const String& text, const String& before) {
        return text == before ? text : String(trim_blanks(view(text)));
    };
    return {without_blanks(typed.device, pick_.wanted.device),
            without_blanks(typed.package, pick_.wanted.package)};
}

void DeviceDialog::show() {
    if (has_catalogue_)
        show_lists();
    show_said();
}

void DeviceDialog::show_lists() {
    row(k_filter_row).value = pick_.filter;
    const Vector<PickEntry> devices = devices_of(pick_);
    row(k_device_list).value = lines_of(devices);
    row(k_device_list).selected = selected_device(pick_, devices);
    const Vector<PickEntry> packages = packages_of(pick_);
    row(k_package_list).value = lines_of(packages);
    row(k_package_list).selected = selected_package(pick_, packages);
}

void DeviceDialog::show_said() {
    row(k_said_row).label = line_of_top(search_.top());
    if (search_.top().device.empty())
        (row(k_said_row).label += '\n') += line_of_other(search_);
    row(k_take_row).is_enabled = !said().is_silent();
}

const SaidDirectives& DeviceDialog::said() const {
    return search_.other().file.empty() ? search_.top() : search_.other();
}

void DeviceDialog::take() {
    const SaidDirectives& taken = said();
    switches_ = taken.options;
    if (has_catalogue_) {
        take_over(pick_, {taken.device, taken.package});
        return;
    }
    if (!taken.device.empty())
        row(k_device_field).value = taken.device;
    if (!taken.package.empty())
        row(k_package_field).value = taken.package;
}

void DeviceDialog::on_change(int number) {
    if (number == k_filter_row)
        pick_.filter = row(k_filter_row).value;
    else if (number == k_device_list)
        choose_device(pick_, row(k_device_list).selected);
    else if (number == k_package_list)
        choose_package(pick_, row(k_package_list).selected);
    show();
}

} // namespace

void register_device_dialog() {
    xvt_res_register({.dialogs = k_dialogs});
}

void ask_for_device(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    DeviceDialog dialog(*project, read_device_choices());
    if (!dialog.is_made()) {
        post_error(msg_no_dialog);
        return;
    }
    if (!dialog.ask())
        return;
    // The project may have gone meanwhile.
    project = find_project(window);
    if (project == nullptr)
        return;
    const OptionValues from = option_values(*project);
    OptionValues to = from;
    const DevicePackage chosen = dialog.chosen();
    set_text(to.options.device, chosen.device);
    set_text(to.options.package, chosen.package);
    take_switches(to.options, view(dialog.switches()));
    change_options_of_project(window, from, to);
}

} // namespace pellux
