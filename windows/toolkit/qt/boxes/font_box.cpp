#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QApplication>
#include <QCheckBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QFontInfo>
#include <QListView>
#include <QPointer>
#include <QStyledItemDelegate>

namespace pellux {
namespace {

constexpr auto bit(FontStyle style) {
    return static_cast<std::uint16_t>(style);
}

/// The font as the system has it, with the family's own word for its style: by that the box finds
/// it among faces of one weight, such as a condensed one.
QFont to_qfont(Font font) {
    const QFont face = font_face(font, 1).font;
    const QFontInfo found(face);
    QFont shown(found.family(),
                font.size > 0 ? font.size : QFontInfo(QApplication::font()).pointSize());
    shown.setBold(face.bold());
    shown.setItalic(face.italic());
    if (found.bold() == face.bold() && found.italic() == face.italic())
        shown.setStyleName(found.styleName());
    shown.setUnderline((font.style & bit(FontStyle::underline)) != 0);
    return shown;
}

/// `before` with what the user changed since the box stood at `offered`. Its family keeps the name
/// that it has, which may stand for the one that was shown, and it keeps a style that the family
/// has no face for, which the box can't show.
Font to_font(const QFont& chosen, const QFont& offered, Font before) {
    if (chosen.family() != offered.family())
        xvt_font_set_family(before, view(to_text(chosen.family())));
    xvt_font_set_size(before, chosen.pointSize());
    const auto take = [&](FontStyle style, bool is_chosen, bool was_offered) {
        if (is_chosen != was_offered)
            before.style = static_cast<std::uint16_t>(before.style ^ bit(style));
    };
    take(FontStyle::bold, chosen.bold(), offered.bold());
    take(FontStyle::italic, chosen.italic(), offered.italic());
    take(FontStyle::underline, chosen.underline(), offered.underline());
    return before;
}

/// Says beside a family's name that its characters have one width.
class FamilyDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (QFontDatabase::isFixedPitch(option->text))
            option->text += QStringLiteral(" (fixed width)");
    }
};

} // namespace

Answer ask_font(const Question& question) {
    const QPointer<QFontDialog> box = new QFontDialog(to_qfont(question.font), box_parent());
    const QFont offered = box->currentFont();
    box->setOption(QFontDialog::DontUseNativeDialog);
    box->setWindowTitle(to_qstring(view(question.title)));
    // The families are the first of the box's three lists, and striking out, which our fonts have
    // not, is the first of its two effects.
    if (auto* families = box->findChild<QListView*>())
        families->setItemDelegate(new FamilyDelegate(families));
    if (auto* strike_out = box->findChild<QCheckBox*>())
        strike_out->hide();
    Answer answer = closed_answer(question);
    if (is_accepted(box.data(), {100, 28})) {
        answer.button = 0;
        answer.font = to_font(box->selectedFont(), offered, question.font);
    }
    delete box;
    return answer;
}

} // namespace pellux
