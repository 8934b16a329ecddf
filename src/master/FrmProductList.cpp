#include "master/FrmProductList.h"

#include "common/Messages.h"
#include "master/FrmNewProduct.h"
#include "master/ProductRecords.h"
#include "master/SearchRules.h"
#include "storage/Stores.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace nb {
namespace {

constexpr int kPriceColumn = 3; // from 0
constexpr int kCodeColumn = 5;
constexpr int kOkCancel = 1;

} // namespace

FrmProductList::FrmProductList(QWidget* parent)
    : MasterListForm({QStringLiteral("상품명"), QStringLiteral("단 위"), QStringLiteral("구분"),
                      QStringLiteral("단 가"), QStringLiteral("대분류명"), QStringLiteral("상품코드"),
                      QStringLiteral("대분류코드")},
                     parent) {
    setObjectName(QStringLiteral("FrmProductList"));
    setWindowTitle(QStringLiteral("상품명 검색"));
    QPushButton* newButton = allowChanges();
    m_code = addHiddenKeyBox(QStringLiteral("txtPCode"));
    setHints(QStringLiteral("상품명을 검색하세요.  [검색:Enter]"),
             QStringLiteral("상품을 선택하세요.[Click or Enter]   [F3:상품수정][F4:삭제]"));
    placeFirstColumnWidths({190, 50, 45, 90, 70, 70, 70});
    resize(660, 400);
    connect(newButton, &QPushButton::clicked, this, &FrmProductList::newProduct);
    connect(txtinput(), &QLineEdit::textEdited, hintPanel(), &QLabel::clear);
}

void FrmProductList::SetObject(QLineEdit* target, const QString& text) {
    holdTarget(target);
    if (!text.isEmpty()) m_callerText = text;
    m_called = true;
}

void FrmProductList::InitForm(int kind, const QString& text, int& result) {
    m_kind = kind;
    m_text = text;
    txtinput()->setText(text);
    model()->clear();
    if (kind == 0) model()->setHeading(kPriceColumn, QStringLiteral("매입가"));
    if (kind == 1) model()->setHeading(kPriceColumn, QStringLiteral("매출가"));
    result = 0;
    // One statement, names that begin with the text first: the first page shows at once and
    // decides the answer, the rest is read between events or as the operator scrolls.
    auto count = std::make_shared<ProductListCount>();
    std::unique_ptr<GridRowSource> rows = OpenProductList(stores().dbBasic, text, kind, count);
    if (!rows) return;
    grdList()->showList(std::move(rows), -1);
    selectRow(0);
    result = ProductListResult(count->first, count->rows);
    if (result == 1) writeTarget(model()->text(0, kCodeColumn));
}

void FrmProductList::refill() {
    int result = 0;
    InitForm(m_kind, m_text, result);
}

void FrmProductList::editActiveRow() {
    const QString code = activeText(6);
    if (code.isEmpty()) return;
    FrmNewProduct form(this);
    form.InitForm(QString(), QString(), 1, code);
    form.exec();
    refill();
}

void FrmProductList::deleteActiveRow() {
    const QString code = activeText(6);
    if (code.isEmpty()) return;
    if (MsgBox(QStringLiteral("선택하신 상품을 삭제하시겠습니까?"), kOkCancel, QStringLiteral("상품삭제")) !=
        AnsOk)
        return;
    DeleteProduct(code);
    refill();
}

void FrmProductList::newProduct() {
    FrmNewProduct form(this);
    form.InitForm(txtinput()->text(), QString(), 0, QString());
    form.exec();
    refill();
}

void FrmProductList::searchFromEntry() {
    const QString text = txtinput()->text();
    if (text.isEmpty()) return;
    selectFirstMatch(QStringLiteral("SELECT * FROM Product WHERE PName LIKE ?") + kLikeEscape +
                         QStringLiteral(" ORDER BY PName;"),
                     likeLiteral(text), QStringLiteral("Code"), kCodeColumn,
                     QStringLiteral("검색한 상품명이 없습니다."));
}

} // namespace nb
