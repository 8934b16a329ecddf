#include "master/FrmTraderList.h"

#include "common/Messages.h"
#include "core/Clock.h"
#include "master/FrmNewTrader.h"
#include "master/SearchRules.h"
#include "master/TraderRecords.h"
#include "storage/Stores.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>

namespace nb {
namespace {

constexpr int kCodeColumn = 4; // 상호, 성명, 전화번호, 주소, 거래처코드 from 0

QString thisMonth() {
    return today().toString(QStringLiteral("yyyy-MM"));
}

} // namespace

FrmTraderList::FrmTraderList(QWidget* parent)
    : MasterListForm({QStringLiteral("상호"), QStringLiteral("성명"), QStringLiteral("전화번호"),
                      QStringLiteral("주소"), QStringLiteral("거래처코드")},
                     parent) {
    setObjectName(QStringLiteral("FrmTraderList"));
    setWindowTitle(QStringLiteral("거래처 리스트"));
    QPushButton* newButton = allowChanges();
    m_code = addHiddenKeyBox(QStringLiteral("txtCCode"));
    setHints(QStringLiteral("상호명으로 검색  [검색:엔터]   [F3 : 거래처수정]"),
             QStringLiteral("거래처를 선택하세요.[Click or Enter]   [F3:거래처수정][F4:삭제]"));
    placeFirstColumnWidths({140, 70, 100, 170, 70});
    resize(640, 400);
    connect(newButton, &QPushButton::clicked, this, &FrmTraderList::newTrader);
    // Here a click on a row chooses it, as the select button and Enter do.
    connect(grdList(), &Grid::click, this, [this](int col, int row) {
        if (col > 0 && row > 0) chooseActiveRow();
    });
}

// The list lets go of the rows it reads before the kept searches go.
FrmTraderList::~FrmTraderList() {
    model()->clear();
    m_searches.clear();
}

void FrmTraderList::InitForm(const QString& name, int section, int& result) {
    m_name = StripSearchText(name);
    m_section = section;
    txtinput()->setText(m_name);
    const SqlPart query = TraderListQuery(stores().dbBasic, m_name, section);
    result = 0;
    std::unique_ptr<GridRowSource> rows = OpenListRows(stores().dbBasic, query.sql, query.values, m_searches);
    if (!rows) {
        model()->clear();
        return;
    }
    // A text every trader holds lists them all: the first page shows at once, the rest follows.
    // The rows take the list before's place in one change of the list.
    model()->fillFrom(std::move(rows));
    selectRow(0);
    const int shown = model()->rowCount();
    result = shown == 0 ? 0 : (shown == 1 && !model()->isFilling()) ? 1 : 2;
    if (result == 1) writeTarget(model()->text(0, kCodeColumn));
}

void FrmTraderList::refill() {
    int result = 0;
    InitForm(m_name, m_section, result);
}

void FrmTraderList::editActiveRow() {
    const QString code = activeText(5);
    if (code.isEmpty()) return;
    FrmNewTrader form(this);
    form.InitForm(1, activeText(1), thisMonth(), code);
    form.exec();
    refill();
}

void FrmTraderList::deleteActiveRow() {
    const QString code = activeText(5);
    if (code.isEmpty()) return;
    const int answer = AskYesNo(QStringLiteral("거래처에 대한 모든 거래내역도 삭제됩니다\r\n\r\n"
                                               "선택하신 거래처를 삭제하시겠습니까?"),
                                QStringLiteral("거래처 삭제"));
    if (answer != AnsYes) return;
    DeleteTraderWithBusiness(code);
    refill();
}

void FrmTraderList::newTrader() {
    FrmNewTrader form(this);
    form.SetObject(m_code);
    form.InitForm(0, txtinput()->text(), thisMonth(), QString());
    form.exec();
    if (!m_code->text().isEmpty()) refill();
}

void FrmTraderList::searchFromEntry() {
    const QString text = txtinput()->text();
    if (text.isEmpty()) return;
    selectFirstMatch(QStringLiteral("SELECT * FROM Trader WHERE C_Name LIKE ?") + kLikeEscape +
                         QStringLiteral(" ORDER BY C_Name NULLS FIRST;"),
                     LikePrefix(text), QStringLiteral("Code"), 4,
                     QStringLiteral("검색된 거래처가 없습니다."));
}

} // namespace nb
