#include "printing/FrmMargin.h"

#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"
#include "core/Settings.h"
#include "printing/PrinterSetup.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {
namespace {

bool keepsMargins(int Doc) {
    return Doc == 0 || Doc == 1 || Doc == 5;
}

} // namespace

std::optional<MarginTexts> loadMarginTexts(int Doc) {
    if (!keepsMargins(Doc)) return std::nullopt;
    const QString doc = documentName(Doc);
    return MarginTexts{GetSetting(kAppSection, doc, QStringLiteral("topmargin"), QStringLiteral("0")),
                       GetSetting(kAppSection, doc, QStringLiteral("LeftMargin"), QStringLiteral("0"))};
}

bool saveMarginTexts(int Doc, const MarginTexts& texts) {
    if (!keepsMargins(Doc)) return false;
    const QString doc = documentName(Doc);
    SaveSetting(kAppSection, doc, QStringLiteral("TopMargin"), texts.top);
    SaveSetting(kAppSection, doc, QStringLiteral("LeftMargin"), texts.left);
    return true;
}

FrmMargin::FrmMargin(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmMargin"));
    setWindowTitle(QStringLiteral("Margin설정"));

    lblDoc = new QLabel(this);
    lblDoc->setObjectName(QStringLiteral("lblDoc"));
    lblTop = new QLabel(QStringLiteral("위쪽 여백 (줄)"), this);
    lblLeft = new QLabel(QStringLiteral("왼쪽 여백 (칸)"), this);
    lblNote = new QLabel(QStringLiteral("마이너스(-)와 소수점 설정가능"), this);
    lblNote->setObjectName(QStringLiteral("lblNote"));
    TxtTop = new QLineEdit(QStringLiteral("0"), this);
    TxtTop->setObjectName(QStringLiteral("TxtTop"));
    TxtLeft = new QLineEdit(QStringLiteral("0"), this);
    TxtLeft->setObjectName(QStringLiteral("TxtLeft"));
    Cmd설정 = new QPushButton(QStringLiteral("설정(&S)"), this);
    Cmd설정->setObjectName(QStringLiteral("Cmd설정"));
    Cmd취소 = new QPushButton(QStringLiteral("취소(&C)"), this);
    Cmd취소->setObjectName(QStringLiteral("Cmd취소"));
    // Enter and the arrows move between the boxes; Enter on a button presses it.
    auto* keyFlow = new EnterAsTabFilter(this);
    auto* selectOnEntry = new SelectAllOnFocus(this);
    for (QLineEdit* box : {TxtTop, TxtLeft}) {
        box->setAlignment(Qt::AlignRight);
        keyFlow->watch(box);
        selectOnEntry->watch(box);
    }
    connect(Cmd설정, &QPushButton::clicked, this, &FrmMargin::Cmd설정_Click);
    connect(Cmd취소, &QPushButton::clicked, this, &QDialog::reject);

    auto* boxes = new QGridLayout;
    boxes->addWidget(lblTop, 0, 0);
    boxes->addWidget(TxtTop, 0, 1);
    boxes->addWidget(lblLeft, 1, 0);
    boxes->addWidget(TxtLeft, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(Cmd설정);
    buttons->addWidget(Cmd취소);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblDoc);
    layout->addLayout(boxes);
    layout->addWidget(lblNote);
    layout->addLayout(buttons);
    setTabOrder(TxtTop, TxtLeft);
    setTabOrder(TxtLeft, Cmd설정);
    setTabOrder(Cmd설정, Cmd취소);
    resize(280, 170);
}

void FrmMargin::InitForm(int Doc) {
    m_doc = Doc;
    lblDoc->setText(documentTitle());
}

QString FrmMargin::documentTitle() const {
    return documentName(m_doc);
}

void FrmMargin::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    fillBoxes();
    TxtTop->setFocus();
    TxtTop->selectAll();
}

void FrmMargin::fillBoxes() {
    if (const auto texts = loadMarginTexts(m_doc)) {
        TxtTop->setText(texts->top);
        TxtLeft->setText(texts->left);
    }
}

void FrmMargin::Cmd설정_Click() {
    saveMarginTexts(m_doc, MarginTexts{TxtTop->text(), TxtLeft->text()});
    accept();
}

} // namespace nb
