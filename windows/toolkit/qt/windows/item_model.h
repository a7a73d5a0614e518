#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/control.h"

#include <QAbstractListModel>

#include <span>
#include <utility>

namespace pellux {

/// On one line: what would break it or be invisible is shown by its Unicode picture.
[[nodiscard]] QString shown_entry(const String& item);
/// Entries that are nothing but their text.
[[nodiscard]] Vector<ListEntry> plain_entries(std::span<const String> items);

/// Entries of a list, kept as the bytes that they are.
class ItemModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void set_entries(Vector<ListEntry> entries);
    void set_titles(Vector<String> titles) { titles_ = std::move(titles); } ///< of the columns
    void update_entry(int index, const ListEntry& entry); ///< of one that is there
    [[nodiscard]] const Vector<ListEntry>& entries() const { return entries_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    Vector<ListEntry> entries_;
    Vector<String> titles_;
};

/// The text of an entry in a column.
[[nodiscard]] const String& column_text(const ListEntry& entry, int column);

} // namespace pellux
