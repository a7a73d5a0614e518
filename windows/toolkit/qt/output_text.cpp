#include "windows/toolkit/qt/output_text.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/fonts.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/window_table.h"

#include <QScrollBar>
#include <QTextBlock>

namespace pellux {
namespace {

constexpr int k_lines_max = 200'000;

OutputText* output_of(Window window) {
    return dynamic_cast<OutputText*>(widget_of<QPlainTextEdit>(window));
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
    setMaximumBlockCount(k_lines_max + 1);
}

void OutputText::append(const QString& text) {
    QScrollBar& down = *verticalScrollBar();
    const bool follows = down.value() == down.maximum();
    const int right = horizontalScrollBar()->value();
    // Lines that go at the start would take what is read along.
    const QTextCursor top(document()->findBlockByNumber(down.value()));
    // A selection that ends where the text does must not grow with it.
    if (QTextCursor selected = textCursor(); selected.hasSelection()) {
        selected.setKeepPositionOnInsert(true);
        setTextCursor(selected);
    }
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
    down.setValue(follows ? down.maximum() : top.blockNumber());
    horizontalScrollBar()->setValue(right);
}

void xvt_output_append(Window output, std::string_view text) {
    if (OutputText* shown = output_of(output))
        shown->append(to_qstring(text));
}

void xvt_output_clear(Window output) {
    if (OutputText* shown = output_of(output))
        shown->clear();
}

} // namespace pellux
