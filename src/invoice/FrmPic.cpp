#include "invoice/FrmPic.h"

#include "core/AppFolder.h"
#include "invoice/InvoicePrint.h"
#include "invoice/SampleForm.h"
#include "printing/PrintSurfaces.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace nb {

namespace {

constexpr double kSampleDpi = 80;

} // namespace

InvoicePrintData sampleInvoiceData() {
    InvoicePrintData d;
    d.txtSeq = QStringLiteral("100-001");
    d.parties.user = {QStringLiteral("123-45-67890"), QStringLiteral("하르문상사"),
                      QStringLiteral("홍길동"),       QStringLiteral("서울시 중구 을지로 1"),
                      QStringLiteral("도소매"),       QStringLiteral("철물"),
                      QStringLiteral("02-123-4567"),  QString()};
    d.parties.trader = {QStringLiteral("234-56-78901"), QStringLiteral("가나철강"),
                        QStringLiteral("김철수"),       QStringLiteral("부산시 동구 1"),
                        QStringLiteral("제조"),         QStringLiteral("강판"),
                        QStringLiteral("051-234-5678"), QString()};
    d.writeYY = QStringLiteral("2024");
    d.writeMM = QStringLiteral("05");
    d.writeDD = QStringLiteral("10");
    d.youngsu = QStringLiteral("영수");
    d.bigo = QStringLiteral("견본");
    d.sheet.vat = VatMode::Separate;
    d.sheet.line(0) = {QStringLiteral("05-10"), QStringLiteral("볼트(M8)"), QStringLiteral("EA"),
                       QStringLiteral("100"),   QStringLiteral("150"),      QStringLiteral("15000"),
                       QStringLiteral("1500")};
    d.sheet.line(1) = {QStringLiteral("05-10"), QStringLiteral("너트(M8)"), QStringLiteral("EA"),
                       QStringLiteral("100"),   QStringLiteral("50"),       QStringLiteral("5000"),
                       QStringLiteral("500")};
    d.sheet.curLine = 1;
    return d;
}

int printSampleCopy(PrintJob& job) {
    const InvoicePrintData data = sampleInvoiceData();
    return PrintInvoiceCopy(job, data, paperSums(data.sheet), 0);
}

QImage sampleInvoiceImage() {
    // The upper half of an A4 sheet: the form of one copy drawn on the print's own rows and
    // columns, under the values of the upper copy.
    QImage image(int(8.27 * kSampleDpi), int(5.8 * kSampleDpi), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawSampleForm(painter, kSampleDpi, 0);
    PrintJob job(std::make_unique<PainterSurface>(painter, kSampleDpi));
    printSampleCopy(job);
    job.endDoc();
    return image;
}

FrmPic::FrmPic(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmPic"));
    setWindowTitle(QStringLiteral("견본보기"));
    auto* layout = new QVBoxLayout(this);
    m_picture = new QLabel(this);
    m_picture->setObjectName(QStringLiteral("imgSample"));
    const QString file = userImage(QStringLiteral("sample_tax.jpg"));
    if (!file.isEmpty())
        m_picture->setPixmap(QPixmap(file));
    else
        m_picture->setPixmap(QPixmap::fromImage(sampleInvoiceImage()));
    m_picture->installEventFilter(this);
    layout->addWidget(m_picture);
    m_close = new QPushButton(QStringLiteral("닫기"), this);
    m_close->setObjectName(QStringLiteral("btnClose"));
    connect(m_close, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(m_close);
}

bool FrmPic::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_picture && event->type() == QEvent::MouseButtonPress) {
        accept();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace nb
