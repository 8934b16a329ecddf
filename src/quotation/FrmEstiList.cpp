#include "quotation/FrmEstiList.h"

#include "common/ListRefresh.h"
#include "common/grid/Grid.h"
#include "common/grid/GridPlace.h"
#include "common/input/FormPlacement.h"
#include "master/EntryForm.h"
#include "master/ListModel.h"
#include "storage/ChangeNotices.h"
#include "storage/Stores.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSqlQuery>
#include <QVBoxLayout>

namespace nb {

EstiListQuery estiListQuery(int FindField, const QString& FindText) {
    static const QString columns[] = {QStringLiteral("CName"), QStringLiteral("EstiDate"),
                                      QStringLiteral("EstiCode"), QStringLiteral("DeriveDate")};
    EstiListQuery q;
    q.sql = QStringLiteral("SELECT EstiCode, EstiDate, CName, DeriveDate, "
                           "CASE WHEN Vat <> 0 THEN '1' ELSE '0' END AS Vat FROM EstiBase ");
    if (!FindText.isEmpty() && FindField >= 0 && FindField <= 3) {
        q.sql += QStringLiteral("WHERE ") + columns[FindField] + QStringLiteral(" LIKE ? ESCAPE '\\' ");
        q.values << u'%' + likeLiteral(FindText) + u'%';
    }
    q.sql += QStringLiteral("ORDER BY EstiDate NULLS FIRST, CName NULLS FIRST");
    return q;
}

FrmEstiList::FrmEstiList(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmEstiList"));
    setWindowTitle(QStringLiteral("견적 내역 조회"));
    grdList = new Grid(this);
    grdList->setObjectName(QStringLiteral("grdList"));
    m_model =
        new ListModel(grdList,
                      {QStringLiteral("견적번호"), QStringLiteral("견적일자"), QStringLiteral("거래처명"),
                       QStringLiteral("납품예정일"), QStringLiteral("부가세")},
                      this);
    grdList->horizontalHeader()->setStretchLastSection(true);
    const double widths[] = {12, 12, 26, 12};
    for (int c = 1; c <= 4; ++c)
        grdList->setColWidth(c, widths[c - 1]);
    btnSelect = formButton(this, QStringLiteral("선택(&S)"), QStringLiteral("btnSelect"));
    btnQuit = formButton(this, QStringLiteral("닫기(&Q)"), QStringLiteral("btnQuit"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btnSelect);
    buttons->addWidget(btnQuit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grdList, 1);
    layout->addLayout(buttons);
    connect(btnSelect, &QPushButton::clicked, this, &FrmEstiList::choose);
    connect(btnQuit, &QPushButton::clicked, this, &QDialog::reject);
    connect(grdList, &Grid::dblClick, this, [this](int col, int row) {
        if (col < 1 || row < 1) return;
        grdList->SetActiveCell(col, row);
        choose();
    });
    grdList->installEventFilter(this);
    resize(640, 420);
    // A quotation another seat saves while the list is open joins it, the chosen one kept.
    onListRefresh(this, [this] {
        if (!m_search) return;
        GridPlace place(*grdList, 1);
        InitForm(m_search->first, m_search->second);
        place.restore();
    });
    refreshListsOnChanges(this, {&stores().dbEstimate});
}

void FrmEstiList::SetObject(QLabel* Target) {
    if (!m_target) m_target = Target;
}

// Every quotation of an empty search shows its first page at once; the rest is read as the
// operator scrolls, or between events.
void FrmEstiList::InitForm(int FindField, const QString& FindText) {
    m_search = std::make_pair(FindField, FindText);
    const EstiListQuery q = estiListQuery(FindField, FindText);
    m_model->clear();
    auto rows = std::make_unique<QSqlQuery>(stores().dbEstimate.connection());
    if (!OpenForwardOnly(stores().dbEstimate, *rows, q.sql, q.values)) return;
    m_model->fillFrom(std::move(rows));
}

int FrmEstiList::rowCount() const {
    return grdList->DataRowCnt();
}

void FrmEstiList::showBelow(QWidget* anchor) {
    if (anchor) MoveFormUnder(this, anchor);
    exec();
}

void FrmEstiList::choose() {
    const int row = grdList->ActiveRow();
    const QString code = row > 0 ? grdList->Text(1, row) : QString();
    if (code.isEmpty()) return;
    if (m_target) m_target->setText(code);
    accept();
}

bool FrmEstiList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == grdList && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (isEnterKey(key)) {
            choose();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
