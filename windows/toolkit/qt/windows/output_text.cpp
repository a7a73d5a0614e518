#include "windows/toolkit/qt/windows/output_text.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QScrollBar>
#include <QTextBlock>

namespace pellux {
namespace {

OutputText* output_of(Window window) {
    return dynamic_cast<OutputText*>(widget_of<QPlainTextEdit>(window));
}

/// A place that stays when text is put in there.
QTextCursor fixed_cursor(QTextDocument& document, int position) {
    QTextCursor cursor(&document);
    cursor.setPosition(position);
    cursor.setKeepPositionOnInsert(true);
    return cursor;
}

} // namespace

OutputText::OutputText() {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setLineWrapMode(NoWrap);
    setTabChangesFocus(true);
    setFont(widget_font(xvt_font_get_fixed()));
    // The line that has not ended yet is one more.
    setMaximumBlockCount(k_output_lines_max + 1);
}

void OutputText::append(const QString& text) {
    QScrollBar& down = *verticalScrollBar();
    const bool follows = down.value() == down.maximum();
    const int right = horizontalScrollBar()->value();
    // Lines that go at the start would take what is read along.
    const QTextCursor top(document()->findBlockByNumber(down.value()));
    // A selection that touches the end of the text must not grow with it.
    const bool selects = textCursor().hasSelection();
    const QTextCursor from = fixed_cursor(*document(), textCursor().anchor());
    const QTextCursor to = fixed_cursor(*document(), textCursor().position());
    QTextCursor end(document());
    end.beginEditBlock();
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    // The document lays out each line that it drops: it is left with one, and to tidy up.
    const int excess = document()->blockCount() - maximumBlockCount();
    if (excess > 1) {
        QTextCursor dropped(document());
        dropped.setPosition(document()->findBlockByNumber(excess - 1).position(),
                            QTextCursor::KeepAnchor);
        dropped.removeSelectedText();
    }
    end.endEditBlock();
    if (selects) {
        QTextCursor selected(document());
        selected.setPosition(from.position());
        selected.setPosition(to.position(), QTextCursor::KeepAnchor);
        setTextCursor(selected);
    }
    down.setValue(follows ? down.maximum() : top.blockNumber());
    horizontalScrollBar()->setValue(right);
}

void xvt_output_append(Window output, std::string_view text) {
    if (OutputText* shown = output_of(output))
        shown->append(to_qstring(text));
}

void xvt_output_set_text(Window output, std::string_view text) {
    if (OutputText* shown = output_of(output)) {
        shown->clear();
        shown->append(to_qstring(text));
        // There the keys go on from, too.
        shown->moveCursor(QTextCursor::Start);
    }
}

} // namespace pellux
