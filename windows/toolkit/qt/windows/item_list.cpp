#include "windows/toolkit/qt/windows/item_list.h"

#include "windows/toolkit/qt/windows/item_delegate.h"

#include <QEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace pellux {

ItemList::ItemList(QWidget* parent)
    : QListView(parent), model_(new ItemModel(this)), columns_(*this) {
    setModel(model_);
    setItemDelegate(new ItemDelegate(*model_, columns_, this));
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    connect(model_, &ItemModel::modelReset, this, [this] {
        if (columns_.are_shown())
            measure_columns();
    });
}

void ItemList::set_columns(std::span<const String> titles) {
    if (std::ranges::equal(titles, columns_.titles()))
        return;
    model_->set_titles({titles.begin(), titles.end()});
    columns_.set_titles(titles);
    measure_columns();
}

void ItemList::measure_columns() {
    setViewportMargins(0, columns_.header_height(), 0, 0);
    columns_.measure(model_->entries());
    columns_.fit(viewport()->width());
    scheduleDelayedItemsLayout();
}

void ItemList::updateGeometries() {
    QListView::updateGeometries();
    columns_.place_header(viewport()->geometry());
}

void ItemList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    if (columns_.fit(viewport()->width()))
        scheduleDelayedItemsLayout();
}

void ItemList::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (columns_.are_shown() &&
        (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange))
        measure_columns();
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
