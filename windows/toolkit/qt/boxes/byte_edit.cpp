#include "windows/toolkit/qt/boxes/byte_edit.h"

#include "windows/toolkit/qt/text_conversion.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr int k_characters_wide = 40;

} // namespace

QValidator::State ByteLimit::validate(QString& input, int& cursor) const {
    // What came last stands before the cursor.
    while (input.toUtf8().size() > length_max_) {
        const int end = cursor > 0 ? cursor : static_cast<int>(input.size());
        const bool is_pair = end > 1 && input[end - 1].isLowSurrogate();
        const int length = is_pair ? 2 : 1;
        input.remove(end - length, length);
        cursor = end - length;
    }
    return Acceptable;
}

ByteEdit::ByteEdit(int length_max, QWidget* parent) : QLineEdit(parent), length_max_(length_max) {
    if (length_max_ > 0)
        setValidator(new ByteLimit(length_max_, this));
}

void ByteEdit::set_value(std::string_view value) {
    if (view(this->value()) == value)
        return;
    const QString whole = to_qstring(value);
    setText(whole);
    shown_ = text();
    given_ = shown_ == whole ? String(value) : to_text(shown_);
}

String ByteEdit::value() const {
    return text() == shown_ ? given_ : to_text(text());
}

QSize ByteEdit::sizeHint() const {
    // The field's own hint is for 17 characters.
    const QSize usual = QLineEdit::sizeHint();
    const int characters =
        length_max_ > 0 ? std::min(length_max_, k_characters_wide) : k_characters_wide;
    return {usual.width() + fontMetrics().horizontalAdvance(u'x') * (characters - 17),
            usual.height()};
}

} // namespace pellux
