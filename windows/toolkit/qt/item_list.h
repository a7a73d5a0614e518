#pragma once

#include "core/common/containers.h"

#include <QAbstractListModel>
#include <QListView>

#include <span>

namespace pellux {

/// Entries of a list, kept as the bytes that they are.
class ItemModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void set_items(std::span<const String> items);
    [[nodiscard]] const Vector<String>& items() const { return items_; }
    /// The entry with the most characters, as it is shown.
    [[nodiscard]] const QString& longest() const { return longest_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    Vector<String> items_;
    QString longest_;
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

private:
    ItemModel* model_;
};

} // namespace pellux
