#include "windows/toolkit/qt/windows/item_model.h"

#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QBrush>
#include <QFont>

namespace pellux {
namespace {

QString spoken(const ListEntry& entry, const Vector<String>& titles) {
    QString text = to_qstring(view(entry.text));
    for (std::size_t i = 1; i < titles.size(); ++i)
        if (const String& more = column_text(entry, static_cast<int>(i)); !more.empty())
            text +=
                QStringLiteral(", %1: %2").arg(to_qstring(view(titles[i])), to_qstring(view(more)));
    return text;
}

} // namespace

QString shown_entry(const String& item) {
    constexpr char16_t k_control_pictures = 0x2400;
    QString text = to_qstring(view(item));
    for (QChar& c : text)
        if (c.unicode() < 0x20)
            c = QChar(static_cast<char16_t>(k_control_pictures + c.unicode()));
    return text;
}

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
        return shown_entry(entry.text);
    case Qt::EditRole:
        return to_qstring(view(entry.text));
    case Qt::ToolTipRole:
        return entry.tip.empty() ? QVariant() : tip_text(view(entry.tip));
    case Qt::AccessibleDescriptionRole:
        return to_qstring(view(entry.tip));
    case Qt::AccessibleTextRole:
        return titles_.empty() ? QVariant() : spoken(entry, titles_);
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

const String& column_text(const ListEntry& entry, int column) {
    static const String s_none;
    if (column == 0)
        return entry.text;
    const auto at = static_cast<std::size_t>(column - 1);
    return at < entry.more.size() ? entry.more[at] : s_none;
}

} // namespace pellux
