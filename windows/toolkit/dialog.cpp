#include "windows/toolkit/dialog.h"

#include "core/common/callback.h"
#include "windows/toolkit/resource.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

constinit std::uint64_t g_last_dialog = 0;

} // namespace

bool xvt_dlg_create_res(Dialog& dialog, int resource) {
    const DialogResource* found = xvt_res_get_dialog(resource);
    if (found == nullptr)
        return false;
    if (dialog.question_.dialog != 0)
        ask_end_dialog(dialog.question_.dialog);
    dialog.is_open_ = false;
    Question& question = dialog.question_;
    question = {};
    question.kind = QuestionKind::dialog;
    dialog.title = found->title;
    question.help_topic = found->help_topic;
    question.image = found->image;
    question.dialog = ++g_last_dialog;
    question.watcher = {Dialog::on_act, &dialog};
    dialog.buttons.assign(found->buttons.begin(), found->buttons.end());
    dialog.disabled_buttons = 0;
    dialog.rows.clear();
    for (const DialogRowResource& row : found->rows) {
        DialogRow& made = dialog.rows.emplace_back();
        made.id = row.id;
        made.kind = row.kind;
        made.label = row.label;
        made.length_max = row.length_max;
        made.selected = row.kind == DialogRowKind::list ? -1 : 0;
        made.is_beside = row.is_beside;
        made.hint = row.hint;
        made.least = row.least;
        made.most = row.most;
    }
    return true;
}

Dialog::~Dialog() {
    if (is_gone_ != nullptr)
        *is_gone_ = true;
    if (question_.dialog != 0)
        ask_end_dialog(question_.dialog);
}

const Question& Dialog::shown_question() {
    question_.title = title;
    question_.rows = rows;
    question_.buttons = buttons;
    question_.disabled_buttons = disabled_buttons;
    return question_;
}

void Dialog::on_act(void* context, const DialogAct& act) {
    from_context<Dialog>(context).hear(act);
}

void Dialog::hear(const DialogAct& act) {
    rows = act.rows;
    DialogCalls::Call call = calls.on_change;
    if (act.kind == DialogAct::Kind::pressed)
        call = calls.on_button;
    if (act.kind == DialogAct::Kind::closed) {
        call = calls.on_close;
        xvt_dlg_close(*this);
    }
    if (call == nullptr)
        return;
    bool is_gone = false;
    bool* const outer = std::exchange(is_gone_, &is_gone);
    call(calls.context, *this, act.number);
    if (is_gone) {
        if (outer != nullptr)
            *outer = true;
        return;
    }
    is_gone_ = outer;
    xvt_dlg_update(*this);
}

int xvt_dlg_ask(Dialog& dialog) {
    if (dialog.question_.dialog == 0)
        return -1;
    dialog.is_asking_ = true;
    dialog.question_.is_modeless = false;
    Answer answer = ask(dialog.shown_question());
    dialog.is_asking_ = false;
    dialog.rows = std::move(answer.rows);
    return answer.button;
}

void xvt_dlg_open(Dialog& dialog) {
    if (dialog.question_.dialog == 0)
        return;
    dialog.is_open_ = true;
    dialog.question_.is_modeless = true;
    ask_show_dialog(dialog.shown_question(), true);
}

void xvt_dlg_update(Dialog& dialog) {
    if (dialog.is_open_ || dialog.is_asking_)
        ask_show_dialog(dialog.shown_question(), false);
}

void xvt_dlg_close(Dialog& dialog) {
    if (std::exchange(dialog.is_open_, false))
        ask_end_dialog(dialog.question_.dialog);
}

bool xvt_dlg_is_open(const Dialog& dialog) {
    return dialog.is_open_;
}

DialogRow* find_row(Dialog& dialog, int id) {
    const auto found = std::ranges::find(dialog.rows, id, &DialogRow::id);
    return found == dialog.rows.end() ? nullptr : &*found;
}

} // namespace pellux
