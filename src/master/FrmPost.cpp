#include "master/FrmPost.h"

#include "common/input/FormPlacement.h"
#include "core/AppState.h"
#include "master/EntryForm.h"
#include "master/PostSearch.h"
#include "master/RoadSearch.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace nb {
namespace {

const QStringList& postHeadings() {
    static const QStringList headings = {QStringLiteral("ZIPCODE"), QStringLiteral("SIDO"),
                                         QStringLiteral("GUGUN"), QStringLiteral("DONG"),
                                         QStringLiteral("BUNJI")};
    return headings;
}

} // namespace

FrmPost::FrmPost(QWidget* parent) : MasterListForm(postHeadings(), parent) {
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
    // The whole road-name book is millions of addresses: the list reads only what is seen.
    grdList()->setReadsAhead(false);
    connect(m_find, &QPushButton::clicked, this, &FrmPost::findAgain);
    connect(m_roadBook, &QCheckBox::toggled, this, [this](bool road) {
        SetUsesRoadBook(road);
        useBook(road);
        search(txtinput()->text().trimmed());
    });
    useBook(m_roadBook->isChecked());
}

// The list reads from an open statement: it and the kept searches let go before the book closes.
FrmPost::~FrmPost() {
    model()->clear();
    m_postSearches.clear();
    m_roadSearches.clear();
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
        model()->setHeadings(RoadHeadings());
        placeFirstColumnWidths({60, 230, 210});
        resize(760, height());
    } else {
        const QString hint = QStringLiteral("읍/면/동으로 검색하세요. [전체검색 : 빈칸]");
        setHints(hint, hint);
        model()->setHeadings(postHeadings());
        placeFirstColumnWidths({70, 60, 90, 120, 150});
    }
}

int FrmPost::search(const QString& text) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    if (searchesRoadBook())
        searchRoadBook(text);
    else
        searchPostBook(text);
    QApplication::restoreOverrideCursor();
    return model()->rowCount();
}

// Without the book's file the list stays empty, as it did before any book was loaded.
// A search's rows take the place of the list before in one change of the list (the view laid
// out and painted once); a search that cannot run leaves the list empty.
void FrmPost::searchPostBook(const QString& text) {
    std::unique_ptr<GridRowSource> rows;
    if (m_postBook.isOpen() || OpenDb(m_postBook, app().DbPostFile, 0))
        rows = OpenPostRows(m_postBook, text, m_postSearches);
    if (rows)
        model()->fillFrom(std::move(rows));
    else
        model()->clear();
}

void FrmPost::searchRoadBook(const QString& text) {
    if (m_roadBookFile.replaced()) {
        // A new import replaced the book: the list and the kept searches let go of the one before.
        model()->clear();
        m_roadSearches.clear();
        m_roadBookFile.close();
    }
    auto rows = std::make_unique<RoadRows>(m_roadBookFile.database(), &m_roadSearches);
    if (rows->search(text))
        model()->fillFrom(std::move(rows));
    else
        model()->clear();
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
    selectRow(0);
}

void FrmPost::chooseActiveRow() {
    if (searchesRoadBook()) {
        const int row = activeRow();
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
    selectRow(0);
}

// The list's row holds what is handed over: the postcode and the road-name address.
void FrmPost::deliverRoad(int row) {
    if (row < 0 || row >= model()->rowCount()) return;
    writeTarget(model()->text(row, 0));
    if (m_addrTarget) m_addrTarget->setText(model()->text(row, 1));
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
