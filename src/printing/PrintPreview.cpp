#include "printing/PrintPreview.h"

#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace nb {

namespace {

const QString kPreviewSuffix = QStringLiteral(" 미리보기");

// The preview's printer, painted on through the same surface as paper; the printer stays the
// preview's own.
class PreviewSurface : public PainterSurface {
public:
    PreviewSurface(QPrinter& printer, QPainter& painter)
        : PainterSurface(painter, printer.resolution()), m_printer(printer) {}

protected:
    void startNextPage() override { m_printer.newPage(); }

private:
    QPrinter& m_printer;
};

void paintPreview(QPrinter* printer, const QString& document, const PrintRoutine& print) {
    QPainter painter;
    if (!painter.begin(printer)) return;
    PrintJob job(std::make_unique<PreviewSurface>(*printer, painter), currentPrinterName(), document);
    print(job);
    job.endDoc();
    painter.end();
}

} // namespace

QPrintPreviewDialog* makePrintPreview(QWidget* parent, const QString& document, const PrintRoutine& print) {
    auto* printer = new QPrinter(QPrinter::HighResolution);
    printer->setPageLayout(
        QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    printer->setFullPage(true);
    auto* preview = new QPrintPreviewDialog(printer, parent);
    // The dialog does not own a printer it is given: it goes with the dialog.
    QObject::connect(preview, &QObject::destroyed, [printer] { delete printer; });
    preview->setObjectName(QStringLiteral("printPreview"));
    preview->setWindowTitle(document + kPreviewSuffix);
    QObject::connect(preview, &QPrintPreviewDialog::paintRequested, preview,
                     [document, print](QPrinter* p) { paintPreview(p, document, print); });
    return preview;
}

void showPrintPreview(QWidget* parent, const QString& document, const PrintRoutine& print) {
    if (std::unique_ptr<PrintJob> recorded = recordedJobForTesting(document + kPreviewSuffix)) {
        print(*recorded);
        recorded->endDoc();
        return;
    }
    std::unique_ptr<QPrintPreviewDialog> preview(makePrintPreview(parent, document, print));
    preview->exec();
}

} // namespace nb
