#include "windows/toolkit/qt/boxes/choice_fields.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QColorDialog>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_number_characters = 8;
constexpr int k_sample_margin = 6; // logical pixels

struct NamedColor {
    const char* name;
    Color color;
};
constexpr std::array k_palette{
    NamedColor{"Black", Color::black},
    NamedColor{"Blue", Color::blue},
    NamedColor{"Red", Color::red},
    NamedColor{"Green", Color::green},
    NamedColor{"Cyan", Color::cyan},
    NamedColor{"Magenta", Color::magenta},
    NamedColor{"Yellow", Color::yellow},
    NamedColor{"Gray", Color::gray},
    NamedColor{"Dark gray", Color::dark_gray},
    NamedColor{"Light gray", Color::light_gray},
    NamedColor{"White", Color::white},
};
constexpr int k_palette_size = static_cast<int>(k_palette.size());

QColor raw(Color color) {
    return QColor::fromRgb(color_rgb(color));
}

QIcon swatch(Color color, const QWidget& widget) {
    const int side = widget.fontMetrics().height() * 3 / 4;
    const double scale = widget.devicePixelRatioF();
    QPixmap picture(QSize(side * 2, side) * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(shown_ink(color, Color::white));
    QPainter painter(&picture);
    painter.setPen(widget.palette().color(QPalette::Mid));
    painter.drawRect(0, 0, side * 2 - 1, side - 1);
    return picture;
}

QFont run_font(const SampleRun& run) {
    Font font = xvt_font_get_fixed();
    if (run.style != 0)
        xvt_font_set_style(font, run.style);
    return widget_font(font);
}

} // namespace

NumberEdit::NumberEdit(QWidget* parent) : QAbstractSpinBox(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void NumberEdit::set_limits(int least, int most) {
    least_ = least;
    most_ = most;
}

void NumberEdit::set_value(std::string_view value) {
    if (const QString text = to_qstring(value); field().text() != text)
        field().setText(text);
}

String NumberEdit::value() const {
    return to_text(field().text().trimmed());
}

void NumberEdit::stepBy(int steps) {
    bool is_number = false;
    const int now = field().text().toInt(&is_number);
    // The first step from nothing is to the limit.
    const qint64 wanted = is_number ? qint64{now} + steps : least_;
    field().setText(QString::number(std::clamp(wanted, qint64{least_}, qint64{most_})));
    field().selectAll();
}

QAbstractSpinBox::StepEnabled NumberEdit::stepEnabled() const {
    const int now = field().text().toInt();
    StepEnabled enabled = StepNone;
    enabled.setFlag(StepUpEnabled, field().text().isEmpty() || now < most_);
    enabled.setFlag(StepDownEnabled, field().text().isEmpty() || now > least_);
    return enabled;
}

QSize NumberEdit::sizeHint() const {
    const int text = fontMetrics().horizontalAdvance(u'0') * k_number_characters;
    return {text + QAbstractSpinBox::sizeHint().height() * 2,
            QAbstractSpinBox::sizeHint().height()};
}

ColorBox::ColorBox(QWidget* parent) : QComboBox(parent) {
    const int side = fontMetrics().height() * 3 / 4;
    setIconSize({side * 2, side});
    for (const NamedColor& each : k_palette)
        addItem(swatch(each.color, *this), QString::fromLatin1(each.name));
    addItem(QStringLiteral("Other..."));
    connect(this, &QComboBox::activated, this, [this](int index) { choose(index); });
}

void ColorBox::set_color(Color color) {
    color_ = color;
    const auto found = std::ranges::find_if(k_palette, [=](const NamedColor& each) {
        return color_rgb(each.color) == color_rgb(color);
    });
    if (found != k_palette.end()) {
        setCurrentIndex(static_cast<int>(found - k_palette.begin()));
        return;
    }
    // One entry, before the last, for a colour that is none of the palette.
    if (count() == k_palette_size + 1)
        insertItem(k_palette_size, QString());
    setItemText(k_palette_size, raw(color).name().toUpper());
    setItemIcon(k_palette_size, swatch(color, *this));
    setCurrentIndex(k_palette_size);
}

void ColorBox::choose(int index) {
    if (index < k_palette_size)
        color_ = k_palette[static_cast<std::size_t>(index)].color;
    else if (index == count() - 1 && is_passing_)
        set_color(color_);
    else if (index == count() - 1)
        ask_for_other();
}

void ColorBox::keyPressEvent(QKeyEvent* event) {
    is_passing_ = true;
    QComboBox::keyPressEvent(event);
    is_passing_ = false;
}

void ColorBox::wheelEvent(QWheelEvent* event) {
    is_passing_ = true;
    QComboBox::wheelEvent(event);
    is_passing_ = false;
}

void ColorBox::ask_for_other() {
    const QPointer<ColorBox> self = this;
    const Color before = color_;
    const QPointer<QColorDialog> box = new QColorDialog(raw(before), box_parent());
    box->setOption(QColorDialog::DontUseNativeDialog);
    const bool is_chosen = is_accepted(box.data(), {80, 24});
    const QColor chosen = is_chosen ? box->selectedColor() : raw(before);
    delete box;
    if (self == nullptr)
        return;
    set_color(is_chosen ? make_color(static_cast<std::uint8_t>(chosen.red()),
                                     static_cast<std::uint8_t>(chosen.green()),
                                     static_cast<std::uint8_t>(chosen.blue()))
                        : before);
}

SampleText::SampleText(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SampleText::set_runs(const Vector<SampleRun>& runs) {
    runs_ = runs;
    QString text;
    for (const SampleRun& run : runs_)
        text += to_qstring(view(run.text));
    setAccessibleDescription(text);
    update();
}

QSize SampleText::sizeHint() const {
    int lines = 1;
    for (const SampleRun& run : runs_)
        lines += static_cast<int>(std::ranges::count(run.text, '\n'));
    const QFontMetrics metrics(widget_font(xvt_font_get_fixed()));
    constexpr int k_characters = 50;
    return {metrics.averageCharWidth() * k_characters + 2 * k_sample_margin,
            metrics.lineSpacing() * lines + 2 * k_sample_margin};
}

void SampleText::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), shown_paper(Color::white));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const QFontMetrics plain(widget_font(xvt_font_get_fixed()));
    int left = k_sample_margin;
    int base = k_sample_margin + plain.ascent();
    for (const SampleRun& run : runs_) {
        painter.setFont(run_font(run));
        painter.setPen(shown_ink(run.color, Color::white));
        const QStringList lines = to_qstring(view(run.text)).split(u'\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0) {
                left = k_sample_margin;
                base += plain.lineSpacing();
            }
            painter.drawText(left, base, lines[i]);
            left += painter.fontMetrics().horizontalAdvance(lines[i]);
        }
    }
}

} // namespace pellux
