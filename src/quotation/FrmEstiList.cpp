#include "quotation/FrmEstiList.h"

#include "common/input/FormPlacement.h"
#include "master/EntryForm.h"
#include "master/ListModel.h"
#include "storage/Stores.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
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
    q.sql += QStringLiteral("ORDER BY EstiDate, CName");
    return q;
}

FrmEstiList::FrmEstiList(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmEstiList"));
    setWindowTitle(QStringLiteral("견적 내역 조회"));
    m_model =
        new ListModel({QStringLiteral("견적번호"), QStringLiteral("견적일자"), QStringLiteral("거래처명"),
                       QStringLiteral("납품예정일"), QStringLiteral("부가세")},
                      this);
    grdList = new QTableView(this);
    grdList->setObjectName(QStringLiteral("grdList"));
    grdList->setModel(m_model);
    grdList->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdList->setSelectionMode(QAbstractItemView::SingleSelection);
    grdList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdList->verticalHeader()->setDefaultSectionSize(20);
    grdList->horizontalHeader()->setStretchLastSection(true);
    grdList->setColumnWidth(0, 100);
    grdList->setColumnWidth(1, 100);
    grdList->setColumnWidth(2, 190);
    grdList->setColumnWidth(3, 100);
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
    connect(grdList, &QTableView::doubleClicked, this, [this] { choose(); });
    grdList->installEventFilter(this);
    resize(640, 420);
}

void FrmEstiList::SetObject(QLabel* Target) {
    if (!m_target) m_target = Target;
}

void FrmEstiList::InitForm(int FindField, const QString& FindText) {
    const EstiListQuery q = estiListQuery(FindField, FindText);
    Recordset rs;
    m_model->clear();
    m_count = 0;
    if (!OpenSnapshot(stores().dbEstimate, rs, q.sql, q.values)) return;
    m_count = rs.RecordCount();
    m_model->setRows(RowsOf(rs));
    CloseRs(rs);
    if (m_count > 0) {
        grdList->setCurrentIndex(m_model->index(0, 0));
        grdList->selectRow(0);
    }
}

void FrmEstiList::showBelow(QWidget* anchor) {
    if (anchor) MoveFormUnder(this, anchor);
    exec();
}

void FrmEstiList::choose() {
    const QModelIndex current = grdList->currentIndex();
    const QString code = current.isValid() ? m_model->text(current.row(), 0) : QString();
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
