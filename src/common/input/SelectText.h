#pragma once
// Selecting the text of a box on entry, so that typing replaces it.

#include <QObject>

class QWidget;

namespace nb {

// Selects the text of the control (the focus widget when null). A masked box selects every
// character, the mask's included; any other box from the start to past its end; a box without
// text only gets the caret at the start. Controls without text are passed over.
void SelectAllText(QWidget* control = nullptr);

// Runs SelectAllText whenever a watched box takes the focus (after the click that gave it the
// focus has placed the caret).
class SelectAllOnFocus : public QObject {
    Q_OBJECT
public:
    explicit SelectAllOnFocus(QObject* parent = nullptr) : QObject(parent) {}
    void watch(QWidget* box);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace nb
