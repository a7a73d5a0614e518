#include "windows/toolkit/qt/item_list.h"

#include "windows/toolkit/qt/text_conversion.h"

#include <QStyledItemDelegate>

#include <algorithm>

namespace pellux {
namespace {

/// On one line: what would break it or be invisible is shown by its Unicode picture.
QString shown(const String& item) {
    constexpr char16_t k_control_pictures = 0x2400;
    QString text = to_qstring(view(item));
    for (QChar& c : text)
        if (c.unicode() < 0x20)
            c = QChar(static_cast<char16_t>(k_control_pictures + c.unicode()));
    return text;
}

/// Makes every entry as wide as the longest, so that all of them can be scrolled to their ends.
class ItemDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        const QSize own = QStyledItemDelegate::sizeHint(option, index);
        const auto& model = static_cast<const ItemModel&>(*index.model());
        const int space = option.fontMetrics.averageCharWidth() * 2;
        return {
            std::max(own.width(), option.fontMetrics.horizontalAdvance(model.longest()) + space),
            own.height()};
    }
};

} // namespace

void ItemModel::set_items(std::span<const String> items) {
    beginResetModel();
    items_.assign(items.begin(), items.end());
    const auto longest = std::ranges::max_element(items_, {}, &String::size);
    longest_ = longest == items_.end() ? QString() : shown(*longest);
    endResetModel();
}

int ItemModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant ItemModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    const String& item = items_[static_cast<std::size_t>(index.row())];
    return role == Qt::DisplayRole ? shown(item) : to_qstring(view(item));
}

ItemList::ItemList(QWidget* parent) : QListView(parent), model_(new ItemModel(this)) {
    setModel(model_);
    setItemDelegate(new ItemDelegate(this));
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
}

void ItemList::select(int index) {
    const QModelIndex item = model_->index(index, 0);
    if (item.isValid()) {
        selectionModel()->setCurrentIndex(item, QItemSelectionModel::ClearAndSelect);
        scrollTo(item);
    } else {
        selectionModel()->clear();
    }
}

int ItemList::selected() const {
    const QItemSelection selection = selectionModel()->selection();
    int first = -1;
    for (const QItemSelectionRange& range : selection)
        if (first < 0 || range.top() < first)
            first = range.top();
    return first;
}

} // namespace pellux
