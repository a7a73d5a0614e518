#pragma once

#include "windows/toolkit/ask.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QWidget>

namespace pellux {

/// A field for a whole number. Anything can be typed; arrows, wheel and keys go by steps between
/// the limits.
class NumberEdit : public QAbstractSpinBox {
public:
    explicit NumberEdit(QWidget* parent);

    void set_limits(int least, int most);
    void set_value(std::string_view value);
    [[nodiscard]] String value() const;
    [[nodiscard]] QLineEdit& field() const { return *lineEdit(); }

    void stepBy(int steps) override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override;

private:
    int least_ = 0;
    int most_ = 0;
};

/// A list of the palette's colours that drops down, with one that is none of them where it is
/// chosen, and a way to the desktop's box for others.
class ColorBox : public QComboBox {
public:
    explicit ColorBox(QWidget* parent);

    void set_color(Color color);
    [[nodiscard]] Color color() const { return color_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void choose(int index);
    void ask_for_other();

    Color color_ = Color::black;
    bool is_passing_ = false; ///< over the entries, with the list closed
};

/// Program text as the editor will show it.
class SampleText : public QWidget {
public:
    explicit SampleText(QWidget* parent);

    void set_runs(const Vector<SampleRun>& runs);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Vector<SampleRun> runs_;
};

} // namespace pellux
