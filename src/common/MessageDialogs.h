#pragma once
// The on-screen forms of the message service: the timed notice FrmMsgbox, the floating
// message frmFloatMsg, the progress form FrmProgress, and the backend that shows them and
// Qt's message boxes.

#include "common/Messages.h"

#include <QDialog>
#include <QPointer>

class QLabel;
class QProgressBar;
class QTimer;
class QMessageBox;

namespace nb {

// Timed notice: a coloured panel without a title bar that closes itself.
class FrmMsgbox : public QDialog {
    Q_OBJECT
public:
    FrmMsgbox(const QString& text, int millis, int color, QWidget* parent = nullptr);
    QLabel* pnlCaption;
    QTimer* Timer1;
};

// Floating message: takes no input and goes away by itself when its timer is set.
class frmFloatMsg : public QDialog {
    Q_OBJECT
public:
    frmFloatMsg(const QString& text, int millis, int color, QWidget* parent = nullptr);
    QLabel* pnlCaption;
    QTimer* Timer1;
};

class FrmProgress : public QDialog {
    Q_OBJECT
public:
    FrmProgress(const QString& caption, int maximum, QWidget* parent = nullptr);
    QLabel* lblCaption;
    QProgressBar* ProgressBar1;
};

// Builds the Qt box for a MsgBox value (icon, buttons, default button); exposed for tests.
QMessageBox* buildMessageBox(const QString& text, int buttons, const QString& title, QWidget* parent);
// The answer code for the button a box returned.
int answerFor(int standardButton);

class DialogMessages : public MessageBackend {
public:
    int box(const QString& text, int buttons, const QString& title) override;
    void notice(const QString& text, int millis, int color) override;
    void floatMsg(const QString& text, int millis, bool modal, int color) override;
    void closeFloatMsg() override;
    void progressShow(const QString& caption, int maximum) override;
    void progressSet(int value) override;
    void progressClose() override;
    QString input(const QString& prompt, const QString& title, const QString& defaultText) override;

private:
    QPointer<frmFloatMsg> m_float;
    QPointer<FrmProgress> m_progress;
};

} // namespace nb
