#include "windows/controls/boxes.h"

#include "core/common/text_file.h"
#include "core/project/messages.h"
#include "windows/controls/messages.h"

namespace pellux {

int ask_carefully(const String& text, std::initializer_list<const char*> buttons) {
    Question question;
    question.kind = QuestionKind::ask;
    question.text = text;
    for (const char* button : buttons)
        question.buttons.emplace_back(button);
    question.closing_is_no = false;
    return ask(question).button;
}

void tell_outcome(const String& path, const WriteOutcome& outcome) {
    const auto warn = [](const String& text) { xvt_dm_post_warning("%s", text.c_str()); };
    if (failed(outcome.error))
        post_error(msg_file_unwritten, path.c_str(), error_text(outcome.error).c_str());
    else if (outcome.attributes_lost)
        warn(format_message(msg_file_attributes_lost, path.c_str()));
    if (failed(outcome.directory_error))
        warn(format_message(msg_directory_behind, path.c_str(),
                            error_text(outcome.directory_error).c_str()));
    tell_old_contents(path, outcome.old_contents);
}

void tell_old_contents(const String& path, std::string_view old_contents) {
    if (!old_contents.empty())
        post_error(msg_file_old_contents, path.c_str(), String(old_contents).c_str());
}

bool wants_new_version(std::string_view path, const FileIdentity& loaded, bool is_modified) {
    if (changed_on_disk(path, loaded) != DiskState::changed)
        return false;
    const String text =
        format_message(is_modified ? msg_changed_twice : msg_changed_on_disk, String(path).c_str());
    return xvt_dm_post_ask(k_yes, k_no, nullptr, "%s", text.c_str()) == 0;
}

} // namespace pellux
