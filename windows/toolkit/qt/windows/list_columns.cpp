#include "windows/toolkit/qt/windows/list_columns.h"

#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_model.h"

#include <QHeaderView>
#include <QListView>
#include <QScrollBar>

#include <algorithm>

namespace pellux {
namespace {

/// A text with many bytes is not always the widest, but one of the longest few nearly is.
constexpr std::size_t k_measured = 8;
constexpr int k_least_characters = 10;

int widest(std::span<const ListEntry> entries, int column, const QFontMetrics& metrics) {
    Vector<const String*> texts;
    texts.reserve(entries.size());
    for (const ListEntry& entry : entries)
        texts.push_back(&column_text(entry, column));
    const std::size_t count = std::min(texts.size(), k_measured);
    std::ranges::nth_element(texts, texts.begin() + static_cast<std::ptrdiff_t>(count),
                             std::greater(), [](const String* text) { return text->size(); });
    int width = 0;
    for (std::size_t i = 0; i < count; ++i)
        width = std::max(width, metrics.horizontalAdvance(shown_entry(*texts[i])));
    return width;
}

} // namespace

ListColumns::ListColumns(QListView& list)
    : list_(list), header_(new QHeaderView(Qt::Horizontal, &list)) {
    header_->setModel(&header_texts_);
    header_->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header_->setHighlightSections(false);
    header_->setFocusPolicy(Qt::NoFocus);
    header_->hide();
    QObject::connect(list.horizontalScrollBar(), &QScrollBar::valueChanged, header_,
                     &QHeaderView::setOffset);
    QObject::connect(header_, &QHeaderView::sectionResized, &list, [this] {
        is_drawn_ = true;
        list_.doItemsLayout();
    });
    QObject::connect(header_, &QHeaderView::sectionHandleDoubleClicked, &list, [this](int column) {
        header_->resizeSection(column, wishes_[static_cast<std::size_t>(column)].natural);
    });
}

void ListColumns::set_titles(std::span<const String> titles) {
    titles_.assign(titles.begin(), titles.end());
    QStringList texts;
    for (const String& title : titles_)
        texts.append(to_qstring(view(title)));
    const QSignalBlocker quiet(header_);
    header_texts_.clear();
    header_texts_.setHorizontalHeaderLabels(texts);
    wishes_.clear();
    is_drawn_ = false;
    header_->setVisible(are_shown());
}

void ListColumns::measure(std::span<const ListEntry> entries) {
    wishes_.clear();
    QFont font = list_.font();
    if (std::ranges::any_of(entries, &ListEntry::is_strong))
        font.setBold(true);
    const QFontMetrics metrics(font);
    const int character = metrics.averageCharWidth();
    for (int i = 0; i < count(); ++i) {
        int width = widest(entries, i, metrics);
        if (i == 0 &&
            std::ranges::any_of(entries, [](const ListEntry& entry) { return entry.image != 0; }))
            width += metrics.height() + character;
        const int title = header_->fontMetrics().horizontalAdvance(
            header_texts_.headerData(i, Qt::Horizontal).toString());
        const int natural = std::max(width, title) + 3 * character;
        wishes_.push_back({natural, std::min(natural, k_least_characters * character)});
    }
}

bool ListColumns::fit(int room) {
    if (is_drawn_ || wishes_.empty())
        return false;
    bool has_changed = false;
    const Vector<int> widths = fit_columns(wishes_, room);
    const QSignalBlocker quiet(header_);
    for (int i = 0; i < count(); ++i) {
        const int width = widths[static_cast<std::size_t>(i)];
        has_changed = has_changed || width != header_->sectionSize(i);
        header_->resizeSection(i, width);
    }
    return has_changed;
}

int ListColumns::left_of(int column) const {
    return header_->sectionPosition(column);
}

int ListColumns::width_of(int column) const {
    return header_->sectionSize(column);
}

int ListColumns::column_at(int x) const {
    for (int i = 0; i < count(); ++i)
        if (x < left_of(i) + width_of(i))
            return i;
    return count() - 1;
}

int ListColumns::width() const {
    return header_->length();
}

int ListColumns::header_height() const {
    return are_shown() ? header_->sizeHint().height() : 0;
}

void ListColumns::place_header(const QRect& viewport) {
    const int height = header_height();
    header_->setGeometry(viewport.left(), viewport.top() - height, viewport.width(), height);
}

} // namespace pellux
