#include "master/FrmUser.h"

#include "common/Messages.h"
#include "common/input/FormPlacement.h"
#include "common/input/ImeMode.h"
#include "common/text/BusinessNumber.h"
#include "common/text/Identity.h"
#include "core/AppState.h"
#include "master/EntryForm.h"
#include "master/FrmPost.h"
#include "master/FrmUserList.h"
#include "storage/Stores.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {
namespace {

const char* const kFieldLabels[kSupplierFieldCount] = {"상      호", "대  표  자", "사업자번호", "우편번호",
                                                       "주      소", "전화번호",   "팩스번호",   "업      태",
                                                       "종      목", "이 메 일"};

} // namespace

FrmUser::FrmUser(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmUser"));
    setWindowTitle(QStringLiteral("사업자 등록"));
    buildControls();
    buildKeyFlow();
    m_state.HasUser = LoadDefaultUser();
    m_state.IsNew = false;
    if (!rsUser().EOF_()) DisplayUser(rsUser().text(QStringLiteral("Serial")));
}

void FrmUser::buildControls() {
    auto* grid = new QGridLayout;
    for (int i = 0; i < kSupplierFieldCount; ++i) {
        auto* label = fieldCaption(this, QString::fromUtf8(kFieldLabels[i]), 90);
        m_fields[size_t(i)] = new QLineEdit(this);
        m_fields[size_t(i)]->setObjectName(QStringLiteral("txtinput_%1").arg(i));
        grid->addWidget(label, i, 0);
        grid->addWidget(m_fields[size_t(i)], i, 1, 1, i == 3 ? 1 : 2);
    }
    m_post = formButton(this, QStringLiteral("우편번호"), QStringLiteral("btnPost"));
    grid->addWidget(m_post, 3, 2);
    grid->setColumnStretch(1, 1);
    m_default = new QCheckBox(QStringLiteral("기본 사업자로 설정"), this);
    m_default->setObjectName(QStringLiteral("ChkDefault"));
    grid->addWidget(m_default, kSupplierFieldCount, 1);

    m_save = formButton(this, QStringLiteral("저장(&S)"), QStringLiteral("btnSave"));
    m_new = formButton(this, QStringLiteral("신규(&N)"), QStringLiteral("cmdNew"));
    m_delete = formButton(this, QStringLiteral("삭제(&D)"), QStringLiteral("cmdDelete"));
    m_find = formButton(this, QStringLiteral("찾기(&F)"), QStringLiteral("cmdFind"));
    m_previous = formButton(this, QStringLiteral("◀ 이전"), QStringLiteral("CmdMove_0"));
    m_next = formButton(this, QStringLiteral("다음 ▶"), QStringLiteral("CmdMove_1"));
    m_quit = formButton(this, QStringLiteral("닫기(&Q)"), QStringLiteral("btnQuit"));
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {m_save, m_new, m_delete, m_find, m_previous, m_next, m_quit})
        buttons->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    resize(560, 360);

    connect(m_save, &QPushButton::clicked, this, &FrmUser::save);
    connect(m_new, &QPushButton::clicked, this, &FrmUser::newSupplier);
    connect(m_delete, &QPushButton::clicked, this, &FrmUser::deleteSupplier);
    connect(m_find, &QPushButton::clicked, this, &FrmUser::find);
    connect(m_previous, &QPushButton::clicked, this, &FrmUser::movePrevious);
    connect(m_next, &QPushButton::clicked, this, &FrmUser::moveNext);
    connect(m_quit, &QPushButton::clicked, this, &FrmUser::closeForm);
    connect(m_post, &QPushButton::clicked, this, &FrmUser::postcode);
    connect(m_default, &QCheckBox::clicked, this, &FrmUser::defaultClicked);
}

void FrmUser::buildKeyFlow() {
    chainTabOrder({m_fields[0], m_fields[1], m_fields[2], m_fields[3], m_fields[4], m_fields[5], m_fields[6],
                   m_fields[7], m_fields[8], m_fields[9], m_default, m_post, m_save, m_new, m_delete, m_find,
                   m_previous, m_next, m_quit});
    m_hangul = new HangulModeKeeper(this);
    watchEntryBoxes(this, m_fields, m_hangul);
    m_quit->installEventFilter(this);
}

bool FrmUser::hangulMode() const {
    return m_hangul->hangulOn();
}

SupplierFields FrmUser::fields() const {
    SupplierFields f;
    for (int i = 0; i < kSupplierFieldCount; ++i)
        f[size_t(i)] = m_fields[size_t(i)]->text();
    return f;
}

void FrmUser::emptyForm() {
    for (QLineEdit* box : m_fields)
        box->clear();
    m_default->setChecked(false);
}

void FrmUser::DisplayUser(const QString& serial) {
    emptyForm();
    SupplierFields f;
    if (!ReadSupplier(serial, f)) return;
    for (int i = 0; i < kSupplierFieldCount; ++i)
        m_fields[size_t(i)]->setText(f[size_t(i)]);
    m_default->setChecked(app().DefaultSerial == serial);
    m_state.OldSerial = m_fields[kSerialField]->text();
}

void FrmUser::save() {
    const SupplierSave outcome = SaveSupplier(m_state, fields(), m_default->isChecked());
    if (outcome == SupplierSave::SerialMissing || outcome == SupplierSave::Duplicate)
        m_fields[kSerialField]->setFocus();
    if (outcome == SupplierSave::BadEmail) m_fields[kSupplierEmailField]->setFocus();
}

void FrmUser::newSupplier() {
    emptyForm();
    m_state.IsNew = true;
    m_fields[0]->setFocus();
}

void FrmUser::deleteSupplier() {
    const int answer = AskYesNo(QStringLiteral("현재 사업자를 정말 삭제 하시겠습니까?\r\n"
                                               "※사업자번호가 같은 사업자는 모두 삭제됩니다."),
                                QStringLiteral("사업자 삭제"), false);
    if (answer != AnsYes) return;
    if (!DeleteSupplier(m_fields[kSerialField]->text(), m_default->isChecked())) return;
    if (LoadDefaultUser() && !rsUser().EOF_())
        DisplayUser(rsUser().text(QStringLiteral("Serial")));
    else
        DisplayUser(QString());
}

void FrmUser::moveTo(bool next) {
    const QString serial = NeighbourSupplier(m_fields[kSerialField]->text(), next);
    if (!serial.isEmpty()) DisplayUser(serial);
}

void FrmUser::find() {
    QLineEdit* serialBox = m_fields[kSerialField];
    const QString remembered = serialBox->text();
    serialBox->clear();
    FrmUserList list(this);
    list.SetObject(serialBox);
    int result = 0;
    list.InitForm(m_fields[0]->text(), result);
    if (result == 0) {
        ShowInfo(QStringLiteral("등록된 유저가 없습니다."));
        DisplayUser(remembered);
        return;
    }
    if (result == 2) {
        list.move(screenRectOf(m_fields[0]).topLeft());
        list.exec();
    }
    DisplayUser(serialBox->text().isEmpty() ? remembered : serialBox->text());
}

void FrmUser::closeForm() {
    if (LoadDefaultUser()) {
        QDialog::reject();
        return;
    }
    const int answer = AskYesNo(QStringLiteral("사업자가 등록되지 않았습니다.\r\n"
                                               "사업자를 등록하지 않으면 프로그램이 종료됩니다.\r\n"
                                               "종료하시겠습니까?"),
                                QStringLiteral("사업자 등록"), false);
    // Yes closes the form only: the program goes on, whatever the question said.
    if (answer == AnsYes) QDialog::reject();
}

void FrmUser::postcode() {
    RunPostcodeSearch(this, m_fields[3], m_fields[4]);
}

void FrmUser::defaultClicked(bool checked) {
    const QString serial = m_fields[kSerialField]->text();
    if (!checked || serial.isEmpty()) return;
    SetDefaultSupplier(serial);
    m_state.HasUser = LoadDefaultUser();
}

void FrmUser::shapeOnLeave(int index) {
    QLineEdit* box = m_fields[size_t(index)];
    if (index == kSerialField) {
        box->setText(ShapeBusinessNo(box->text()));
        WarnOnBadBusinessNumber(box->text(), false);
    }
    if (index == 3) box->setText(ShapePostCode(box->text()));
}

bool FrmUser::fieldKey(int index, int key) {
    if (index == 3 && isEnterKey(key)) {
        postcode();
        return true;
    }
    if (index == 0 && key == Qt::Key_Up) {
        m_quit->setFocus();
        return true;
    }
    return false;
}

bool FrmUser::eventFilter(QObject* watched, QEvent* event) {
    const int index = boxIndex(m_fields, watched);
    if (event->type() == QEvent::FocusOut && index < kSupplierFieldCount) shapeOnLeave(index);
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (index < kSupplierFieldCount) return fieldKey(index, key);
    if (watched == m_quit && key == Qt::Key_Left) {
        focusPreviousChild();
        return true;
    }
    if (watched == m_quit && key == Qt::Key_Right) {
        m_fields[0]->setFocus();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
