#include "common/MessageDialogs.h"

#include "common/Colors.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace nb {
namespace {

QWidget* activeParent() {
    return QApplication::activeWindow();
}

QLabel* colouredPanel(const QString& text, int color, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setAutoFillBackground(true);
    QPalette p = label->palette();
    p.setColor(QPalette::Window, colorFromBgr(color));
    label->setPalette(p);
    label->setMargin(16);
    return label;
}

QTimer* closingTimer(QDialog* dialog, int millis) {
    auto* timer = new QTimer(dialog);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, dialog, [dialog, timer] {
        timer->stop();
        dialog->done(QDialog::Accepted);
    });
    if (millis > 0) timer->start(millis);
    return timer;
}

} // namespace

FrmMsgbox::FrmMsgbox(const QString& text, int millis, int color, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("FrmMsgbox"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    pnlCaption = colouredPanel(text, color, this);
    pnlCaption->setObjectName(QStringLiteral("pnlCaption"));
    layout->addWidget(pnlCaption);
    setMinimumSize(260, 70);
    Timer1 = closingTimer(this, millis);
}

frmFloatMsg::frmFloatMsg(const QString& text, int millis, int color, QWidget* parent)
    : QDialog(parent,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus) {
    setObjectName(QStringLiteral("frmFloatMsg"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    pnlCaption = colouredPanel(text, color, this);
    pnlCaption->setObjectName(QStringLiteral("pnlCaption"));
    layout->addWidget(pnlCaption);
    QPalette p = palette();
    p.setColor(QPalette::Window, colorFromBgr(color));
    setPalette(p);
    setMinimumSize(260, 70);
    Timer1 = closingTimer(this, millis);
}

FrmProgress::FrmProgress(const QString& caption, int maximum, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmProgress"));
    setWindowTitle(applicationTitle());
    auto* layout = new QVBoxLayout(this);
    lblCaption = new QLabel(caption, this);
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, qMax(1, maximum));
    ProgressBar1->setValue(0);
    layout->addWidget(lblCaption);
    layout->addWidget(ProgressBar1);
    setMinimumWidth(360);
}

QMessageBox* buildMessageBox(const QString& text, int buttons, const QString& title, QWidget* parent) {
    auto* box = new QMessageBox(parent);
    box->setWindowTitle(title);
    box->setText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n'));
    switch (buttons & 112) {
    case MbQuestion:
        box->setIcon(QMessageBox::Question);
        break;
    case MbExclamation:
        box->setIcon(QMessageBox::Warning);
        break;
    case MbInformation:
        box->setIcon(QMessageBox::Information);
        break;
    case 16:
        box->setIcon(QMessageBox::Critical);
        break;
    default:
        box->setIcon(QMessageBox::NoIcon);
        break;
    }
    QList<QMessageBox::StandardButton> order;
    switch (buttons & 7) {
    case MbYesNoCancel:
        order = {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel};
        break;
    case MbYesNo:
        order = {QMessageBox::Yes, QMessageBox::No};
        break;
    case 1:
        order = {QMessageBox::Ok, QMessageBox::Cancel};
        break;
    default:
        order = {QMessageBox::Ok};
        break;
    }
    QMessageBox::StandardButtons set;
    for (auto b : order)
        set |= b;
    box->setStandardButtons(set);
    const int def = qMin<int>((buttons & 768) >> 8, int(order.size()) - 1);
    box->setDefaultButton(order[def]);
    if (order.contains(QMessageBox::Cancel)) box->setEscapeButton(QMessageBox::Cancel);
    return box;
}

int answerFor(int standardButton) {
    switch (standardButton) {
    case QMessageBox::Yes:
        return AnsYes;
    case QMessageBox::No:
        return AnsNo;
    case QMessageBox::Cancel:
        return AnsCancel;
    default:
        return AnsOk;
    }
}

int DialogMessages::box(const QString& text, int buttons, const QString& title) {
    QMessageBox* box = buildMessageBox(text, buttons, title, activeParent());
    box->exec();
    const int answer = answerFor(box->standardButton(box->clickedButton()));
    delete box;
    return answer;
}

void DialogMessages::notice(const QString& text, int millis, int color) {
    FrmMsgbox form(text, millis, color, activeParent());
    form.exec();
}

void DialogMessages::floatMsg(const QString& text, int millis, bool modal, int color) {
    closeFloatMsg();
    auto* form = new frmFloatMsg(text, millis, color, activeParent());
    form->setAttribute(Qt::WA_DeleteOnClose);
    m_float = form;
    if (modal)
        form->exec();
    else
        form->show();
}

void DialogMessages::closeFloatMsg() {
    if (m_float) m_float->close();
}

void DialogMessages::progressShow(const QString& caption, int maximum) {
    progressClose();
    m_progress = new FrmProgress(caption, maximum, activeParent());
    m_progress->setAttribute(Qt::WA_DeleteOnClose);
    m_progress->show();
    QApplication::processEvents();
}

void DialogMessages::progressSet(int value) {
    if (!m_progress) return;
    m_progress->ProgressBar1->setValue(value);
    if (value % 200 == 0) QApplication::processEvents(); // let the event pump run now and then
}

void DialogMessages::progressClose() {
    if (m_progress) m_progress->close();
}

QString DialogMessages::input(const QString& prompt, const QString& title, const QString& defaultText) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(activeParent(), title, prompt, QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}

} // namespace nb
