#pragma once

#include "core/common/containers.h"

#include <QDialog>
#include <QStringList>

#include <optional>
#include <span>

class QEventLoop;
class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace pellux {

/// A box: contents, and a row of buttons below, first to last. It is modal at first.
///
/// It may stay on the screen between two questions. It goes with its parent, also while a question
/// waits in it.
class Box : public QDialog {
public:
    Box(QWidget* parent, const QString& title);
    ~Box() override;
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;

    /// `escape` is what Escape and the close button answer. `taken` are the letters that mnemonics
    /// of the contents use; a button without one gets a letter that is free.
    void set_buttons(const QStringList& titles, int escape, QString taken = {});
    /// A bit for each.
    void disable_buttons(unsigned which);
    [[nodiscard]] QPushButton* default_button() const;

    /// Shows the box, if it is not shown yet, and waits for an answer. None when the box was
    /// destroyed or the program is told to end; nothing of a destroyed box may be touched.
    [[nodiscard]] std::optional<int> wait();
    /// Waits also when the program is told to end; for a box without a parent.
    void wait_whatever_happens();
    virtual void answer(int button);

    void reject() override;

protected:
    [[nodiscard]] QVBoxLayout& contents() { return *contents_; }
    /// Grows where the contents ask for more.
    void fit();

private:
    void begin_waiting();

    QVBoxLayout* contents_;
    QHBoxLayout* button_row_;
    QList<QPushButton*> buttons_;
    int escape_ = -1;
    bool is_waiting_ = false;
    QEventLoop* loop_ = nullptr; ///< waits for the answer, where one does
    std::optional<int> answer_;
};

/// What a box stands over: the box that asks now, else the active window, else the task window.
/// Null when there is none.
[[nodiscard]] QWidget* box_parent();
/// Shows one of the desktop's own boxes, so many characters wide and lines high as far as the
/// screen allows, and waits. False, and nothing of it may be touched, also when it was destroyed.
[[nodiscard]] bool is_accepted(QDialog* box, QSize characters);
/// Titles of buttons as Qt's texts.
[[nodiscard]] QStringList to_titles(std::span<const String> titles);
/// A title without the '&' of its mnemonic.
[[nodiscard]] QString without_mnemonic(const QString& title);

} // namespace pellux
