#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/qt/windows/item_model.h"
#include "windows/toolkit/qt/windows/list_columns.h"

#include <QListView>

#include <span>

namespace pellux {

/// A list of entries of one height, so that many of them cost nothing until they are seen.
class ItemList : public QListView {
public:
    explicit ItemList(QWidget* parent = nullptr);

    [[nodiscard]] ItemModel& model_of_items() { return *model_; }
    [[nodiscard]] const ItemModel& model_of_items() const { return *model_; }
    [[nodiscard]] const ListColumns& columns() const { return columns_; }
    /// Before the entries that have texts for them; without titles there are none.
    void set_columns(std::span<const String> titles);
    /// -1 for none; an index outside is none too.
    void select(int index);
    /// The first one that is selected, -1 for none.
    [[nodiscard]] int selected() const;
    /// Of an entry that is there: the keyboard goes on from it, what is selected stays.
    void set_focus_index(int index);
    void select_many(std::span<const int> indices);
    /// Ascending.
    [[nodiscard]] Vector<int> all_selected() const;

    void selectAll() override;

protected:
    void updateGeometries() override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void measure_columns();

    ItemModel* model_;
    ListColumns columns_;
};

} // namespace pellux
