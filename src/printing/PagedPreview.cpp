#include "printing/PagedPreview.h"

#include "printing/PrintSurfaces.h"
#include "printing/PrinterSetup.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>

namespace nb {

namespace {

const QString kPreviewSuffix = QStringLiteral(" 미리보기");
constexpr double kA4Width = 210 / 25.4; // inches
constexpr double kA4Height = 297 / 25.4;
constexpr double kScreenDpi = 96;
const int kZooms[] = {50, 75, 100, 125, 150, 200};
constexpr int kDefaultZoom = 2; // 100 %

QPushButton* button(QWidget* parent, const QString& name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

} // namespace

QImage renderPreviewPage(const QString& document, const PageRoutine& print, int page, double dotsPerInch) {
    QImage image(qRound(kA4Width * dotsPerInch), qRound(kA4Height * dotsPerInch), QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(dotsPerInch / 0.0254));
    image.setDotsPerMeterY(qRound(dotsPerInch / 0.0254));
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    {
        PrintJob job(std::make_unique<PainterSurface>(painter, dotsPerInch), currentPrinterName(), document);
        print(job, page);
        job.endDoc();
    }
    painter.end();
    return image;
}

PagedPreview::PagedPreview(QWidget* parent, const QString& document, int pages, PageRoutine print)
    : QDialog(parent), m_document(document), m_pages(qMax(1, pages)), m_print(std::move(print)) {
    setObjectName(QStringLiteral("pagedPreview"));
    setWindowTitle(document + kPreviewSuffix);
    auto* bar = new QHBoxLayout;
    btnFirst = button(this, QStringLiteral("btnFirst"), QStringLiteral("처음(&H)"));
    btnPrev = button(this, QStringLiteral("btnPrev"), QStringLiteral("이전(&B)"));
    pageBox = new QSpinBox(this);
    pageBox->setObjectName(QStringLiteral("pageBox"));
    pageBox->setRange(1, m_pages);
    lblPages = new QLabel(QStringLiteral("/ %1 쪽").arg(m_pages), this);
    btnNext = button(this, QStringLiteral("btnNext"), QStringLiteral("다음(&N)"));
    btnLast = button(this, QStringLiteral("btnLast"), QStringLiteral("끝(&E)"));
    cmbZoom = new QComboBox(this);
    cmbZoom->setObjectName(QStringLiteral("cmbZoom"));
    for (int zoom : kZooms)
        cmbZoom->addItem(QStringLiteral("%1%").arg(zoom));
    cmbZoom->setCurrentIndex(kDefaultZoom);
    btnClose = button(this, QStringLiteral("btnClose"), QStringLiteral("닫기(&X)"));
    for (QWidget* w :
         std::initializer_list<QWidget*>{btnFirst, btnPrev, pageBox, lblPages, btnNext, btnLast, cmbZoom})
        bar->addWidget(w);
    bar->addStretch();
    bar->addWidget(btnClose);
    view = new QLabel;
    view->setObjectName(QStringLiteral("view"));
    scroll = new QScrollArea(this);
    scroll->setWidget(view);
    scroll->setAlignment(Qt::AlignHCenter);
    scroll->setBackgroundRole(QPalette::Dark);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(scroll);
    resize(880, 960);

    connect(btnFirst, &QPushButton::clicked, this, [this] { showPage(1); });
    connect(btnPrev, &QPushButton::clicked, this, [this] { showPage(m_page - 1); });
    connect(btnNext, &QPushButton::clicked, this, [this] { showPage(m_page + 1); });
    connect(btnLast, &QPushButton::clicked, this, [this] { showPage(m_pages); });
    connect(pageBox, &QSpinBox::valueChanged, this, [this](int value) { showPage(value); });
    connect(cmbZoom, &QComboBox::currentIndexChanged, this, [this] { redraw(); });
    connect(btnClose, &QPushButton::clicked, this, &QDialog::reject);
    showPage(1);
}

void PagedPreview::showPage(int page) {
    page = qBound(1, page, m_pages);
    if (page == m_page) return;
    m_page = page;
    pageBox->setValue(page);
    btnFirst->setEnabled(page > 1);
    btnPrev->setEnabled(page > 1);
    btnNext->setEnabled(page < m_pages);
    btnLast->setEnabled(page < m_pages);
    redraw();
}

void PagedPreview::redraw() {
    const int zoom = kZooms[qBound(0, cmbZoom->currentIndex(), int(std::size(kZooms)) - 1)];
    m_image = renderPreviewPage(m_document, m_print, m_page, kScreenDpi * zoom / 100.0);
    view->setPixmap(QPixmap::fromImage(m_image));
    view->resize(m_image.size());
}

void PagedPreview::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_PageDown:
        showPage(m_page + 1);
        return;
    case Qt::Key_PageUp:
        showPage(m_page - 1);
        return;
    case Qt::Key_Home:
        showPage(1);
        return;
    case Qt::Key_End:
        showPage(m_pages);
        return;
    default:
        QDialog::keyPressEvent(event);
    }
}

void showPagedPreview(QWidget* parent, const QString& document, int pages, const PageRoutine& print) {
    if (std::unique_ptr<PrintJob> recorded = recordedJobForTesting(document + kPreviewSuffix)) {
        for (int page = 1; page <= qMax(1, pages); ++page) {
            if (page > 1) recorded->newPage();
            print(*recorded, page);
        }
        recorded->endDoc();
        return;
    }
    PagedPreview preview(parent, document, pages, print);
    preview.exec();
}

} // namespace nb
