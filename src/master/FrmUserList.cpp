#include "master/FrmUserList.h"

#include "master/SearchRules.h"
#include "storage/Stores.h"

#include <QLabel>
#include <QLineEdit>

namespace nb {

SqlPart UserListQuery(const QString& text) {
    SqlPart part{QStringLiteral("SELECT Company, Delegate, Phone, Addr, Serial FROM User"), {}};
    if (!text.isEmpty()) {
        switch (UserSearchFor(text)) {
        case UserSearch::PhoneAnywhere:
            part.sql += QStringLiteral(" where Phone LIKE ?") + kLikeEscape;
            part.values << LikeContains(text);
            break;
        case UserSearch::CompanyAnywhere:
            part.sql += QStringLiteral(" where Company LIKE ?") + kLikeEscape;
            part.values << LikeContains(text);
            break;
        case UserSearch::CompanyPrefix:
            part.sql += QStringLiteral(" where Company LIKE ?") + kLikeEscape;
            part.values << LikePrefix(text);
            break;
        }
    }
    part.sql += QStringLiteral(" ORDER BY Company NULLS FIRST");
    return part;
}

FrmUserList::FrmUserList(QWidget* parent)
    : MasterListForm({QStringLiteral("상호"), QStringLiteral("대표자"), QStringLiteral("전화번호"),
                      QStringLiteral("주소"), QStringLiteral("사업자번호")},
                     parent) {
    setObjectName(QStringLiteral("FrmUserList"));
    setWindowTitle(QStringLiteral("사용자 리스트"));
    auto* txtCCode = new QLineEdit(this);
    txtCCode->setObjectName(QStringLiteral("txtCCode"));
    txtCCode->hide();
    setHints(QStringLiteral("상호명으로 검색  [검색:엔터]"),
             QStringLiteral("사용자를 선택하세요.[Click or Enter]"));
    placeFirstColumnWidths({130, 70, 100, 150, 110});
}

void FrmUserList::InitForm(const QString& text, int& result) {
    const QString clean = StripSearchText(text);
    txtinput()->setText(clean);
    const SqlPart query = UserListQuery(clean);
    Recordset rs;
    model()->clear();
    result = 0;
    if (!OpenSnapshot(stores().dbBasic, rs, query.sql, query.values)) return;
    if (rs.RecordCount() == 1) {
        writeTarget(rs.text(QStringLiteral("Serial")));
        result = 1;
    } else if (rs.RecordCount() > 1) {
        model()->setRows(RowsOf(rs));
        selectRow(0);
        result = 2;
    }
}

void FrmUserList::searchFromEntry() {
    const QString text = txtinput()->text();
    if (text.isEmpty()) return;
    selectFirstMatch(QStringLiteral("SELECT Serial FROM User WHERE Company LIKE ?") + kLikeEscape +
                         QStringLiteral(" ORDER BY Company NULLS FIRST;"),
                     LikePrefix(text), QStringLiteral("Serial"), 4,
                     QStringLiteral("검색된 사용자가 없습니다."));
}

} // namespace nb
