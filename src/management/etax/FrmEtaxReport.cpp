#include "management/etax/FrmEtaxReport.h"

#include "common/grid/Grid.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {

QString etaxSummaryText(const EtaxExport& result) {
    QString text = QStringLiteral("%1건을 파일 %2개에 작성했습니다.")
                       .arg(result.invoicesWritten())
                       .arg(result.files.size());
    if (!result.leftOut.isEmpty())
        text += QStringLiteral("\n%1건은 아래의 사유로 제외했습니다. 홈택스에서 직접 발급하십시오.")
                    .arg(result.leftOut.size());
    if (result.assumedReceipts > 0)
        text += QStringLiteral("\n영수/청구가 기록되지 않은 %1건은 선택한 구분으로 작성했습니다.")
                    .arg(result.assumedReceipts);
    if (!result.removed.isEmpty())
        text +=
            QStringLiteral("\n지난번에 만든 같은 이름의 파일 %1개를 지웠습니다.").arg(result.removed.size());
    for (const QString& failure : result.failures)
        text += u'\n' + failure;
    return text;
}

FrmEtaxReport::FrmEtaxReport(const EtaxExport& result, QString folder, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmEtaxReport"));
    setWindowTitle(QStringLiteral("전자세금계산서 엑셀 작성 결과"));
    // A file counts as issued only once the operator says it was uploaded.
    const QString reminder = result.files.isEmpty()
                                 ? QString()
                                 : QStringLiteral("\n홈택스에 올린 뒤 전송 기록에서 업로드 표시를 하십시오.");
    m_summary = new QLabel(etaxSummaryText(result) + reminder + QStringLiteral("\n저장 폴더: ") +
                               QDir::toNativeSeparators(folder),
                           this);
    m_summary->setObjectName(QStringLiteral("pnlSummary"));
    m_summary->setWordWrap(true);
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_list = new Grid(this);
    m_list->setObjectName(QStringLiteral("grdLeftOut"));
    fillList(result.leftOut);
    m_print = new QPushButton(QStringLiteral("인쇄(&P)"), this);
    m_print->setObjectName(QStringLiteral("btnPrint"));
    m_export = new QPushButton(QStringLiteral("엑셀(&E)"), this);
    m_export->setObjectName(QStringLiteral("btnExcel"));
    auto* close = new QPushButton(QStringLiteral("닫기(&X)"), this);
    close->setObjectName(QStringLiteral("btnExit"));
    m_print->setEnabled(!result.leftOut.isEmpty());
    m_export->setEnabled(!result.leftOut.isEmpty());
    connect(m_print, &QPushButton::clicked, this, [this] {
        if (m_printList) m_printList(m_list);
    });
    connect(m_export, &QPushButton::clicked, this, [this] {
        if (m_exportList) m_exportList(m_list);
    });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    // Enter closes the window; the list is there to read.
    close->setDefault(true);
    close->setFocus();
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_print);
    buttons->addWidget(m_export);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    resize(820, 420);
}

void FrmEtaxReport::fillList(const QList<EtaxLeftOut>& leftOut) {
    const QStringList heads = {QStringLiteral("계산서번호"), QStringLiteral("작성일자"),
                               QStringLiteral("공급받는자"), QStringLiteral("제외 사유")};
    const QList<double> widths = {9, 10, 18, 60};
    m_list->setMaxCols(int(heads.size()));
    int rows = 0;
    for (const EtaxLeftOut& left : leftOut)
        rows += int(left.reasons.size());
    m_list->setMaxRows(qMax(1, rows));
    m_list->setColWidth(0, 3);
    for (int c = 1; c <= heads.size(); ++c) {
        m_list->SetText(c, 0, heads.at(c - 1));
        m_list->setColWidth(c, widths.at(c - 1));
        m_list->SetLock(c, -1, true);
    }
    // One row a reason; the invoice is named on its first.
    int row = 0;
    for (const EtaxLeftOut& left : leftOut)
        for (int i = 0; i < left.reasons.size(); ++i) {
            ++row;
            if (i == 0) {
                m_list->SetText(1, row, left.taxCode);
                m_list->SetText(2, row, left.dealDate);
                m_list->SetText(3, row, left.receiver.trimmed());
            }
            m_list->SetText(4, row, left.reasons.at(i));
        }
    m_list->setOperationMode(OperationMode::Row);
}

} // namespace nb
