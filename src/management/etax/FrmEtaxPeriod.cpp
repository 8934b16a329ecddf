#include "management/etax/FrmEtaxPeriod.h"

#include "common/Messages.h"
#include "common/dates/DateBox.h"
#include "common/dates/DateText.h"
#include "core/Clock.h"
#include "management/etax/EtaxExportRun.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace nb {
namespace {

bool isDay(const QString& text) {
    return text.size() == 10 && IsDate(text);
}

} // namespace

FrmEtaxPeriod::FrmEtaxPeriod(const EtaxPeriod& screenPeriod, QWidget* parent)
    : QDialog(parent), m_lastMonth(lastMonthPeriod(today())), m_screen(screenPeriod) {
    setObjectName(QStringLiteral("FrmEtaxPeriod"));
    setWindowTitle(kEtaxTitle);
    const QDate lastMonth = QDate::fromString(m_lastMonth.from, QStringLiteral("yyyy-MM-dd"));
    optLastMonth = new QRadioButton(
        QStringLiteral("지난달(&M) %1 (%2 ~ %3)").arg(monthName(lastMonth), m_lastMonth.from, m_lastMonth.to),
        this);
    optLastMonth->setObjectName(QStringLiteral("optLastMonth"));
    optScreen =
        new QRadioButton(QStringLiteral("검색 기간(&S) %1 ~ %2").arg(m_screen.from, m_screen.to), this);
    optScreen->setObjectName(QStringLiteral("optScreen"));
    optDates = new QRadioButton(QStringLiteral("직접 입력(&D)"), this);
    optDates->setObjectName(QStringLiteral("optDates"));
    auto* group = new QButtonGroup(this);
    for (QRadioButton* option : {optLastMonth, optScreen, optDates})
        group->addButton(option);
    txtFrom = new DateBox(this);
    txtFrom->setObjectName(QStringLiteral("txtFrom"));
    txtTo = new DateBox(this);
    txtTo->setObjectName(QStringLiteral("txtTo"));
    txtFrom->setDateText(m_lastMonth.from);
    txtTo->setDateText(m_lastMonth.to);
    pnlDeadline = new QLabel(this);
    pnlDeadline->setObjectName(QStringLiteral("pnlDeadline"));
    pnlDeadline->setWordWrap(true);
    btnWrite = new QPushButton(QStringLiteral("작성(&W)"), this);
    btnWrite->setObjectName(QStringLiteral("btnWrite"));
    btnRecord = new QPushButton(QStringLiteral("전송 기록(&R)"), this);
    btnRecord->setObjectName(QStringLiteral("btnRecord"));
    btnCancel = new QPushButton(QStringLiteral("취소"), this);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnWrite->setDefault(true);

    auto* dates = new QHBoxLayout;
    dates->addSpacing(24);
    dates->addWidget(txtFrom);
    dates->addWidget(new QLabel(QStringLiteral("~"), this));
    dates->addWidget(txtTo);
    dates->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(btnRecord);
    buttons->addStretch();
    buttons->addWidget(btnWrite);
    buttons->addWidget(btnCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("국세청 일괄발급 엑셀로 보낼 세금계산서의 기간"), this));
    layout->addWidget(optLastMonth);
    layout->addWidget(optScreen);
    layout->addWidget(optDates);
    layout->addLayout(dates);
    layout->addWidget(pnlDeadline);
    layout->addLayout(buttons);
    resize(520, 260);

    for (QRadioButton* option : {optLastMonth, optScreen, optDates})
        connect(option, &QRadioButton::toggled, this, [this] {
            txtFrom->setEnabled(optDates->isChecked());
            txtTo->setEnabled(optDates->isChecked());
            showDeadline();
        });
    connect(txtFrom, &QLineEdit::textChanged, this, &FrmEtaxPeriod::showDeadline);
    connect(txtTo, &QLineEdit::textChanged, this, &FrmEtaxPeriod::showDeadline);
    connect(btnWrite, &QPushButton::clicked, this, &FrmEtaxPeriod::write);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(btnRecord, &QPushButton::clicked, this, [this] {
        if (m_openRecord) m_openRecord();
    });
    // The month just ended is what a shop sends each month.
    optLastMonth->setChecked(true);
    optLastMonth->setFocus();
}

EtaxPeriod FrmEtaxPeriod::chosen() const {
    if (optLastMonth->isChecked()) return m_lastMonth;
    if (optScreen->isChecked()) return m_screen;
    return {txtFrom->dateText(), txtTo->dateText()};
}

QString FrmEtaxPeriod::refusal() const {
    const EtaxPeriod p = chosen();
    if (!isDay(p.from) || !isDay(p.to))
        return QStringLiteral("기간의 날짜가 올바르지 않습니다: %1 ~ %2 (YYYY-MM-DD)").arg(p.from, p.to);
    if (p.from > p.to)
        return QStringLiteral("기간의 시작일이 종료일보다 뒤입니다: %1 ~ %2").arg(p.from, p.to);
    return QString();
}

void FrmEtaxPeriod::showDeadline() {
    pnlDeadline->setText(refusal().isEmpty() ? deadlineText(chosen(), today()) : QString());
}

void FrmEtaxPeriod::write() {
    if (const QString why = refusal(); !why.isEmpty()) {
        ShowWarning(why, kEtaxTitle);
        if (optDates->isChecked()) txtFrom->setFocus();
        return;
    }
    accept();
}

} // namespace nb
