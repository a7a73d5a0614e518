#include "windows/controls/help_topics.h"

#include "core/common/containers.h"
#include "windows/toolkit/window.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_waiting_step = 50;

struct Waiting {
    HelpSubject subject;
    HelpTopic topic = HelpTopic::contents;
};
struct ProgramHelp {
    HelpFile file = HelpFile::none;
    Vector<Waiting> waiting;
};
ProgramHelp program_help;

} // namespace

void associate_help(const HelpSubject& subject, HelpTopic topic) {
    if (program_help.file != HelpFile::none) {
        xvt_help_associate(program_help.file, subject, static_cast<int>(topic));
        return;
    }
    Vector<Waiting>& waiting = program_help.waiting;
    // Without a file, windows come and go for as long as the program runs.
    std::erase_if(waiting, [](const Waiting& entry) {
        return entry.subject.window != Window::none && !xvt_vobj_is_valid(entry.subject.window);
    });
    if (waiting.size() == waiting.capacity())
        waiting.reserve(waiting.size() + k_waiting_step);
    waiting.push_back({subject, topic});
}

void set_help_file(HelpFile file) {
    program_help.file = file;
    for (const Waiting& entry : std::exchange(program_help.waiting, {}))
        xvt_help_associate(file, entry.subject, static_cast<int>(entry.topic));
}

HelpFile help_file() {
    return program_help.file;
}

} // namespace pellux
