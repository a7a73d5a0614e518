#include "windows/toolkit/help.h"

#include "core/common/containers.h"
#include "core/os/path.h"
#include "windows/toolkit/qt/help/help_file.h"
#include "windows/toolkit/qt/help/help_window.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QFileInfo>
#include <QPointer>
#include <QWindow>

namespace pellux {
namespace {

struct Association {
    HelpSubject subject;
    int topic = 0;
};
struct OpenHelpFile {
    QString path;
    Vector<Association> associations;
};
struct HelpSystem {
    Map<std::uint64_t, OpenHelpFile> files;
    std::uint64_t last_number = 0;
    QPointer<HelpWindow> window;
};

HelpSystem& help_system() {
    static HelpSystem system;
    return system;
}

/// The program changes its directory, so that the path must not depend on it.
QString whole_path(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

/// The help window on `path`, new where there is none; null when the file can't be shown.
HelpWindow* help_window(const QString& path) {
    QPointer<HelpWindow>& window = help_system().window;
    if (!window.isNull() && window->path() == path)
        return window;
    if (!is_help_file(path))
        return nullptr;
    auto* made = new HelpWindow(path);
    if (!made->is_open()) {
        delete made;
        return nullptr;
    }
    delete window.data();
    window = made;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, made, [made] { delete made; });
    return made;
}

/// A modal box lets only those windows be used that stand for it.
void stand_for(HelpWindow& window, const QWidget* box) {
    window.winId();
    QWindow* owner = box == nullptr ? nullptr : box->windowHandle();
    if (window.windowHandle()->transientParent() == owner)
        return;
    // It is looked at when a window is shown.
    window.hide();
    window.windowHandle()->setTransientParent(owner);
}

void bring_to_front(HelpWindow& window) {
    stand_for(window, QApplication::activeModalWidget());
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

bool is_same(const HelpSubject& a, const HelpSubject& b) {
    return a.window == b.window && a.control == b.control && a.command == b.command;
}

/// 0 for none.
int topic_of(const OpenHelpFile& file, const HelpSubject& subject) {
    for (const Association& association : file.associations) {
        if (is_same(association.subject, subject))
            return association.topic;
    }
    return 0;
}

/// What the event is about, from the closest to the widest: the command, the control, the window
/// and those that it stands in.
int topic_of(const OpenHelpFile& file, Window window, const HelpEvent& event) {
    int topic = event.topic;
    if (topic == 0 && event.command != 0)
        topic = topic_of(file, {.command = event.command});
    for (; topic == 0 && window != Window::none; window = xvt_vobj_get_parent(window)) {
        if (event.command != 0)
            topic = topic_of(file, {.window = window, .command = event.command});
        if (topic == 0 && event.control != 0)
            topic = topic_of(file, {.window = window, .control = event.control});
        if (topic == 0)
            topic = topic_of(file, {.window = window});
    }
    return topic;
}

} // namespace

HelpFile xvt_help_open_helpfile(std::string_view directory, std::string_view name,
                                HelpCheck check) {
    PathBuffer path;
    if (!path.assign(directory) || !path.join(name) || !path.append(".hlp"))
        return HelpFile::none;
    const QString whole = whole_path(to_qstring(path.view()));
    if (!(check == HelpCheck::at_once ? is_help_file(whole) : is_whole_database(whole)))
        return HelpFile::none;
    HelpSystem& system = help_system();
    system.files.emplace(++system.last_number, OpenHelpFile{whole, {}});
    return HelpFile{system.last_number};
}

void xvt_help_close_helpfile(HelpFile file) {
    HelpSystem& system = help_system();
    const auto found = system.files.find(static_cast<std::uint64_t>(file));
    if (found == system.files.end())
        return;
    if (!system.window.isNull() && system.window->path() == found->second.path)
        delete system.window.data();
    system.files.erase(found);
}

bool xvt_help_process_event(HelpFile file, Window window, const Event& event) {
    const auto* asked = event.get<HelpEvent>();
    HelpSystem& system = help_system();
    const auto found = system.files.find(static_cast<std::uint64_t>(file));
    if (asked == nullptr || found == system.files.end())
        return false;
    HelpWindow* shown = help_window(found->second.path);
    if (shown == nullptr)
        return false;
    const int topic = topic_of(found->second, window, *asked);
    if (topic == 0)
        shown->show_home();
    else
        shown->show_topic(topic);
    bring_to_front(*shown);
    return true;
}

bool xvt_help_show_contents(std::string_view path) {
    HelpWindow* shown = help_window(whole_path(to_qstring(path)));
    if (shown == nullptr)
        return false;
    shown->show_home();
    bring_to_front(*shown);
    return true;
}

void xvt_help_associate(HelpFile file, const HelpSubject& subject, int topic) {
    HelpSystem& system = help_system();
    const auto found = system.files.find(static_cast<std::uint64_t>(file));
    if (found == system.files.end())
        return;
    // The newest counts, and those of windows that are gone are let go.
    std::erase_if(found->second.associations, [&subject](const Association& association) {
        const Window about = association.subject.window;
        return is_same(association.subject, subject) ||
               (about != Window::none && !xvt_vobj_is_valid(about));
    });
    found->second.associations.push_back({subject, topic});
}

} // namespace pellux
