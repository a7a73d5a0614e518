#include "windows/toolkit/qt/windows/item_delegate.h"

#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_model.h"
#include "windows/toolkit/qt/windows/list_columns.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>
#include <array>

namespace pellux {
namespace {

const ListEntry& entry_at(const ItemModel& model, const QModelIndex& index) {
    return model.entries()[static_cast<std::size_t>(index.row())];
}

bool is_cut(const QStyleOptionViewItem& cell) {
    const QStyle& style = *cell.widget->style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &cell, cell.widget) + 1;
    const QRect room = style.subElementRect(QStyle::SE_ItemViewItemText, &cell, cell.widget);
    return QFontMetrics(cell.font).horizontalAdvance(cell.text) > room.width() - 2 * margin;
}

} // namespace

ItemDelegate::ItemDelegate(const ItemModel& model, const ListColumns& columns, QWidget* list)
    : QStyledItemDelegate(list), model_(model), columns_(columns), list_(*list) {}

QSize ItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QSize own = QStyledItemDelegate::sizeHint(option, index);
    // Air between the lines, as far as the font asks for it.
    const int height = std::max(own.height(), option.fontMetrics.height() * 4 / 3);
    if (columns_.are_shown())
        return {columns_.width(), height};
    return {std::max(own.width(), width_of_longest(option)), height};
}

int ItemDelegate::width_of_longest(const QStyleOptionViewItem& option) const {
    const auto& entries = model_.entries();
    const auto longest = std::ranges::max_element(
        entries, {}, [](const ListEntry& entry) { return entry.text.size(); });
    QFont font = option.font;
    if (std::ranges::any_of(entries, &ListEntry::is_strong))
        font.setBold(true);
    int space = option.fontMetrics.averageCharWidth() * 2;
    if (std::ranges::any_of(entries, [](const ListEntry& entry) { return entry.image != 0; }))
        space += option.fontMetrics.height() + option.fontMetrics.averageCharWidth();
    return QFontMetrics(font).horizontalAdvance(shown_entry(longest->text)) + space;
}

void ItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    if (!columns_.are_shown()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QStyle& style = *list_.style();
    for (int i = 0; i < columns_.count(); ++i) {
        const QStyleOptionViewItem cell = cell_of(option, index, i);
        style.drawControl(QStyle::CE_ItemViewItem, &cell, painter, &list_);
    }
    if (!option.state.testFlag(QStyle::State_HasFocus))
        return;
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    focus.backgroundColor = option.palette.color(
        option.state.testFlag(QStyle::State_Selected) ? QPalette::Highlight : QPalette::Base);
    style.drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, &list_);
}

QStyleOptionViewItem ItemDelegate::cell_of(const QStyleOptionViewItem& entry,
                                           const QModelIndex& index, int column) const {
    const bool is_last = column + 1 == columns_.count();
    QStyleOptionViewItem cell = entry;
    initStyleOption(&cell, index);
    cell.widget = &list_;
    cell.rect.setLeft(entry.rect.left() + columns_.left_of(column));
    if (!is_last)
        cell.rect.setWidth(columns_.width_of(column));
    cell.viewItemPosition = is_last       ? QStyleOptionViewItem::End
                            : column == 0 ? QStyleOptionViewItem::Beginning
                                          : QStyleOptionViewItem::Middle;
    // The focus is the whole entry's.
    cell.state &= ~QStyle::State_HasFocus;
    // Of a path both ends count.
    cell.textElideMode = column == 0 ? Qt::ElideMiddle : Qt::ElideRight;
    if (column > 0) {
        cell.text = shown_entry(column_text(entry_at(model_, index), column));
        cell.features &= ~QStyleOptionViewItem::HasDecoration;
        cell.icon = {};
    }
    return cell;
}

bool ItemDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() == QEvent::ToolTip && index.isValid() && columns_.are_shown()) {
        const int column = columns_.column_at(event->pos().x() - option.rect.left());
        const QStyleOptionViewItem cell = cell_of(option, index, column);
        const ListEntry& entry = entry_at(model_, index);
        if (is_cut(cell) && (column > 0 || entry.tip.empty())) {
            QToolTip::showText(event->globalPos(),
                               tip_text(pellux::view(column_text(entry, column))), view->viewport(),
                               cell.rect);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

void ItemDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const int image = entry_at(model_, index).image;
    if (image == 0 || option->widget == nullptr)
        return;
    const int side = option->widget->fontMetrics().height();
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->decorationSize = QSize(side, side);
    const std::array looks{option->state.testFlag(QStyle::State_Selected) ? ImageLook::selected
                                                                          : ImageLook::normal};
    option->icon = picture_icon(image, side, option->widget->devicePixelRatioF(), looks);
}

} // namespace pellux
