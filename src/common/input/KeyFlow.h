#pragma once
// Keyboard flow shared by every form: Enter and the down arrow move the focus on, the up arrow
// moves it back, every other key (the left and right arrows included) stays with the box.

#include <QObject>
#include <QPointer>
#include <functional>

class QWidget;

namespace nb {

enum class FocusMove { None, Next, Previous };

// What a key does to the focus.
FocusMove focusMoveForKey(int key);

// The widget the focus goes to from `from`, along the focus chain of its window; nullptr if none.
QWidget* nextFocusTarget(QWidget* from, FocusMove move);

// Moves the focus for the key, from `from` (the focus widget when null). True if the key moves
// the focus, whether or not there was a widget to move to.
bool EnterAsTab(int key, QWidget* from = nullptr);

// Installs the key flow on boxes of a form. A form that needs an exception (a search on
// Enter) says so through setException, which is asked first.
class EnterAsTabFilter : public QObject {
    Q_OBJECT
public:
    using Exception = std::function<bool(QWidget* box, int key)>;

    explicit EnterAsTabFilter(QObject* parent = nullptr);
    // One box.
    void watch(QWidget* box);
    // Every box of the form that takes the focus by Tab, grids excepted (their Enter and arrows
    // move between cells); a one-cell grid used as a date box is watched on its own.
    void watchChildren(QWidget* form);
    void setException(Exception exception) { m_exception = std::move(exception); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Exception m_exception;
};

// Creates a filter owned by the form and watches all its boxes.
EnterAsTabFilter* installEnterAsTab(QWidget* form);

} // namespace nb
