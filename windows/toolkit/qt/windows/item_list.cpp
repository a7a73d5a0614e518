#include "windows/toolkit/qt/windows/item_list.h"

#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <array>
#include <utility>

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
        const auto& entries = static_cast<const ItemModel&>(*index.model()).entries();
        const auto longest = std::ranges::max_element(
            entries, {}, [](const ListEntry& entry) { return entry.text.size(); });
        QFont font = option.font;
        if (std::ranges::any_of(entries, &ListEntry::is_strong))
            font.setBold(true);
        int space = option.fontMetrics.averageCharWidth() * 2;
        if (std::ranges::any_of(entries, [](const ListEntry& entry) { return entry.image != 0; }))
            space += option.fontMetrics.height() + option.fontMetrics.averageCharWidth();
        const int text = QFontMetrics(font).horizontalAdvance(shown(longest->text));
        // Air between the lines, as far as the font asks for it.
        const int height = std::max(own.height(), option.fontMetrics.height() * 4 / 3);
        return {std::max(own.width(), text + space), height};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto& entries = static_cast<const ItemModel&>(*index.model()).entries();
        const int image = entries[static_cast<std::size_t>(index.row())].image;
        if (image == 0 || option->widget == nullptr)
            return;
        const int side = option->widget->fontMetrics().height();
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = QSize(side, side);
        const std::array looks{option->state.testFlag(QStyle::State_Selected) ? ImageLook::selected
                                                                              : ImageLook::normal};
        option->icon = picture_icon(image, side, option->widget->devicePixelRatioF(), looks);
    }
};

} // namespace

Vector<ListEntry> plain_entries(std::span<const String> items) {
    Vector<ListEntry> entries;
    entries.reserve(items.size());
    for (const String& item : items)
        entries.push_back({.text = item});
    return entries;
}

void ItemModel::set_entries(Vector<ListEntry> entries) {
    beginResetModel();
    entries_ = std::move(entries);
    endResetModel();
}

void ItemModel::update_entry(int index, const ListEntry& entry) {
    entries_[static_cast<std::size_t>(index)] = entry;
    const QModelIndex changed = this->index(index, 0);
    Q_EMIT dataChanged(changed, changed);
}

int ItemModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant ItemModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const ListEntry& entry = entries_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return shown(entry.text);
    case Qt::EditRole:
        return to_qstring(view(entry.text));
    case Qt::ToolTipRole:
        return entry.tip.empty() ? QVariant() : tip_text(view(entry.tip));
    case Qt::AccessibleDescriptionRole:
        return to_qstring(view(entry.tip));
    case Qt::FontRole: {
        QFont font;
        font.setBold(true);
        return entry.is_strong ? font : QVariant();
    }
    case Qt::ForegroundRole:
        return entry.is_faint ? QBrush(shown_ink(Color::gray, Color::white)) : QVariant();
    default:
        return {};
    }
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

void ItemList::set_focus_index(int index) {
    const Vector<int> before = all_selected();
    // Alone this makes it the one that a selection with Shift begins at.
    setCurrentIndex(model_->index(index, 0));
    select_many(before);
    scrollTo(currentIndex());
}

void ItemList::select_many(std::span<const int> indices) {
    Vector<int> rows(indices.begin(), indices.end());
    const int count = model_->rowCount({});
    std::erase_if(rows, [count](int row) { return row < 0 || row >= count; });
    std::ranges::sort(rows);
    if (selectionMode() == SingleSelection && rows.size() > 1)
        rows.resize(1);
    QItemSelection selection;
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t last = first;
        while (last + 1 < rows.size() && rows[last + 1] <= rows[last] + 1)
            ++last;
        selection.select(model_->index(rows[first], 0), model_->index(rows[last], 0));
        first = last + 1;
    }
    // In one step each range of the old selection would be compared with each new one.
    selectionModel()->clearSelection();
    selectionModel()->select(selection, QItemSelectionModel::Select);
    if (!currentIndex().isValid() && !rows.empty())
        selectionModel()->setCurrentIndex(model_->index(rows[0], 0), QItemSelectionModel::NoUpdate);
}

void ItemList::selectAll() {
    if (selectionMode() == ExtendedSelection) {
        // As in `select_many`; what is told is the selection of all.
        const QSignalBlocker quiet(selectionModel());
        selectionModel()->clearSelection();
    }
    QListView::selectAll();
}

Vector<int> ItemList::all_selected() const {
    Vector<int> rows;
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange& range : selection)
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

} // namespace pellux
