#include "common/text/frmsosu.h"

#include "common/Messages.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace nb {
namespace {

constexpr int kSavedNoticeMillis = 500;
constexpr int kSavedNoticeColor = 16760000;

const QString kCaptionNone = QStringLiteral("소수점적용안함");
const QString kCaptionOne = QStringLiteral("소수점한자리");
const QString kCaptionTwo = QStringLiteral("소수점두자리");

} // namespace

frmsosu::frmsosu(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmsosu"));
    setWindowTitle(QStringLiteral("소수점 설정"));
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    buildControls();
    loadSettings();
}

void frmsosu::buildControls() {
    // The captions of each group run none, one place, two places; in the unit price group that
    // is gubun 4, 3, 5.
    const QString captions[6] = {kCaptionNone, kCaptionOne,  kCaptionTwo,
                                 kCaptionOne,  kCaptionNone, kCaptionTwo};
    for (int i = 0; i < 6; ++i) {
        m_gubun[size_t(i)] = new QRadioButton(captions[i]);
        m_gubun[size_t(i)]->setObjectName(QStringLiteral("gubun_%1").arg(i));
    }
    auto* qtyGroup = new QGroupBox(QStringLiteral("수량"));
    auto* qtyLayout = new QVBoxLayout(qtyGroup);
    for (int i : {0, 1, 2})
        qtyLayout->addWidget(gubun(i));
    auto* priceGroup = new QGroupBox(QStringLiteral("단가"));
    auto* priceLayout = new QVBoxLayout(priceGroup);
    for (int i : {4, 3, 5})
        priceLayout->addWidget(gubun(i));

    m_save = new QPushButton(QStringLiteral("저장(&S)"));
    m_save->setObjectName(QStringLiteral("vaBtn1"));
    m_close = new QPushButton(QStringLiteral("닫기(&C)"));
    m_close->setObjectName(QStringLiteral("vaBtn2"));
    connect(m_save, &QPushButton::clicked, this, &frmsosu::saveAndClose);
    connect(m_close, &QPushButton::clicked, this, &frmsosu::close);

    auto* groups = new QHBoxLayout;
    groups->addWidget(qtyGroup);
    groups->addWidget(priceGroup);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_save);
    buttons->addWidget(m_close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addLayout(buttons);
    setFixedSize(sizeHint());
}

void frmsosu::loadSettings() {
    const DecimalSettings values = ReadDecimalSettings();
    ApplyDecimalSettings(values);
    const DecimalOptions on = OptionsFor(values);
    for (size_t i = 0; i < m_gubun.size(); ++i) {
        m_gubun[i]->setVisible(true);
        if (on[i]) m_gubun[i]->setChecked(true);
    }
}

DecimalOptions frmsosu::checkedOptions() const {
    DecimalOptions on{};
    for (size_t i = 0; i < m_gubun.size(); ++i)
        on[i] = m_gubun[i]->isChecked();
    return on;
}

void frmsosu::saveAndClose() {
    SaveDecimalSettings(SettingsFromOptions(checkedOptions()));
    ShowNotice(QStringLiteral("자료를 저장하였습니다."), kSavedNoticeMillis, kSavedNoticeColor);
    close();
}

} // namespace nb
