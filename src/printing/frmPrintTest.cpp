#include "printing/frmPrintTest.h"

#include "printing/PrintGrid.h"
#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QPainter>

namespace nb {
namespace {

PrintFormDrawer& registeredDrawer() {
    static PrintFormDrawer drawer;
    return drawer;
}

constexpr int kGridRows = 70; // two copies of 35 rows
constexpr int kGridColumns = 120;
const QColor kGridColor(0xC0, 0xC0, 0xC0);
const QColor kGridMarkColor(0x80, 0x80, 0xFF);

} // namespace

void setPrintTestDrawer(PrintFormDrawer drawer) {
    registeredDrawer() = std::move(drawer);
}

void drawPrintGrid(PrintJob& job, double left, double top) {
    PrinterPrepare(job);
    job.setMargins(int(left), top);
    const double right = job.tabX(kGridColumns + 1);
    const double bottom = job.rowY(kGridRows);
    job.setFontSize(7);
    for (int row = 0; row <= kGridRows; ++row) {
        const double y = job.rowY(row);
        job.line(0, y, right, y, row % 5 == 0 ? kGridMarkColor : kGridColor);
        if (row % 5 == 0 && row > 0) job.printAt(0, y, QString::number(row));
    }
    PrinterPrepare(job);
    for (int tab = 1; tab <= kGridColumns + 1; tab += 10) {
        const double x = job.tabX(tab);
        job.line(x, job.rowY(0), x, bottom, kGridMarkColor);
        job.printAtTab(0, tab, QString::number(tab));
    }
}

PrintTestPicture::PrintTestPicture(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Picture1"));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    setPalette(pal);
    PrintTopMargin = readDocumentMargins(documentName(1)).top;
}

void PrintTestPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PrintJob job(std::make_unique<PainterSurface>(painter, logicalDpiX()));
    const PrintFormDrawer& drawer = registeredDrawer();
    if (drawer)
        drawer(job, 0, PrintTopMargin);
    else
        drawPrintGrid(job, 0, PrintTopMargin);
}

frmPrintTest::frmPrintTest(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPrintTest"));
    setWindowTitle(QStringLiteral("인쇄 위치 확인"));
    Picture1 = new PrintTestPicture(this);
    resize(800, 600);
}

void frmPrintTest::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (isMinimized()) return;
    Picture1->setGeometry(0, 0, width(), height());
}

} // namespace nb
