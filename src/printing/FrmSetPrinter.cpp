#include "printing/FrmSetPrinter.h"

#include "printing/PrinterSetup.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {

FrmSetPrinter::FrmSetPrinter(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmSetPrinter"));
    setWindowTitle(QStringLiteral("프린트 드라이버 설정"));

    lblDefault = new QLabel(QStringLiteral("기본프린터"), this);
    lblDefault->setObjectName(QStringLiteral("lblDefault"));
    Spn = new QLabel(this);
    Spn->setObjectName(QStringLiteral("Spn"));
    Spn->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    Spn->setMinimumWidth(260);
    List1 = new QListWidget(this);
    List1->setObjectName(QStringLiteral("List1"));
    List1->installEventFilter(this);
    Command1 = new QPushButton(QStringLiteral("확인"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, &FrmSetPrinter::Command1_Click);
    connect(List1, &QListWidget::itemDoubleClicked, this, &FrmSetPrinter::Command1_Click);

    auto* head = new QHBoxLayout;
    head->addWidget(lblDefault);
    head->addWidget(Spn, 1);
    auto* foot = new QHBoxLayout;
    foot->addStretch(1);
    foot->addWidget(Command1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(List1, 1);
    layout->addLayout(foot);
    resize(380, 260);

    fillPrinters();
    List1->setFocus();
}

void FrmSetPrinter::fillPrinters() {
    Spn->setText(GetDefaultPrinter() + u' ');
    List1->clear();
    List1->addItems(printerNames());
}

void FrmSetPrinter::InitForm(int Doc) {
    m_doc = Doc;
    // The row in force first: the document's saved printer, else the current one.
    QString chosen = savedDocPrinter(Doc);
    if (chosen.isEmpty()) chosen = currentPrinterName();
    const auto matches = List1->findItems(chosen, Qt::MatchExactly);
    List1->setCurrentItem(matches.isEmpty() ? List1->item(0) : matches.first());
}

void FrmSetPrinter::Command1_Click() {
    if (QListWidgetItem* item = List1->currentItem()) saveDocPrinter(m_doc, item->text());
    accept();
}

bool FrmSetPrinter::eventFilter(QObject* watched, QEvent* event) {
    if (watched == List1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            Command1_Click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

QString ChooseDocPrinter(int Doc, QWidget* parent) {
    FrmSetPrinter form(parent);
    form.InitForm(Doc);
    form.exec();
    const QString saved = savedDocPrinter(Doc);
    return saved.isEmpty() ? GetDefaultPrinter() : saved;
}

} // namespace nb
