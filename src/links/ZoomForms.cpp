#include "links/ZoomForms.h"

#include "core/AppFolder.h"
#include "invoice/FrmPic.h"
#include "links/NamedWidget.h"

#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace nb {
namespace {

constexpr double kZoom = 1.4;
constexpr int kStatementDpi = 110;

struct SampleLine {
    const char* item;
    const char* unit;
    int qty;
    int price;
};

// A made-up statement: title, the two parties, and a few lines with their totals.
void drawStatement(QPainter& p, const QRect& page) {
    const int w = page.width();
    const int row = kStatementDpi / 4;
    p.setPen(QPen(Qt::black, 1));
    QFont title = p.font();
    title.setPointSizeF(16);
    title.setBold(true);
    p.setFont(title);
    p.drawText(QRect(0, row / 2, w, row * 2), Qt::AlignCenter, QStringLiteral("거 래 명 세 표"));
    QFont body = p.font();
    body.setPointSizeF(8.5);
    body.setBold(false);
    p.setFont(body);
    const int top = row * 3;
    const int half = w / 2 - row;
    p.drawRect(row, top, half - row / 2, row * 4);
    p.drawRect(w / 2 + row / 2, top, half - row / 2, row * 4);
    p.drawText(QRect(row * 2, top, half, row * 4), Qt::AlignVCenter,
               QStringLiteral("2024년 05월 10일\n가나철강 귀하\n아래와 같이 계산합니다."));
    p.drawText(QRect(w / 2 + row, top, half, row * 4), Qt::AlignVCenter,
               QStringLiteral("공급자: 하르문상사 (123-45-67890)\n대표: 홍길동\n서울시 중구 을지로 1"));
    const int heads[] = {0, 34, 52, 64, 80, 100};
    const QString headText[] = {QStringLiteral("품목"), QStringLiteral("규격"), QStringLiteral("수량"),
                                QStringLiteral("단가"), QStringLiteral("공급가액")};
    const int tableTop = top + row * 5;
    const int left = row;
    const int width = w - 2 * row;
    auto x = [&](int i) { return left + width * heads[i] / 100; };
    const SampleLine lines[] = {
        {"볼트(M8)", "EA", 100, 150}, {"너트(M8)", "EA", 100, 50}, {"와셔(M8)", "EA", 200, 20}};
    const int rows = 8;
    p.drawRect(left, tableTop, width, row * (rows + 1));
    for (int r = 1; r <= rows; ++r)
        p.drawLine(left, tableTop + r * row, left + width, tableTop + r * row);
    for (int i = 1; i < 5; ++i)
        p.drawLine(x(i), tableTop, x(i), tableTop + row * (rows + 1));
    for (int i = 0; i < 5; ++i)
        p.drawText(QRect(x(i), tableTop, x(i + 1) - x(i), row), Qt::AlignCenter, headText[i]);
    long total = 0;
    for (int r = 0; r < 3; ++r) {
        const SampleLine& l = lines[r];
        const long amount = long(l.qty) * l.price;
        total += amount;
        const QString cells[] = {QString::fromUtf8(l.item), QString::fromUtf8(l.unit), QString::number(l.qty),
                                 QLocale(QLocale::English).toString(l.price),
                                 QLocale(QLocale::English).toString(qlonglong(amount))};
        for (int i = 0; i < 5; ++i)
            p.drawText(QRect(x(i) + 4, tableTop + (r + 1) * row, x(i + 1) - x(i) - 8, row),
                       (i < 2 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter, cells[i]);
    }
    const int sumTop = tableTop + row * (rows + 1);
    p.drawRect(left, sumTop, width, row);
    p.drawText(QRect(left + 4, sumTop, width - 8, row), Qt::AlignVCenter,
               QStringLiteral("합계  ") + QLocale(QLocale::English).toString(qlonglong(total)) +
                   QStringLiteral("원   (부가세 ") +
                   QLocale(QLocale::English).toString(qlonglong(total / 10)) +
                   QStringLiteral("원 별도)     견본"));
}

} // namespace

ZoomForm::ZoomForm(const QString& name, const QString& title, const QString& imageFile, const QImage& drawn,
                   QWidget* parent)
    : QDialog(parent) {
    setObjectName(name);
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* scroll = new QScrollArea(this);
    m_picture = new QLabel(scroll);
    m_picture->setObjectName(QStringLiteral("imgSample"));
    const QString file = userImage(imageFile);
    m_picture->setPixmap(file.isEmpty() ? QPixmap::fromImage(drawn) : QPixmap(file));
    scroll->setWidget(m_picture);
    layout->addWidget(scroll);
    cmdClose = namedControl<QPushButton>(QStringLiteral("cmdClose"), QStringLiteral("닫기"), this);
    layout->addWidget(cmdClose, 0, Qt::AlignRight);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    resize(qMin(m_picture->pixmap().width() + 40, 960), qMin(m_picture->pixmap().height() + 80, 720));
}

QImage zoomedInvoiceSample() {
    const QImage sample = sampleInvoiceImage();
    return sample.scaled(sample.size() * kZoom, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage drawnStatementSample() {
    QImage image(int(8.27 * kStatementDpi), int(4.6 * kStatementDpi), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawStatement(painter, image.rect());
    return image;
}

frmZoomTax::frmZoomTax(QWidget* parent)
    : ZoomForm(QStringLiteral("frmZoomTax"), QStringLiteral("세금계산서 견본"),
               QStringLiteral("sample_tax_zoom.jpg"), zoomedInvoiceSample(), parent) {}

frmZoomDealList::frmZoomDealList(QWidget* parent)
    : ZoomForm(QStringLiteral("frmZoomDealList"), QStringLiteral("거래명세표 견본"),
               QStringLiteral("sample_bill_zoom.jpg"), drawnStatementSample(), parent) {}

void showZoomTax(QWidget* parent) {
    frmZoomTax form(parent);
    form.exec();
}

void showZoomDealList(QWidget* parent) {
    frmZoomDealList form(parent);
    form.exec();
}

} // namespace nb
