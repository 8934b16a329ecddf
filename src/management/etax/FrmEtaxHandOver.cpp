#include "management/etax/FrmEtaxHandOver.h"

#include "common/Messages.h"
#include "common/grid/Grid.h"
#include "common/text/NumberFormat.h"
#include "core/Clock.h"
#include "management/etax/EtaxExportRun.h"
#include "storage/Stores.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {
namespace {

const QString kTitle = QStringLiteral("전자세금계산서 전송 기록");

void setHeads(Grid* grid, const QStringList& heads, const QList<double>& widths) {
    grid->setMaxCols(int(heads.size()));
    grid->setColWidth(0, 3);
    for (int c = 1; c <= heads.size(); ++c) {
        grid->SetText(c, 0, heads.at(c - 1));
        grid->setColWidth(c, widths.at(c - 1));
        grid->SetLock(c, -1, true);
    }
    grid->setOperationMode(OperationMode::Row);
}

// True when a later record of the record took the same path: the file there is not this one's.
bool pathTakenLater(Database& dbTax, const HandOverFile& file) {
    const auto files = ReadHandOverFiles(dbTax);
    if (!files) return true;
    for (const HandOverFile& other : *files)
        if (other.fileNo > file.fileNo && other.path == file.path) return true;
    return false;
}

} // namespace

bool WithdrawHandOver(Database& dbTax, const HandOverFile& file, QString* why) {
    if (file.withdrawn()) {
        if (why) *why = QStringLiteral("이미 철회한 파일입니다.");
        return false;
    }
    // The file goes first: a withdrawn file left in its folder could still be uploaded.
    if (!file.uploaded() && QFileInfo::exists(file.path) && !pathTakenLater(dbTax, file)) {
        QFile disk(file.path);
        if (!disk.remove()) {
            if (why)
                *why = QStringLiteral("파일을 지우지 못해 철회하지 않았습니다: %1 (%2)")
                           .arg(QDir::toNativeSeparators(file.path), disk.errorString());
            return false;
        }
    }
    return WithdrawFile(dbTax, file.fileNo,
                        file.uploaded() ? QStringLiteral("업로드 후 철회") : QStringLiteral("철회"), why);
}

FrmEtaxHandOver::FrmEtaxHandOver(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmEtaxHandOver"));
    setWindowTitle(kTitle);
    grdFiles = new Grid(this);
    grdFiles->setObjectName(QStringLiteral("grdFiles"));
    setHeads(grdFiles,
             {QStringLiteral("번호"), QStringLiteral("파일"), QStringLiteral("기간"), QStringLiteral("작성"),
              QStringLiteral("건수"), QStringLiteral("상태")},
             {5, 32, 21, 16, 5, 22});
    grdInvoices = new Grid(this);
    grdInvoices->setObjectName(QStringLiteral("grdInvoices"));
    setHeads(grdInvoices,
             {QStringLiteral("계산서번호"), QStringLiteral("작성일자"), QStringLiteral("공급받는자"),
              QStringLiteral("공급가액"), QStringLiteral("세액")},
             {10, 11, 24, 14, 12});
    pnlFile = new QLabel(this);
    pnlFile->setObjectName(QStringLiteral("pnlFile"));
    pnlFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
    pnlFile->setWordWrap(true);
    btnUploaded = new QPushButton(QStringLiteral("업로드 표시(&U)"), this);
    btnUploaded->setObjectName(QStringLiteral("btnUploaded"));
    btnWithdraw = new QPushButton(QStringLiteral("철회(&W)"), this);
    btnWithdraw->setObjectName(QStringLiteral("btnWithdraw"));
    btnExit = new QPushButton(QStringLiteral("닫기(&X)"), this);
    btnExit->setObjectName(QStringLiteral("btnExit"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(btnUploaded);
    buttons->addWidget(btnWithdraw);
    buttons->addStretch();
    buttons->addWidget(btnExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grdFiles, 3);
    layout->addWidget(pnlFile);
    layout->addWidget(grdInvoices, 2);
    layout->addLayout(buttons);
    resize(900, 560);
    connect(grdFiles, &Grid::leaveCell, this,
            [this](int, int, int, int newRow, bool&) { showInvoices(newRow); });
    connect(grdFiles, &Grid::click, this, [this](int, int row) { showInvoices(row); });
    connect(btnUploaded, &QPushButton::clicked, this, &FrmEtaxHandOver::markUploaded);
    connect(btnWithdraw, &QPushButton::clicked, this, &FrmEtaxHandOver::withdraw);
    connect(btnExit, &QPushButton::clicked, this, &QDialog::accept);
    refill();
    grdFiles->setFocus();
}

std::optional<HandOverFile> FrmEtaxHandOver::currentFile() const {
    const int row = grdFiles->ActiveRow();
    if (row < 1 || row > m_files.size()) return std::nullopt;
    return m_files.at(row - 1);
}

void FrmEtaxHandOver::refill() {
    const int row = qMax(1, grdFiles->ActiveRow());
    m_files = ReadHandOverFiles(stores().dbTax).value_or(QList<HandOverFile>{});
    grdFiles->setMaxRows(qMax(1, int(m_files.size())));
    grdFiles->ClearRange(1, 1, grdFiles->MaxCols(), grdFiles->MaxRows());
    for (int i = 0; i < m_files.size(); ++i) {
        const HandOverFile& f = m_files.at(i);
        const QStringList cells = {QString::number(f.fileNo),
                                   QFileInfo(f.path).fileName(),
                                   f.fromDate + QStringLiteral(" ~ ") + f.toDate,
                                   f.writtenAt.left(16),
                                   QString::number(f.invoices),
                                   f.stateText()};
        for (int c = 0; c < cells.size(); ++c)
            grdFiles->SetText(c + 1, i + 1, cells.at(c));
    }
    grdFiles->SetActiveCell(1, qMin(row, qMax(1, int(m_files.size()))));
    showInvoices(grdFiles->ActiveRow());
}

void FrmEtaxHandOver::showInvoices(int row) {
    grdInvoices->ClearRange(1, 1, grdInvoices->MaxCols(), grdInvoices->MaxRows());
    const bool any = row >= 1 && row <= m_files.size();
    btnUploaded->setEnabled(any && !m_files.at(row - 1).uploaded() && !m_files.at(row - 1).withdrawn());
    btnWithdraw->setEnabled(any && !m_files.at(row - 1).withdrawn());
    if (!any) {
        pnlFile->setText(QStringLiteral("아직 작성한 전자세금계산서 파일이 없습니다."));
        grdInvoices->setMaxRows(1);
        return;
    }
    const HandOverFile& file = m_files.at(row - 1);
    pnlFile->setText(QDir::toNativeSeparators(file.path) + QStringLiteral("  -  ") + file.stateText());
    const auto entries = ReadHandOverEntries(stores().dbTax, file.fileNo).value_or(QList<HandOverEntry>{});
    grdInvoices->setMaxRows(qMax(1, int(entries.size())));
    for (int i = 0; i < entries.size(); ++i) {
        const HandOverEntry& e = entries.at(i);
        const QStringList cells = {e.taxCode, e.dealDate, e.receiver.trimmed(),
                                   FormatNumber(e.supply, kMaskSum), FormatNumber(e.tax, kMaskSum)};
        for (int c = 0; c < cells.size(); ++c)
            grdInvoices->SetText(c + 1, i + 1, cells.at(c));
    }
}

void FrmEtaxHandOver::markUploaded() {
    const auto file = currentFile();
    if (!file) return;
    const QString day =
        InputBox(QStringLiteral("%1\r\n\r\n홈택스에 업로드하여 발급한 날짜를 입력하십시오. (YYYY-MM-DD)")
                     .arg(QFileInfo(file->path).fileName()),
                 kTitle, today().toString(QStringLiteral("yyyy-MM-dd")))
            .trimmed();
    if (day.isEmpty()) return;
    QString why;
    if (!MarkFileUploaded(stores().dbTax, file->fileNo, day, &why)) {
        ShowWarning(why, kTitle);
        return;
    }
    refill();
}

void FrmEtaxHandOver::withdraw() {
    const auto file = currentFile();
    if (!file || file->withdrawn()) return;
    const QString name = QFileInfo(file->path).fileName();
    const QString question =
        file->uploaded()
            ? QStringLiteral("%1은(는) %2에 업로드한 파일입니다.\r\n홈택스에서 발급을 취소한 경우에만 "
                             "철회하십시오.\r\n철회하면 이 파일의 세금계산서 %3건은 전자발급분으로 세지 않고 "
                             "다시 보낼 수 있습니다.\r\n\r\n철회하시겠습니까?")
                  .arg(name, file->uploadedDate)
                  .arg(file->invoices)
            : QStringLiteral("%1을(를) 철회합니다.\r\n폴더의 파일은 지우고, 이 파일의 세금계산서 %2건은 다시 "
                             "보낼 수 있게 됩니다.\r\n\r\n철회하시겠습니까?")
                  .arg(name)
                  .arg(file->invoices);
    if (AskYesNo(question, kTitle, false) != AnsYes) return;
    QString why;
    if (!WithdrawHandOver(stores().dbTax, *file, &why)) ShowWarning(why, kTitle);
    refill();
}

} // namespace nb
