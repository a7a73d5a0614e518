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
    return is_changed() ? to_text(text()) : given_;
}

QSize ByteEdit::sizeHint() const {
    // The field's own hint is for 17 characters.
    const QSize usual = QLineEdit::sizeHint();
    const int characters =
        length_max_ > 0 ? std::min(length_max_, k_characters_wide) : k_characters_wide;
    return {usual.width() + fontMetrics().horizontalAdvance(u'x') * (characters - 17),
            usual.height()};
}

ByteCombo::ByteCombo(int length_max, QWidget* parent)
    : QComboBox(parent), field_(new ByteEdit(length_max, this)) {
    setEditable(true);
    setLineEdit(field_);
    setInsertPolicy(NoInsert);
    // What is typed stays what it is.
    setCompleter(nullptr);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(k_characters_wide);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ByteCombo::set_entries(std::span<const String> entries) {
    if (std::ranges::equal(entries, entries_))
        return;
    entries_.assign(entries.begin(), entries.end());
    const String kept = field_->value();
    clear();
    for (const String& entry : entries_)
        addItem(to_qstring(pellux::view(entry)));
    setCurrentIndex(-1);
    field_->set_value(pellux::view(kept));
}

String ByteCombo::value() const {
    if (field_->is_changed())
        for (const String& entry : entries_)
            if (to_qstring(pellux::view(entry)) == field_->text())
                return entry;
    return field_->value();
}

} // namespace pellux
