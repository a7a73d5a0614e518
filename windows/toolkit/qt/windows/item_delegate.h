#pragma once

#include <QStyledItemDelegate>

namespace pellux {

class ItemModel;
class ListColumns;

/// Shows the entries of a list. Without columns every entry is as wide as the longest, so that all
/// of them can be scrolled to their ends; with columns what has no room in one ends in an ellipsis,
/// and its tip says all of it.
class ItemDelegate : public QStyledItemDelegate {
public:
    ItemDelegate(const ItemModel& model, const ListColumns& columns, QWidget* list);

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    [[nodiscard]] int width_of_longest(const QStyleOptionViewItem& option) const;
    [[nodiscard]] QStyleOptionViewItem cell_of(const QStyleOptionViewItem& entry,
                                               const QModelIndex& index, int column) const;

    const ItemModel& model_;
    const ListColumns& columns_;
    const QWidget& list_;
};

} // namespace pellux
