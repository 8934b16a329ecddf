#pragma once
// The pieces the master data entry forms are built from: the raised caption in front of each
// box, the sunken panel that shows the hint of the box in focus, buttons that never act as the
// default, and the key flow every box of a form gets.

#include <QWidget>
#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

class QHBoxLayout;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;

namespace nb {

class HangulModeKeeper;

bool isEnterKey(int key);

// The raised caption in front of a box.
QLabel* fieldCaption(QWidget* parent, const QString& text, int minWidth = 80);
// The sunken panel that shows hints.
QLabel* hintPanel(QWidget* parent, const QString& objectName);
// A button that Enter in a box never presses.
QPushButton* formButton(QWidget* parent, const QString& caption, const QString& objectName);

// The hint panel with 저장 and 종료 under the fields; 종료 closes the form.
struct SaveExitRow {
    QLabel* hint = nullptr;
    QPushButton* save = nullptr;
    QPushButton* exit = nullptr;
};
// Lays out the fields over that row as the form's whole layout.
SaveExitRow addSaveExitRow(QDialog* form, QLayout* fields, const QString& hintName);

// Enter moves on, a box that takes the focus selects its text, and with a keeper the Hangul
// mode is kept. The form's own filter is installed last, so it sees the keys first.
void watchEntryBoxes(QWidget* form, std::span<QLineEdit* const> boxes, HangulModeKeeper* hangul = nullptr);
// Tab goes through the widgets in the order given.
void chainTabOrder(std::initializer_list<QWidget*> order);
void chainTabOrder(std::span<QWidget* const> order);

// The index of the watched box, boxes.size() when it is none of them.
template <std::size_t N> int boxIndex(const std::array<QLineEdit*, N>& boxes, const QObject* watched) {
    return int(std::find(boxes.begin(), boxes.end(), watched) - boxes.begin());
}

} // namespace nb
