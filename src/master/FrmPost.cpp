#include "master/FrmPost.h"

#include "common/input/FormPlacement.h"
#include "master/EntryForm.h"
#include "master/PostSearch.h"
#include "master/RoadSearch.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

namespace nb {

FrmPost::FrmPost(QWidget* parent)
    : MasterListForm({QStringLiteral("ZIPCODE"), QStringLiteral("SIDO"), QStringLiteral("GUGUN"),
                      QStringLiteral("DONG"), QStringLiteral("BUNJI")},
                     parent) {
    setObjectName(QStringLiteral("FrmPost"));
    setWindowTitle(QStringLiteral("우편번호 검색"));
    btnSelect()->hide();
    m_find = new QPushButton(QStringLiteral("검색(&F)"), this);
    m_find->setObjectName(QStringLiteral("btnFind"));
    m_find->setAutoDefault(false);
    buttonRow()->insertWidget(1, m_find);
    m_roadBook = new QCheckBox(QStringLiteral("도로명 주소(&R)"), this);
    m_roadBook->setObjectName(QStringLiteral("chkRoadBook"));
    m_roadBook->setFocusPolicy(Qt::NoFocus);
    m_roadBook->setChecked(UsesRoadBook());
    buttonRow()->insertWidget(1, m_roadBook);
    buildRoadList();
    connect(m_find, &QPushButton::clicked, this, &FrmPost::findAgain);
    connect(m_roadBook, &QCheckBox::toggled, this, [this](bool road) {
        SetUsesRoadBook(road);
        useBook(road);
        search(txtinput()->text().trimmed());
    });
    useBook(m_roadBook->isChecked());
}

// The road-name book's list: its own view over rows read as it is scrolled, in the place of the
// six-digit book's list.
void FrmPost::buildRoadList() {
    m_road = new RoadListModel(this);
    m_roadList = new QTableView(this);
    m_roadList->setObjectName(QStringLiteral("grdRoadList"));
    m_roadList->setModel(m_road);
    m_roadList->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_roadList->setSelectionMode(QAbstractItemView::SingleSelection);
    m_roadList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_roadList->verticalHeader()->setDefaultSectionSize(20);
    m_roadList->horizontalHeader()->setStretchLastSection(true);
    const QList<int> widths = {60, 230, 210};
    for (int c = 0; c < widths.size(); ++c)
        m_roadList->setColumnWidth(c, widths[c]);
    if (auto* box = qobject_cast<QBoxLayout*>(layout()))
        box->insertWidget(box->indexOf(grdList()) + 1, m_roadList, 1);
    m_roadList->hide();
    m_roadList->installEventFilter(this);
    connect(m_roadList, &QTableView::doubleClicked, this, [this] { chooseActiveRow(); });
}

int FrmPost::activeRoadRow() const {
    const QModelIndex current = m_roadList->currentIndex();
    return current.isValid() ? current.row() : -1;
}

bool FrmPost::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && searchesRoadBook()) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (watched == m_roadList && isEnterKey(key)) {
            chooseActiveRow();
            return true;
        }
        if (watched == txtinput() && (key == Qt::Key_Up || key == Qt::Key_Down)) {
            m_roadList->setFocus();
            return true;
        }
    }
    return MasterListForm::eventFilter(watched, event);
}

bool FrmPost::searchesRoadBook() const {
    return m_roadBook->isChecked();
}

void FrmPost::useBook(bool road) {
    if (road) {
        // Chosen before any road-name book was loaded: the hint says where one comes from.
        const QString hint =
            QFileInfo::exists(RoadBookFile())
                ? QStringLiteral("도로명, 건물명, 읍/면/동이나 지번으로 검색하세요. [전체검색 : 빈칸]")
                : QStringLiteral("도로명 우편번호가 없습니다. 기초등록 → 우편번호 가져오기로 가져오십시오.");
        setHints(hint, hint);
        resize(760, height());
    } else {
        const QString hint = QStringLiteral("읍/면/동으로 검색하세요. [전체검색 : 빈칸]");
        setHints(hint, hint);
        placeFirstColumnWidths({70, 60, 90, 120, 150});
    }
    grdList()->setVisible(!road);
    m_roadList->setVisible(road);
}

int FrmPost::search(const QString& text) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    int found = 0;
    if (searchesRoadBook()) {
        m_road->search(text);
        found = m_road->rowCount();
    } else {
        model()->setRows(SearchPostBook(text));
        found = model()->rowCount();
    }
    QApplication::restoreOverrideCursor();
    return found;
}

void FrmPost::selectFirst() {
    if (!searchesRoadBook()) {
        selectRow(0);
    } else if (m_road->rowCount() > 0) {
        m_roadList->setCurrentIndex(m_road->index(0, 0));
        m_roadList->selectRow(0);
    }
}

void FrmPost::SetObject(QLineEdit* zipTarget, QLineEdit* addrTarget) {
    holdTarget(zipTarget);
    if (!m_addrTarget) m_addrTarget = addrTarget;
}

void FrmPost::InitForm(const QString& text, int& result) {
    const int found = search(text);
    result = found == 0 ? 0 : found == 1 ? 1 : 2;
    if (result == 1 && searchesRoadBook()) {
        deliverRoad(0);
    } else if (result == 1) {
        deliver(SingleHitZip(model()->text(0, 0)),
                {model()->text(0, 0), model()->text(0, 1), model()->text(0, 2), model()->text(0, 3),
                 model()->text(0, 4)});
    }
    selectFirst();
}

void FrmPost::chooseActiveRow() {
    if (searchesRoadBook()) {
        const int row = activeRoadRow();
        if (row < 0) return;
        deliverRoad(row);
        accept();
        return;
    }
    const int row = activeRow();
    if (row < 0) return;
    QStringList values;
    for (int c = 0; c < 5; ++c)
        values << model()->text(row, c);
    deliver(ChosenZip(values.value(0)), values);
    accept();
}

void FrmPost::findAgain() {
    const QString text = txtinput()->text().trimmed();
    if (text.isEmpty()) return;
    search(text);
    selectFirst();
}

void FrmPost::deliverRoad(int row) {
    if (row < 0 || row >= m_road->rowCount()) return;
    const RoadAddress& a = m_road->address(row);
    writeTarget(a.zip);
    if (m_addrTarget) m_addrTarget->setText(RoadAddressText(a));
}

void FrmPost::deliver(const QString& zip, const QStringList& row) {
    writeTarget(zip);
    if (m_addrTarget) m_addrTarget->setText(AddressPrefix(row));
}

int RunPostcodeSearch(QWidget* caller, QLineEdit* zipBox, QLineEdit* addrBox) {
    FrmPost form(caller);
    form.SetObject(zipBox, addrBox);
    int result = 0;
    form.InitForm(zipBox->text().trimmed(), result);
    if (result != 1) {
        const QRect over = screenRectOf(caller);
        form.move(over.center() - QPoint(form.width() / 2, form.height() / 2));
        form.exec();
    }
    addrBox->setFocus();
    if (!addrBox->text().isEmpty()) {
        addrBox->setText(addrBox->text() + u' ');
        addrBox->end(false);
        // The box selects its text on entry a moment later; the caret goes to the end after it.
        QPointer<QLineEdit> box(addrBox);
        QTimer::singleShot(0, addrBox, [box] {
            if (box) box->end(false);
        });
    }
    return result;
}

} // namespace nb
