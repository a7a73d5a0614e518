#pragma once

#include <QPlainTextEdit>

namespace pellux {

/// A text of many lines to read, which grows at its end.
class OutputText : public QPlainTextEdit {
public:
    OutputText();

    /// Line ends in `text` are '\n', alone or after '\r'.
    void append(const QString& text);
};

} // namespace pellux
