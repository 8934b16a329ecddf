#pragma once
// Korean or Latin input per box. The mode goes to the input method as a hint: Latin boxes
// prefer Latin input, the others (names, addresses) are left to Hangul. Each form keeps the
// operator's last choice, flipped by the Hangul key, and applies it to the next box it opens.

#include <QObject>

class QWidget;

namespace nb {

// Sets the input mode of the control (the focus widget when null); nothing when there is none.
void SetImeMode(bool hangul, QWidget* control = nullptr);
// True when the control is set to Hangul input (it does not prefer Latin).
bool imeModeIsHangul(const QWidget* control);

// The per-form mode: true (Hangul) at first. Watched boxes take the mode when they get the
// focus; the Hangul key in a watched box flips it.
class HangulModeKeeper : public QObject {
    Q_OBJECT
public:
    explicit HangulModeKeeper(QObject* parent = nullptr, bool hangulOn = true);
    bool hangulOn() const { return m_hangulOn; }
    void setHangulOn(bool on) { m_hangulOn = on; }
    void watch(QWidget* box);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_hangulOn;
};

} // namespace nb
