#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/control.h"

#include <QAbstractListModel>
#include <QListView>

#include <span>

namespace pellux {

/// Entries that are nothing but their text.
[[nodiscard]] Vector<ListEntry> plain_entries(std::span<const String> items);

/// Entries of a list, kept as the bytes that they are.
class ItemModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void set_entries(Vector<ListEntry> entries);
    void update_entry(int index, const ListEntry& entry); ///< of one that is there
    [[nodiscard]] const Vector<ListEntry>& entries() const { return entries_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    Vector<ListEntry> entries_;
};

/// A list of entries of one height, so that many of them cost nothing until they are seen.
class ItemList : public QListView {
public:
    explicit ItemList(QWidget* parent = nullptr);

    [[nodiscard]] ItemModel& model_of_items() { return *model_; }
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

private:
    ItemModel* model_;
};

} // namespace pellux
