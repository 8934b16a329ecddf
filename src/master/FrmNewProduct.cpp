#include "master/FrmNewProduct.h"

#include "common/Messages.h"
#include "common/text/NumBox.h"
#include "master/EntryForm.h"
#include "master/FrmProductList.h"
#include "master/SearchRules.h"
#include "storage/Stores.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace nb {
namespace {

const char* const kLabels[kProductFieldCount] = {"상 품 명", "규      격", "매 입 가",
                                                 "매 출 가", "비      고", "단      위"};
const char* const kHints[kProductFieldCount] = {"상품명을 입력하세요.",   "규격을 입력하세요.",
                                                "매입가를 입력하세요.",   "매출가를 입력하세요.",
                                                "비고사항을 입력하세요.", "단위를 입력하세요."};
constexpr int kOkCancel = 1;

bool isPriceField(int index) {
    return index == 2 || index == 3;
}

} // namespace

FrmNewProduct::FrmNewProduct(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmNewProduct"));
    setWindowTitle(QStringLiteral("상품 등록"));
    buildControls();
}

// What the caller takes back: a document line holds products by code in its hidden txtPCode
// and fills the line from it; any other box gets the product's name.
QString FrmNewProduct::takenBack(const QString& code) const {
    return m_target->objectName() == u"txtPCode" ? code : m_fields[0]->text();
}

void FrmNewProduct::buildControls() {
    auto* grid = new QGridLayout;
    for (int i = 0; i < kProductFieldCount; ++i) {
        auto* label = fieldCaption(this, QString::fromUtf8(kLabels[i]));
        auto* box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("txtinput_%1").arg(i));
        m_fields[size_t(i)] = box;
        grid->addWidget(label, i, 0);
        grid->addWidget(box, i, 1);
    }
    AttachNumBox(m_fields[2]);
    AttachNumBox(m_fields[3]);
    m_code = new QLineEdit(this);
    m_code->setObjectName(QStringLiteral("txtPCode"));
    m_code->hide();
    const SaveExitRow row = addSaveExitRow(this, grid, QStringLiteral("SSPanel1"));
    m_hint = row.hint;
    m_save = row.save;
    m_exit = row.exit;
    resize(460, 260);

    watchEntryBoxes(this, m_fields);
    chainTabOrder({m_fields[5], m_save, m_exit});
    connect(m_save, &QPushButton::clicked, this, &FrmNewProduct::save);
}

void FrmNewProduct::SetObject(QLineEdit* target) {
    if (!m_target) m_target = target;
}

void FrmNewProduct::InitForm(const QString& name, const QString& caller, int mode, const QString& code) {
    Q_UNUSED(caller);
    m_mode = mode;
    m_save->setText(mode == 1 ? QStringLiteral("수정(&S)") : QStringLiteral("저장(&S)"));
    m_modeHint = mode == 1 ? QString() : QStringLiteral("[F3:검색 F4:삭제]");
    m_hint->setText(m_modeHint);
    if (!code.isEmpty()) {
        m_code->setText(code);
        LoadProduct(code);
    } else {
        emptyForm();
        m_fields[0]->setText(StripSearchText(name));
    }
    m_fields[0]->setFocus();
}

void FrmNewProduct::LoadProduct(const QString& code) {
    Recordset rs;
    if (!OpenSnapshot(stores().dbBasic, rs, QStringLiteral("Select * from Product where Code = ?"), {code}))
        return;
    if (rs.EOF_()) return;
    const char* const columns[kProductFieldCount] = {"PName",     "PNorm", "BuyPrice",
                                                     "SalePrice", "Bigo",  "Unit"};
    for (int i = 0; i < kProductFieldCount; ++i)
        m_fields[size_t(i)]->setText(rs.text(QLatin1String(columns[i])));
    m_code->setText(code);
}

QString FrmNewProduct::hintFor(int index) const {
    return QString::fromUtf8(kHints[index]);
}

void FrmNewProduct::emptyForm() {
    for (QLineEdit* box : m_fields)
        box->clear();
    m_code->clear();
    m_searched = false;
}

ProductFields FrmNewProduct::fields() const {
    ProductFields f;
    for (int i = 0; i < kProductFieldCount; ++i)
        f[size_t(i)] = m_fields[size_t(i)]->text();
    return f;
}

void FrmNewProduct::save() {
    QString code = m_code->text();
    for (int i : {2, 3})
        if (m_fields[size_t(i)]->text().trimmed().isEmpty())
            m_fields[size_t(i)]->setText(QStringLiteral("0"));
    const ProductSave outcome = SaveProduct(fields(), code, m_mode);
    switch (outcome) {
    case ProductSave::NameMissing:
        m_fields[0]->setFocus();
        return;
    case ProductSave::Cancelled:
        m_fields[0]->setFocus();
        return;
    case ProductSave::Declined:
        emptyForm();
        return;
    case ProductSave::Failed:
        return;
    case ProductSave::Inserted:
    case ProductSave::Updated:
        break;
    }
    if (outcome == ProductSave::Inserted && m_target) m_target->setText(takenBack(code));
    // Called from another screen (a target to fill, or a change from the list): back there.
    // Opened on its own: ready for the next product.
    if (m_target || m_mode == 1) {
        accept();
        return;
    }
    emptyForm();
    m_fields[0]->setFocus();
}

void FrmNewProduct::searchProduct() {
    FrmProductList list(this);
    list.SetObject(list.txtPCode());
    int result = 0;
    list.InitForm(1, m_fields[0]->text(), result);
    if (result != 1 && list.model()->rowCount() > 0) list.exec();
    const QString code = list.txtPCode()->text();
    if (code.isEmpty()) {
        MsgBox(QStringLiteral("검색된 상품이 없습니다."));
        return;
    }
    LoadProduct(code);
    m_searched = true;
}

void FrmNewProduct::deleteSearched() {
    if (!m_searched || m_code->text().isEmpty()) return;
    if (MsgBox(QStringLiteral("검색하신 상품을 삭제하시겠습니까?"), kOkCancel, QStringLiteral("상품삭제")) !=
        AnsOk)
        return;
    DeleteProduct(m_code->text());
    emptyForm();
}

bool FrmNewProduct::eventFilter(QObject* watched, QEvent* event) {
    const int index = boxIndex(m_fields, watched);
    if (index >= kProductFieldCount) return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn) m_hint->setText(hintFor(index));
    if (event->type() == QEvent::FocusOut && isPriceField(index) &&
        m_fields[size_t(index)]->text().trimmed().isEmpty())
        m_fields[size_t(index)]->setText(QStringLiteral("0"));
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_F3) {
            searchProduct();
            return true;
        }
        if (key == Qt::Key_F4) {
            deleteSearched();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
