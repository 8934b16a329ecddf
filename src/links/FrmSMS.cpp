#include "links/FrmSMS.h"

#include "common/ListRefresh.h"
#include "common/Messages.h"
#include "common/ScreenActivation.h"
#include "common/dates/DateBox.h"
#include "common/dates/FrmCalendar.h"
#include "common/grid/Grid.h"
#include "common/grid/GridPlace.h"
#include "common/input/KeyFlow.h"
#include "common/input/SelectText.h"
#include "core/AppState.h"
#include "core/Clock.h"
#include "links/NamedWidget.h"
#include "links/SmsNumbers.h"
#include "links/modSMSLink.h"
#include "storage/ChangeNotices.h"
#include "storage/CrossFileQueries.h"
#include "storage/StoreAside.h"
#include "storage/Stores.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QShortcut>
#include <QSqlQuery>
#include <QTimer>
#include <QVBoxLayout>
#include <vector>

namespace nb {
namespace {

const QString kNoteHeader = QStringLiteral("비 고");
const QString kLastDealHeader = QStringLiteral("최종거래일");

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    return namedControl<QPushButton>(name, caption, parent);
}

QCheckBox* checkBox(const QString& name, const QString& caption, QWidget* parent) {
    return namedControl<QCheckBox>(name, caption, parent);
}

} // namespace

FrmSMS::FrmSMS(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("FrmSMS"));
    setWindowTitle(QStringLiteral("문자,음성,팩스 전송(SMS)"));
    buildControls();
    connectControls();
    loadForm();
    onActivation(this, [this] {
        if (!m_firstActivation) return;
        m_firstActivation = false;
        btnSearch->click();
    });
    // Traders registered and statements saved since the search, here or at another seat.
    onListRefresh(this, [this] { refreshList(); });
    refreshListsOnChanges(this, {&stores().dbBasic, &stores().dbBill});
}

// ---- building ---------------------------------------------------------------------------

void FrmSMS::buildControls() {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildFilterBox());
    grdList = new Grid(this);
    grdList->setObjectName(QStringLiteral("grdList"));
    setupGrid();
    layout->addWidget(grdList, 1);
    layout->addWidget(buildBottomRow());
    resize(560, 520);
}

QWidget* FrmSMS::buildFilterBox() {
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* group = new QButtonGroup(this);
    for (int i = 0; i < 2; ++i) {
        optFilter[size_t(i)] =
            new QRadioButton(i == 0 ? QStringLiteral("전  체:") : QStringLiteral("거래일:"), box);
        optFilter[size_t(i)]->setObjectName(QStringLiteral("optFilter_%1").arg(i));
        group->addButton(optFilter[size_t(i)], i);
    }
    txtName = new QLineEdit(box);
    txtName->setObjectName(QStringLiteral("txtName"));
    txtDate = new DateBox(box);
    txtDate->setObjectName(QStringLiteral("txtDate"));
    btnDate = button(QStringLiteral("btnDate"), QStringLiteral("▼"), box);
    btnDate->setFixedWidth(24);
    btnDate->setFocusPolicy(Qt::NoFocus);
    chkNoTrade = checkBox(QStringLiteral("chkNoTrade"), QStringLiteral("미거래 포함"), box);
    grid->addWidget(optFilter[0], 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("거래처명"), box), 0, 1);
    grid->addWidget(txtName, 0, 2, 1, 2);
    grid->addWidget(optFilter[1], 1, 0);
    grid->addWidget(txtDate, 1, 1, 1, 2);
    grid->addWidget(btnDate, 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("이후 무거래"), box), 1, 4);
    grid->addWidget(chkNoTrade, 1, 5);

    auto* types = new QHBoxLayout;
    const QString captions[] = {QStringLiteral("핸드폰"), QStringLiteral("일반전화"), QStringLiteral("팩스")};
    for (int i = 0; i < 3; ++i) {
        chkPhoneType[size_t(i)] = checkBox(QStringLiteral("chkPhoneType_%1").arg(i), captions[i], box);
        types->addWidget(chkPhoneType[size_t(i)]);
    }
    types->addStretch();
    grid->addLayout(types, 2, 0, 1, 5);
    btnSearch = button(QStringLiteral("btnSearch"), QStringLiteral("검색(&S)"), box);
    grid->addWidget(btnSearch, 0, 5);
    grid->setColumnStretch(2, 1);
    return box;
}

QWidget* FrmSMS::buildBottomRow() {
    auto* row = new QWidget(this);
    auto* h = new QHBoxLayout(row);
    h->setContentsMargins(0, 0, 0, 0);
    ChkAll = checkBox(QStringLiteral("ChkAll"), QStringLiteral("전체 선택"), row);
    lblCountRec = new QLabel(QStringLiteral("0"), row);
    lblCountRec->setObjectName(QStringLiteral("lblCountRec"));
    lblCountRec->setMinimumWidth(50);
    btnTrans = button(QStringLiteral("btnTrans"), QStringLiteral("전송(&T)"), row);
    btnExit = button(QStringLiteral("btnExit"), QStringLiteral("종료(&X)"), row);
    h->addWidget(ChkAll);
    h->addSpacing(12);
    h->addWidget(new QLabel(QStringLiteral("선택수:"), row));
    h->addWidget(lblCountRec);
    h->addStretch();
    h->addWidget(btnTrans);
    h->addWidget(btnExit);
    return row;
}

void FrmSMS::setupGrid() {
    grdList->setMaxCols(4);
    const QString heads[] = {QStringLiteral("선택"), QStringLiteral("거래처명"), QStringLiteral("전화 번호"),
                             kNoteHeader};
    const double widths[] = {5, 20, 25, 11};
    for (int c = 1; c <= 4; ++c) {
        grdList->SetText(c, 0, heads[c - 1]);
        grdList->setColWidth(c, widths[c - 1]);
    }
    grdList->setColWidth(0, 5);
    grdList->SetLock(kAllCells, kAllCells, true);
    grdList->setSelectBlockOptions(1);
    grdList->setMaxRows(0);
}

void FrmSMS::connectControls() {
    connect(optFilter[0], &QRadioButton::clicked, this, [this] { optFilterClick(0); });
    connect(optFilter[1], &QRadioButton::clicked, this, [this] { optFilterClick(1); });
    connect(btnSearch, &QPushButton::clicked, this, [this] { SearchTraders(); });
    connect(chkNoTrade, &QCheckBox::clicked, btnSearch, &QPushButton::click);
    connect(ChkAll, &QCheckBox::toggled, this, [this](bool on) { tickAll(on); });
    connect(btnTrans, &QPushButton::clicked, this,
            [this] { TransFromSpread(*grdList, ColCheck, ColName, ColTel); });
    connect(btnExit, &QPushButton::clicked, this, [this] { closeScreen(); });
    connect(btnDate, &QPushButton::clicked, this, [this] {
        const QString chosen = ShowCalendar(txtDate->dateText(), btnDate);
        if (!chosen.isEmpty()) txtDate->setDateText(chosen);
    });
    connect(grdList, &Grid::click, this, [this](int col, int row) {
        if (col == ColCheck && row >= 1) toggleTick(row);
    });
    connect(grdList, &Grid::dblClick, this, [this](int, int row) {
        if (row >= 1) toggleTick(row);
    });
    connect(grdList, &Grid::keyDown, this, [this](int& key, Qt::KeyboardModifiers) {
        if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter) return;
        if (grdList->ActiveRow() >= 1) toggleTick(grdList->ActiveRow());
        key = 0;
    });
    connect(grdList, &Grid::blockSelected, this,
            [this](int col, int row, int col2, int row2) { tickBlock(col, row, col2, row2); });
    auto* ctrlA = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_A), this);
    ctrlA->setContext(Qt::WidgetWithChildrenShortcut);
    connect(ctrlA, &QShortcut::activated, ChkAll, &QCheckBox::toggle);

    installEnterAsTab(this);
    auto* select = new SelectAllOnFocus(this);
    select->watch(txtName);
    select->watch(txtDate);
    txtDate->installEventFilter(this);
}

void FrmSMS::loadForm() {
    grdList->setMaxRows(0);
    txtDate->setDateText(today().toString(u"yyyy-MM-dd"));
    chkPhoneType[0]->setChecked(true);
    optFilter[0]->setChecked(true);
    optFilterClick(0);
    m_firstActivation = true;
}

void FrmSMS::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_centred) return;
    m_centred = true;
    auto* sub = qobject_cast<QMdiSubWindow*>(parentWidget());
    if (sub && sub->mdiArea()) {
        const QRect area = sub->mdiArea()->viewport()->rect();
        sub->move(qMax(0, (area.width() - sub->width()) / 2), qMax(0, (area.height() - sub->height()) / 2));
    }
}

// ---- filters and the search -------------------------------------------------------------

void FrmSMS::optFilterClick(int index) {
    grdList->setMaxRows(0);
    for (QWidget* w : std::initializer_list<QWidget*>{txtName, txtDate, btnDate, chkNoTrade})
        w->setEnabled(false);
    if (index == 0) {
        txtName->setEnabled(true);
        grdList->SetText(ColNote, 0, kNoteHeader);
    } else {
        txtDate->setEnabled(true);
        btnDate->setEnabled(true);
        chkNoTrade->setEnabled(true);
        grdList->SetText(ColNote, 0, kLastDealHeader);
    }
}

FrmSMS::Search FrmSMS::searchFromBoxes() const {
    Search search;
    search.byName = optFilter[0]->isChecked();
    search.byDate = optFilter[1]->isChecked();
    search.withNoDeal = search.byDate && chkNoTrade->isChecked();
    search.name = txtName->text();
    search.date = txtDate->dateText();
    for (size_t i = 0; i < search.phoneTypes.size(); ++i)
        search.phoneTypes[i] = chkPhoneType[i]->isChecked();
    return search;
}

void FrmSMS::SearchTraders() {
    grdList->setMaxRows(0);
    ChkAll->setChecked(false);
    m_ticked = 0;
    lblCountRec->setText(QStringLiteral("0"));
    m_lastSearch = searchFromBoxes();
    runSearch(*m_lastSearch);
    lblCountRec->setText(QStringLiteral("0"));
}

// The query runs beside the window (it stays painted while a decade of statements is grouped);
// its rows then become the list's, each with the numbers of the ticked types. False (its box
// shown, the list as it was) when the read failed.
bool FrmSMS::runSearch(const Search& search) {
    TraderDealFilter filter;
    filter.byName = search.byName && !search.name.isEmpty();
    filter.byDate = search.byDate;
    filter.withNoDeal = search.withNoDeal;
    const AsideRead read{stores().dbBasic.path(), app().DbBillFile, kBillAlias, tradersLastDealSql(filter),
                         tradersLastDealValues(filter, search.name, search.date)};
    if (!stores().dbBasic.isOpen()) {
        ReportQueryFailure(ErrNotOpened, QString(), sqlForDisplay(read.sql, read.values));
        return false;
    }
    QVector<QStringList> found; // C_Name, Phone, Fax, HPhone, lastdate
    const bool ok = readAside(read, [&found](const QSqlQuery& row) {
        found.push_back({row.value(0).toString(), row.value(1).toString(), row.value(2).toString(),
                         row.value(3).toString(), row.value(5).toString()});
    });
    if (ok) showFound(found, search);
    return ok;
}

// The last search run again (traders registered or dealt with since, at this seat or another),
// the ticks the operator made kept on the same traders and numbers, the same row chosen and the
// same rows in view.
void FrmSMS::refreshList() {
    if (!m_lastSearch) return;
    QSet<QString> ticked;
    for (int row = 1; row <= grdList->MaxRows(); ++row)
        if (grdList->Text(ColCheck, row) == QStringLiteral("1"))
            ticked.insert(grdList->Text(ColName, row) + u'\t' + grdList->Text(ColTel, row));
    const bool all = ChkAll->isChecked();
    GridPlace place(*grdList, ColName);
    if (!runSearch(*m_lastSearch)) return;
    m_ticked = 0;
    for (int row = 1; row <= grdList->MaxRows(); ++row)
        if (ticked.contains(grdList->Text(ColName, row) + u'\t' + grdList->Text(ColTel, row)))
            setTicked(row, true);
    lblCountRec->setText(QString::number(m_ticked));
    {
        const QSignalBlocker quiet(ChkAll); // a new trader is not ticked by the box's own toggle
        ChkAll->setChecked(all && m_ticked == grdList->MaxRows());
    }
    place.restore();
}

void FrmSMS::showFound(const QVector<QStringList>& found, const Search& search) {
    const PhoneTypes types{search.phoneTypes[0], search.phoneTypes[1], search.phoneTypes[2]};
    QVector<QVariantList> rows;
    rows.reserve(found.size());
    {
        Progress progress(QStringLiteral("자료 검색중..."), int(found.size()));
        for (const QStringList& f : found) {
            progress.step();
            if (!search.byName && !search.byDate) { // one option is always on: a programmer's alarm
                MsgBox(QStringLiteral("FixMe"));
                continue;
            }
            rows.push_back({QString(), f.at(0), pickNumbers(f.at(1), f.at(2), f.at(3), types),
                            search.byDate ? f.at(4) : QString()});
        }
    }
    const int count = int(rows.size());
    grdList->showList(std::make_unique<RowsInMemory>(std::move(rows), int(ColNote)), count);
}

// ---- ticking ----------------------------------------------------------------------------

void FrmSMS::setTicked(int row, bool ticked) {
    if (row < 1 || row > grdList->MaxRows()) return;
    if ((grdList->Text(ColCheck, row) == QStringLiteral("1")) == ticked) return;
    grdList->SetText(ColCheck, row, ticked ? QStringLiteral("1") : QString());
    for (int c = 1; c <= grdList->MaxCols(); ++c)
        grdList->SetBackColor(c, row, ticked ? kTickedRowColor : kWhiteColor);
    m_ticked += ticked ? 1 : -1;
    lblCountRec->setText(QString::number(m_ticked));
}

void FrmSMS::toggleTick(int row) {
    setTicked(row, grdList->Text(ColCheck, row) != QStringLiteral("1"));
}

void FrmSMS::tickAll(bool on) {
    for (int row = 1; row <= grdList->MaxRows(); ++row)
        if ((grdList->Value(ColCheck, row) != 0) != on) setTicked(row, on);
}

void FrmSMS::tickBlock(int col, int row, int, int row2) {
    for (int r = qMin(row, row2); r <= qMax(row, row2); ++r)
        toggleTick(r);
    grdList->SetActiveCell(col, qMin(row, row2));
}

// ---- the date box -----------------------------------------------------------------------

bool FrmSMS::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtDate && event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            QTimer::singleShot(0, this, [this] { leaveDateBox(); });
    }
    return QWidget::eventFilter(watched, event);
}

void FrmSMS::leaveDateBox() {
    if (!txtDate->isEnabled() || CheckDateOnLeave(txtDate->text(), kBadDateMessage)) return;
    txtDate->setFocus();
}

void FrmSMS::closeScreen() {
    if (auto* sub = qobject_cast<QMdiSubWindow*>(parentWidget()))
        sub->close();
    else
        close();
}

} // namespace nb
