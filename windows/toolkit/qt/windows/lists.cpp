#include "windows/toolkit/qt/windows/lists.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/windows/context_menu.h"
#include "windows/toolkit/qt/windows/control_events.h"
#include "windows/toolkit/qt/windows/item_list.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

/// A list in a window, which has keys that mean something else in a dialog.
class ListControl : public ItemList {
public:
    explicit ListControl(Window window) : window_(window) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (asks_for_menu(*event)) {
            ask_parent_for_menu();
            return;
        }
        if (event->modifiers().testFlag(Qt::AltModifier) &&
            !event->modifiers().testFlag(Qt::ControlModifier)) {
            event->ignore();
            return;
        }
        const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        const bool chooses = is_enter && currentIndex().isValid();
        const QModelIndex before = currentIndex();
        QListView::keyPressEvent(event);
        if (moves(*event) && before.isValid() && currentIndex() == before)
            selectionModel()->select(before, QItemSelectionModel::ClearAndSelect);
        // What chose an entry is used up.
        if (chooses)
            event->accept();
    }

private:
    /// A key that selects one entry, which may be the one that the keyboard stands on already.
    static bool moves(const QKeyEvent& event) {
        constexpr std::array k_keys{Qt::Key_Up,  Qt::Key_Down,   Qt::Key_Home,
                                    Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};
        return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier &&
               std::ranges::find(k_keys, event.key()) != k_keys.end();
    }

    void ask_parent_for_menu() const {
        const WindowRecord* record = find_window(window_);
        const WindowRecord* around = record == nullptr ? nullptr : find_window(record->parent);
        if (around == nullptr || around->widget == nullptr)
            return;
        const QRect entry = visualRect(currentIndex()) & viewport()->rect();
        const QPoint place = entry.isEmpty() ? QPoint() : entry.center();
        ask_for_menu(around->handle, viewport()->mapTo(around->widget.data(), place), record->id);
    }

    Window window_;
};

ItemList* list_of(Window window) {
    return dynamic_cast<ItemList*>(widget_of<QListView>(window));
}

ItemModel* model_of(Window window) {
    if (auto* combo = widget_of<QComboBox>(window))
        return static_cast<ItemModel*>(combo->model());
    ItemList* list = list_of(window);
    return list == nullptr ? nullptr : &list->model_of_items();
}

bool has_entry(Window window, int index) {
    return index >= 0 && index < xvt_list_count(window);
}

void set_entries(Window window, Vector<ListEntry> entries) {
    ItemModel* model = model_of(window);
    if (model == nullptr)
        return;
    const OwnChange change;
    auto* combo = widget_of<QComboBox>(window);
    const QString typed = combo != nullptr && combo->isEditable() ? combo->currentText() : "";
    model->set_entries(std::move(entries));
    if (combo != nullptr)
        combo->setCurrentIndex(-1);
    if (combo != nullptr && combo->isEditable())
        combo->setEditText(typed);
}

} // namespace

QWidget* make_list(Window control, bool takes_many) {
    auto* list = new ListControl(control);
    if (takes_many)
        list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    QObject::connect(list->selectionModel(), &QItemSelectionModel::selectionChanged,
                     [control] { tell_parent(control, ControlAction::selected); });
    QObject::connect(list, &QAbstractItemView::activated,
                     [control] { tell_parent(control, ControlAction::chosen); });
    return list;
}

QWidget* make_combo(Window control, bool is_editable) {
    auto* combo = new QComboBox;
    combo->setModel(new ItemModel(combo));
    combo->setEditable(is_editable);
    if (is_editable) {
        combo->setInsertPolicy(QComboBox::NoInsert);
        combo->setCompleter(nullptr);
        QObject::connect(combo->lineEdit(), &QLineEdit::textEdited,
                         [control] { tell_parent(control, ControlAction::edited); });
    }
    QObject::connect(combo, &QComboBox::activated,
                     [control] { tell_parent(control, ControlAction::selected); });
    return combo;
}

void xvt_list_set_entries(Window list, std::span<const ListEntry> entries, ListPlace place) {
    const Vector<int> selected = xvt_list_get_selected(list);
    const int focus = xvt_list_get_focus_index(list);
    ItemList* items = list_of(list);
    const int top = items == nullptr ? 0 : items->verticalScrollBar()->value();
    set_entries(list, {entries.begin(), entries.end()});
    const bool is_kept = place == ListPlace::kept;
    if (is_kept) {
        xvt_list_set_focus_index(list, focus);
        xvt_list_set_selected(list, selected);
    }
    if (items != nullptr) {
        // The bar's range is known only then.
        items->doItemsLayout();
        items->verticalScrollBar()->setValue(is_kept ? top : 0);
    }
}

void xvt_list_set_columns(Window list, std::span<const String> titles) {
    const OwnChange change;
    if (ItemList* items = list_of(list))
        items->set_columns(titles);
}

void xvt_list_update_entry(Window list, int index, const ListEntry& entry) {
    if (!has_entry(list, index))
        return;
    const OwnChange change;
    model_of(list)->update_entry(index, entry);
}

void xvt_list_set_items(Window list, std::span<const String> items) {
    set_entries(list, plain_entries(items));
}

int xvt_list_count(Window list) {
    const ItemModel* model = model_of(list);
    return model == nullptr ? 0 : static_cast<int>(model->entries().size());
}

String xvt_list_get_item(Window list, int index) {
    return has_entry(list, index) ? model_of(list)->entries()[static_cast<std::size_t>(index)].text
                                  : String();
}

void xvt_list_set_selection(Window list, int index) {
    const OwnChange change;
    const int known = index < xvt_list_count(list) ? index : -1;
    if (auto* combo = widget_of<QComboBox>(list))
        combo->setCurrentIndex(known);
    else if (ItemList* items = list_of(list))
        items->select(known);
}

int xvt_list_get_selection(Window list) {
    if (const auto* combo = widget_of<QComboBox>(list)) {
        // What was typed may be no entry any more.
        const int index = combo->currentIndex();
        return combo->currentText() == combo->itemText(index) ? index : -1;
    }
    const ItemList* items = list_of(list);
    return items == nullptr ? -1 : items->selected();
}

Vector<int> xvt_list_get_selected(Window list) {
    if (const ItemList* items = list_of(list))
        return items->all_selected();
    const int one = xvt_list_get_selection(list);
    return one < 0 ? Vector<int>() : Vector<int>{one};
}

void xvt_list_set_selected(Window list, std::span<const int> indices) {
    const OwnChange change;
    if (ItemList* items = list_of(list)) {
        items->select_many(indices);
        return;
    }
    int lowest = -1;
    for (const int index : indices)
        if (has_entry(list, index) && (lowest < 0 || index < lowest))
            lowest = index;
    xvt_list_set_selection(list, lowest);
}

int xvt_list_get_focus_index(Window list) {
    const ItemList* items = list_of(list);
    return items == nullptr ? xvt_list_get_selection(list) : items->currentIndex().row();
}

void xvt_list_set_focus_index(Window list, int index) {
    ItemList* items = list_of(list);
    if (items == nullptr || !has_entry(list, index))
        return;
    const OwnChange change;
    items->set_focus_index(index);
}

void xvt_list_set_font(Window list, Font font) {
    if (model_of(list) != nullptr)
        find_window(list)->widget->setFont(widget_font(font));
}

} // namespace pellux
