#include "master/FrmNewTrader.h"

#include "common/Messages.h"
#include "common/input/ImeMode.h"
#include "common/text/BusinessNumber.h"
#include "common/text/EmailAddress.h"
#include "common/text/Identity.h"
#include "common/text/NumBox.h"
#include "master/EntryForm.h"
#include "master/FrmPost.h"
#include "master/SearchRules.h"
#include "storage/Stores.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <vector>

namespace nb {
namespace {

struct FieldInfo {
    int index;
    const char* label;
    const char* hint;
};

// In the order the operator goes through them.
const FieldInfo kFields[kTraderFieldCount] = {
    {0, "상      호", "상호명을 입력하세요."},
    {1, "성      명", "성명을 입력하세요."},
    {2, "전화번호", "전화번호를 입력하세요."},
    {3, "팩스번호", "팩스번호를 입력하세요."},
    {15, "휴 대 폰", "휴대폰번호를 입력하세요."},
    {4, "부 가 세", "부가세 계산방법. 0:계산안함  1:단가/1.1  2:단가*0.1"},
    {5, "담 당 자", "코드나 이름으로 담당자를 검색하세요."},
    {6, "사업번호", "사업/주민번호를 입력하세요."},
    {7, "업      태", "업태를 입력하세요."},
    {8, "종      목", "종목을 입력하세요."},
    {9, "우편번호", "읍/면/동 입력 후 Enter로 검색. [전체검색 : PageDown]"},
    {10, "주      소", "번지를 입력하세요."},
    {11, "비      고", "기타 사항을 입력하세요."},
    {12, "초기잔액", ""},
    {13, "개업일자", "개업일자를 입력하세요."},
    {14, "폐업일자", "폐업일자를 입력하세요."},
    {16, "이 메 일", "전자세금계산서를 받을 이메일 주소를 입력하세요."},
};

constexpr int kVatField = 4;
constexpr int kChargeField = 5;
constexpr int kSerialField = 6;
constexpr int kPostField = 9;
constexpr int kAddrField = 10;
constexpr int kBalanceField = 12;

bool isPhoneField(int index) {
    return index == 2 || index == 3 || index == 15;
}

} // namespace

FrmNewTrader::FrmNewTrader(QWidget* parent) : QDialog(parent), m_trader(std::make_unique<clsTrader>()) {
    setObjectName(QStringLiteral("FrmNewTrader"));
    setWindowTitle(QStringLiteral("거래처 등록"));
    buildControls();
    buildKeyFlow();
}

FrmNewTrader::~FrmNewTrader() = default;

void FrmNewTrader::buildControls() {
    auto* grid = new QGridLayout;
    for (int i = 0; i < kTraderFieldCount; ++i) {
        const FieldInfo& info = kFields[i];
        auto* box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("txtinput_%1").arg(info.index));
        m_fields[size_t(info.index)] = box;
        grid->addWidget(fieldCaption(this, QString::fromUtf8(info.label)), i, 0);
        grid->addWidget(box, i, 1);
    }
    m_info = hintPanel(this, QStringLiteral("pnlInfo"));
    grid->addWidget(m_info, 5, 2);
    m_charge = new QLineEdit(this);
    m_charge->setObjectName(QStringLiteral("txtCharge"));
    m_charge->setReadOnly(true);
    m_charge->setFocusPolicy(Qt::NoFocus);
    grid->addWidget(m_charge, 6, 2);
    m_post = formButton(this, QStringLiteral("우편번호"), QStringLiteral("btnPost"));
    m_post->setFocusPolicy(Qt::NoFocus);
    grid->addWidget(m_post, 10, 2);
    grid->setColumnStretch(1, 1);
    AttachNumBox(m_fields[kBalanceField]);

    const SaveExitRow row = addSaveExitRow(this, grid, QStringLiteral("pnlCaption"));
    m_caption = row.hint;
    m_save = row.save;
    m_exit = row.exit;
    resize(560, 560);

    connect(m_save, &QPushButton::clicked, this, &FrmNewTrader::save);
    connect(m_post, &QPushButton::clicked, this, &FrmNewTrader::postcode);
}

void FrmNewTrader::buildKeyFlow() {
    std::vector<QWidget*> order;
    for (const FieldInfo& info : kFields)
        order.push_back(m_fields[size_t(info.index)]);
    order.push_back(m_save);
    order.push_back(m_exit);
    chainTabOrder(order);
    m_hangul = new HangulModeKeeper(this);
    watchEntryBoxes(this, m_fields, m_hangul);
}

void FrmNewTrader::SetObject(QLineEdit* target) {
    if (!m_target) m_target = target;
}

void FrmNewTrader::InitForm(int mode, const QString& name, const QString& month, const QString& code) {
    m_mode = mode;
    m_month = month + QStringLiteral("-00"); // kept as the form always had it; nothing reads it
    m_code = code;
    if (!code.isEmpty()) Disp(code);
    m_fields[0]->setText(StripSearchText(name));
    m_fields[0]->setFocus();
}

void FrmNewTrader::Disp(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("select * from Trader where Code = ?"), {code}))
        return;
    if (rs.EOF_()) return;
    const std::pair<int, const char*> shown[] = {{1, "U_Name"}, {2, "Phone"}, {3, "Fax"},    {15, "HPhone"},
                                                 {10, "Addr1"}, {11, "Bigo"}, {6, "Serial"}, {7, "Status"},
                                                 {8, "Item"},   {9, "Post"},  {16, "Email"}};
    for (const auto& [index, column] : shown)
        m_fields[size_t(index)]->setText(rs.text(QLatin1String(column)));
}

QString FrmNewTrader::hintFor(int index) const {
    if (index == kBalanceField)
        return m_mode == 0 ? QStringLiteral("초기 미불금을 입력하세요.")
                           : QStringLiteral("초기 미수금을 입력하세요");
    for (const FieldInfo& info : kFields)
        if (info.index == index) return QString::fromUtf8(info.hint);
    return QString();
}

TraderForm FrmNewTrader::formValues() const {
    TraderForm form;
    for (int i = 0; i < kTraderFieldCount; ++i)
        form.fields[size_t(i)] = m_fields[size_t(i)]->text();
    form.charge = m_charge->text();
    form.mode = m_mode;
    form.code = m_code;
    return form;
}

void FrmNewTrader::emptyForm() {
    for (QLineEdit* box : m_fields)
        box->clear();
    m_charge->clear();
    m_info->clear();
}

bool FrmNewTrader::prepare() {
    if (m_fields[kBalanceField]->text().trimmed().isEmpty())
        m_fields[kBalanceField]->setText(QStringLiteral("0"));
    if (m_fields[kVatField]->text().isEmpty()) {
        m_fields[kVatField]->setText(QStringLiteral("0"));
        m_info->setText(VatKindText(0));
    }
    if (m_code.isEmpty() && !m_trader->NextCode(m_code)) return false;
    return FillTrader(formValues(), *m_trader);
}

bool FrmNewTrader::saveNew() {
    // The code is taken inside the save, begun as a write: two running copies never give one
    // code twice.
    // A try the server broke off leaves nothing: the next try takes the code anew, and only a
    // saved trader's code stays.
    Database& db = stores().dbBasic;
    const QString shown = m_code;
    const bool saved = RetryingSave([&] {
        m_code = shown;
        if (!db.beginTransaction()) {
            ReportSaveFailure(db, QStringLiteral("거래처를 저장하지 못했습니다."));
            return false;
        }
        if (!prepare()) {
            db.rollback();
            return false;
        }
        m_trader->SaveTrader();
        if (db.commit()) return true;
        ReportSaveFailure(db, QStringLiteral("거래처를 저장하지 못했습니다."));
        return false;
    });
    if (!saved) m_code = shown;
    return saved;
}

bool FrmNewTrader::saveChange() {
    if (!prepare()) return false;
    m_trader->UpdateTrader();
    return true;
}

void FrmNewTrader::save() {
    if (m_fields[0]->text().isEmpty() && m_fields[2]->text().isEmpty() &&
        m_fields[kAddrField]->text().isEmpty()) {
        MsgBox(QStringLiteral("상호명, 전화번호, 주소 중 하나는 필수입력입니다."));
        m_fields[0]->setFocus();
        return;
    }
    // A wrong address would send the issued invoices nowhere: it is refused, nothing is saved.
    if (const QString refused = emailRefusal(m_fields[kTraderEmailField]->text()); !refused.isEmpty()) {
        ShowWarning(refused, windowTitle());
        m_fields[kTraderEmailField]->setFocus();
        return;
    }
    bool saved = false;
    if (m_mode == 1) {
        saved = saveChange();
    } else {
        bool found = false;
        m_trader->CheckField(quint8(m_mode), m_fields[0]->text(), found);
        if (found && AskYesNo(m_fields[0]->text() +
                                  QStringLiteral("는 이미 등록된 거래처입니다.\r\n등록하시겠습니까?\r\n"
                                                 "[예] - 등록함.\r\n[아니오] - 등록하지 않고 종료"),
                              QStringLiteral("상호명 중복")) != AnsYes) {
            emptyForm();
            return;
        }
        saved = saveNew();
    }
    if (!saved) return;
    if (m_target) m_target->setText(m_code);
    accept();
}

void FrmNewTrader::postcode() {
    RunPostcodeSearch(this, m_fields[kPostField], m_fields[kAddrField]);
}

void FrmNewTrader::leaveField(int index) {
    QLineEdit* box = m_fields[size_t(index)];
    if (isPhoneField(index)) box->setText(FormatPhone(box->text()));
    if (index == kVatField) {
        if (box->text().isEmpty()) box->setText(QStringLiteral("0"));
        bool ok = false;
        const int kind = box->text().trimmed().toInt(&ok);
        m_info->setText(ok ? VatKindText(kind) : QString());
    }
    if (index == kChargeField && box->text().isEmpty()) m_charge->clear();
    if (index == kSerialField) WarnOnBadBusinessNumber(box->text(), true);
}

bool FrmNewTrader::fieldKey(int index, int key) {
    const bool empty = m_fields[size_t(index)]->text().isEmpty();
    if (index == kPostField && ((isEnterKey(key) && !empty) || (key == Qt::Key_PageDown && empty))) {
        postcode();
        return true;
    }
    if (index == 0 && key == Qt::Key_Up) {
        m_exit->setFocus();
        return true;
    }
    return false;
}

bool FrmNewTrader::eventFilter(QObject* watched, QEvent* event) {
    const int index = boxIndex(m_fields, watched);
    if (index >= kTraderFieldCount) return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn) m_caption->setText(hintFor(index));
    if (event->type() == QEvent::FocusOut) {
        leaveField(index);
        m_caption->clear();
    }
    if (event->type() == QEvent::KeyPress) return fieldKey(index, static_cast<QKeyEvent*>(event)->key());
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
