#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/windows/column_widths.h"

#include <QStandardItemModel>

#include <span>

class QHeaderView;
class QListView;

namespace pellux {

/// The columns of a list: a header above it that shows their titles and has their widths. These
/// follow the entries and the list's width until the user draws one wider or narrower.
class ListColumns {
public:
    explicit ListColumns(QListView& list);
    ListColumns(const ListColumns&) = delete;
    ListColumns& operator=(const ListColumns&) = delete;

    [[nodiscard]] bool are_shown() const { return !titles_.empty(); }
    [[nodiscard]] const Vector<String>& titles() const { return titles_; }
    void set_titles(std::span<const String> titles);

    /// Takes the widths that the entries would like; to be followed by `fit`.
    void measure(std::span<const ListEntry> entries);
    /// Shares the room among the columns; false when nothing changed.
    bool fit(int room);

    [[nodiscard]] int count() const { return static_cast<int>(titles_.size()); }
    [[nodiscard]] int left_of(int column) const; ///< from the entry's left edge
    [[nodiscard]] int width_of(int column) const;
    [[nodiscard]] int column_at(int x) const; ///< the last one where there is none
    [[nodiscard]] int width() const;          ///< of all
    [[nodiscard]] int header_height() const;
    void place_header(const QRect& viewport);

private:
    QListView& list_;
    QStandardItemModel header_texts_;
    QHeaderView* header_;
    Vector<String> titles_;
    Vector<ColumnWish> wishes_;
    bool is_drawn_ = false; ///< the user has set a width
};

} // namespace pellux
