#pragma once

#include "core/common/containers.h"

#include <QComboBox>
#include <QLineEdit>
#include <QValidator>

#include <span>
#include <string_view>

namespace pellux {

/// Lets only so many bytes of UTF-8 in: what is typed or pasted beyond them is left out.
class ByteLimit : public QValidator {
public:
    ByteLimit(int length_max, QObject* parent) : QValidator(parent), length_max_(length_max) {}

    [[nodiscard]] State validate(QString& input, int& cursor) const override;

private:
    int length_max_;
};

/// A field of one line whose text has a limit in bytes.
class ByteEdit : public QLineEdit {
public:
    /// `length_max` 0: any.
    ByteEdit(int length_max, QWidget* parent);

    void set_value(std::string_view value);
    /// As it was given when nobody changed it, also when it is no UTF-8.
    [[nodiscard]] String value() const;
    [[nodiscard]] bool is_changed() const { return text() != shown_; }

    [[nodiscard]] QSize sizeHint() const override;

private:
    int length_max_;
    String given_;
    QString shown_; ///< what `given_` looks like
};

/// The same with entries that drop down. What is chosen there has the entry's bytes.
class ByteCombo : public QComboBox {
public:
    ByteCombo(int length_max, QWidget* parent);

    void set_entries(std::span<const String> entries);
    void set_value(std::string_view value) { field_->set_value(value); }
    [[nodiscard]] String value() const;

private:
    ByteEdit* field_;
    Vector<String> entries_;
};

} // namespace pellux
