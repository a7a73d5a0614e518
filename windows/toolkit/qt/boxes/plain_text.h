#pragma once

#include <QTextEdit>

namespace pellux {

/// A text to read: shown as it stands, a word that is too long broken anywhere; it can be selected
/// and copied, and scrolls when it is higher than half the screen.
class PlainText : public QTextEdit {
public:
    explicit PlainText(const QString& text);

    void set_text(const QString& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] int text_width() const;
    [[nodiscard]] int full_height(int width) const;
};

} // namespace pellux
