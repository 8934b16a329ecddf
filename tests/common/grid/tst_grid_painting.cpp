// What the grid paints: its lines on the pixels the table view's own lines take, and the texts of
// its cells, drawn from kept lines, exactly as QPainter::drawText draws them.
#include "TestSupport.h"
#include "common/grid/GridDelegate.h"
#include "common/grid/MduSpread.h"

#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QScrollBar>

using namespace nb;

namespace {

// A list of a few columns in a shown window, a number column among them.
struct PaintWindow {
    QWidget window;
    Grid* grid = new Grid(&window);

    PaintWindow() {
        grid->setGeometry(0, 0, 430, 260);
        grid->setMaxCols(5);
        CommonSpreadDesign(*grid, true, true, true, true);
        SetFloatCell(*grid, 4, 0, false);
        grid->setColWidth(1, 7);
        grid->setColWidth(2, 14);
        QVector<QVariantList> rows;
        for (int i = 1; i <= 40; ++i)
            rows << QVariantList{QStringLiteral("%1").arg(135000 + i),
                                 QStringLiteral("서울 강남구 역삼%1동").arg(i % 3),
                                 QStringLiteral("가나%1상사 & 물산 아주 긴 이름의 거래처").arg(i),
                                 double(i) * 1234.5, i % 4 ? QVariant(QStringLiteral("EA")) : QVariant()};
        grid->showList(std::make_unique<RowsInMemory>(rows), int(rows.size()));
        window.resize(430, 260);
        window.show();
    }

    // The viewport as painted now, or only the given part of it painted over a blank.
    QImage picture(const QRegion& part = QRegion()) {
        QImage image(grid->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        grid->viewport()->render(&painter, QPoint(), part, QWidget::DrawWindowBackground);
        return image;
    }
};

// Pictures of the grid with the lines drawn by the grid and by the table view.
std::pair<QImage, QImage> bothWays(PaintWindow& w, const QRegion& part = QRegion()) {
    w.grid->setShowGrid(false);
    const QImage own = w.picture(part);
    w.grid->setShowGrid(true);
    const QImage view = w.picture(part);
    w.grid->setShowGrid(false);
    return {own, view};
}

int differingPixels(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return -1;
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y)) ++count;
    return count;
}

} // namespace

class TestGridPainting : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void linesFallOnThePixelsOfTheViewsOwnLines() {
        PaintWindow w;
        auto [own, view] = bothWays(w);
        QVERIFY(!own.isNull());
        QCOMPARE(differingPixels(own, view), 0);
        // The lines are there: a line's pixel differs from the cell beside it.
        const int y = w.grid->rowViewportPosition(0) + w.grid->rowHeight(0) - 1;
        QVERIFY(own.pixel(5, y) != own.pixel(5, y - 2));
    }

    void linesMatchScrolledWithHiddenColumnsAndHeaders() {
        PaintWindow w;
        w.grid->setColHidden(3, true);
        w.grid->verticalScrollBar()->setValue(7);
        w.grid->horizontalScrollBar()->setValue(w.grid->horizontalScrollBar()->maximum());
        QCOMPARE(differingPixels(bothWays(w).first, bothWays(w).second), 0);
        w.grid->setRowHeadersShow(false);
        w.grid->setColHeadersShow(false);
        QCOMPARE(differingPixels(bothWays(w).first, bothWays(w).second), 0);
    }

    // A part painted alone (a row that changed, the end of the rows) gets its lines, only there.
    void linesMatchInAPartPaintedAlone() {
        PaintWindow w;
        for (const QRegion& part :
             {QRegion(10, 30, 150, 40), QRegion(0, 0, 60, 500) + QRegion(200, 100, 300, 7)}) {
            const auto [own, view] = bothWays(w, part);
            QCOMPARE(differingPixels(own, view), 0);
        }
    }

    void linesMatchBelowTheLastRowOfAShortList() {
        PaintWindow w;
        w.grid->showList(std::make_unique<RowsInMemory>(
                             QVector<QVariantList>{{QStringLiteral("1"), QStringLiteral("가")}}),
                         1);
        QCOMPARE(differingPixels(bothWays(w).first, bothWays(w).second), 0);
    }

    // The headers keep the thickness the grid gives them, whatever their labels (a row number of
    // six digits in a narrow row header), and say so when asked their size.
    void theHeadersKeepTheirThicknessWhateverTheirLabels() {
        PaintWindow w;
        QVector<QVariantList> rows(120000, QVariantList{QStringLiteral("1")});
        w.grid->showList(std::make_unique<RowsInMemory>(rows), int(rows.size()));
        w.grid->verticalScrollBar()->setValue(w.grid->verticalScrollBar()->maximum());
        QApplication::processEvents();
        const int rowHeader = w.grid->charsToPixels(w.grid->ColWidth(0));
        QCOMPARE(w.grid->verticalHeader()->width(), rowHeader);
        QCOMPARE(w.grid->verticalHeader()->sizeHint().width(), rowHeader);
        QCOMPARE(w.grid->horizontalHeader()->height(), w.grid->rowHeightPixels());
        QCOMPARE(w.grid->horizontalHeader()->sizeHint().height(), w.grid->rowHeightPixels());
        QCOMPARE(w.grid->columnViewportPosition(0), 0);
    }

    // The headers' labels drawn through the kept lines look as the application's style draws them.
    void headersPaintAsTheApplicationsStylePaintsThem() {
        PaintWindow w;
        w.grid->verticalScrollBar()->setValue(5);
        for (QHeaderView* header : {w.grid->horizontalHeader(), w.grid->verticalHeader()}) {
            QVERIFY(header->style() != QApplication::style());
            const QImage kept = header->grab().toImage();
            header->setStyle(QApplication::style());
            const QImage plain = header->grab().toImage();
            QVERIFY(!kept.isNull());
            QCOMPARE(differingPixels(kept, plain), 0);
        }
    }

    // Every kind of text, alignment and room: what the kept line draws is what drawText draws,
    // with the single-line flag (the cells) and without (the headers' labels).
    void cellTextsPaintAsDrawTextPaintsThem() {
        const QStringList texts = {QStringLiteral("서울"),
                                   QStringLiteral("강남구 역삼1동"),
                                   QStringLiteral("1,234,567.5"),
                                   QStringLiteral("-0.25"),
                                   QStringLiteral("A&B상사"),
                                   QStringLiteral("  앞 빈칸"),
                                   QStringLiteral("뒤 빈칸 "),
                                   QStringLiteral("가나다라마바사아자차카타파하 아주 긴 거래처 이름입니다"),
                                   QStringLiteral("탭\t문자"),
                                   QStringLiteral("두\n줄"),
                                   QStringLiteral("(주)한국·무역 ㈜ ①"),
                                   QStringLiteral("ＡＢＣ １２３"),
                                   QStringLiteral("x")};
        const QList<int> aligns = {Qt::AlignLeft | Qt::AlignVCenter,    Qt::AlignRight | Qt::AlignVCenter,
                                   Qt::AlignHCenter | Qt::AlignVCenter, Qt::AlignLeft | Qt::AlignTop,
                                   Qt::AlignRight | Qt::AlignTop,       Qt::AlignHCenter | Qt::AlignBottom};
        const QList<QRect> rooms = {QRect(3, 4, 180, 17), QRect(2, 1, 37, 16), QRect(5, 3, 90, 11)};
        QFont font = QApplication::font();
        CellTextCache cache;
        // The cells' single lines, then the headers' labels as the style draws them, each text
        // laid out the first time in the first round and drawn from its kept line in the second.
        for (int round = 0; round < 2; ++round) {
            for (const QString& text : texts) {
                for (int flags : aligns) {
                    const int align = round == 0 ? flags | Qt::TextSingleLine : flags;
                    for (const QRect& room : rooms) {
                        QImage expected(200, 24, QImage::Format_ARGB32_Premultiplied), drawn = expected;
                        expected.fill(Qt::white);
                        drawn.fill(Qt::white);
                        QPainter a(&expected), b(&drawn);
                        for (QPainter* p : {&a, &b}) {
                            p->setFont(font);
                            p->setPen(Qt::black);
                        }
                        a.drawText(room, align, text);
                        cache.draw(&b, room, align, text);
                        a.end();
                        b.end();
                        if (expected != drawn)
                            QFAIL(qPrintable(QStringLiteral("'%1' aligned %2 in %3x%4 differs")
                                                 .arg(text)
                                                 .arg(align)
                                                 .arg(room.width())
                                                 .arg(room.height())));
                    }
                }
            }
        }
        // The plain texts were drawn from kept lines, the others by drawText.
        QVERIFY(CellTextCache::keepsLayoutOf(QStringLiteral("강남구 역삼1동")));
        QVERIFY(!CellTextCache::keepsLayoutOf(QStringLiteral("A&B상사")));
        QVERIFY(!CellTextCache::keepsLayoutOf(QStringLiteral("두\n줄")));
        QCOMPARE(cache.size(), 9);
    }

    // A cell's kept pixels, copied at any whole-pixel place of an image in either of the
    // backing stores' formats, are pixel for pixel the cell drawn there anew: the texts, colours,
    // alignments and sizes of a list, the second round all from kept pixels.
    void aCellCopiedFromItsKeptPixelsIsTheCellDrawnAnew() {
        const QStringList texts = {
            QStringLiteral("2020-05-31"), QStringLiteral("가나상사4149"),
            QStringLiteral("33,000"),     QStringLiteral("서울특별시 가가구 동산로7길 1"),
            QStringLiteral("A&B상사"),    QStringLiteral("가나다라마바사아자차카타파하 아주 긴 이름")};
        const QList<int> aligns = {Qt::AlignLeft | Qt::AlignVCenter, Qt::AlignRight | Qt::AlignVCenter,
                                   Qt::AlignHCenter | Qt::AlignVCenter};
        const QList<QColor> backs = {Qt::white, QColor(255, 224, 224), QColor(255, 255, 180)};
        const QList<QRect> cells = {QRect(10, 21, 75, 19), QRect(171, 3, 31, 19), QRect(0, 0, 229, 20)};
        const QFont font = QApplication::font();
        for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
            CellPixelCache kept;
            CellTextCache texts1, texts2;
            for (int round = 0; round < 2; ++round)
                for (const QString& text : texts)
                    for (int align : aligns)
                        for (const QColor& back : backs)
                            for (const QRect& cell : cells) {
                                QImage expected(240, 44, format), copied = expected;
                                expected.fill(Qt::gray);
                                copied.fill(Qt::gray);
                                const auto paint = [&](CellTextCache& t) {
                                    return [&, flags = align | Qt::TextSingleLine](QPainter* p,
                                                                                   const QRect& at) {
                                        p->fillRect(at, back);
                                        p->setPen(Qt::black);
                                        p->setFont(font);
                                        p->setClipRect(at);
                                        t.draw(p, at.adjusted(3, 1, -3, -1), flags, text);
                                    };
                                };
                                {
                                    QPainter a(&expected), b(&copied);
                                    paint(texts1)(&a, cell);
                                    QVERIFY(CellPixelCache::keepsPixelsOn(&b));
                                    kept.draw(&b, cell,
                                              {text, back.rgba(), QColor(Qt::black).rgba(),
                                               align | Qt::TextSingleLine, cell.size()},
                                              font, paint(texts2));
                                }
                                if (expected != copied)
                                    QFAIL(qPrintable(QStringLiteral("'%1' in %2x%3 round %4 differs")
                                                         .arg(text)
                                                         .arg(cell.width())
                                                         .arg(cell.height())
                                                         .arg(round)));
                            }
            QCOMPARE(kept.size(), int(texts.size() * aligns.size() * backs.size() * cells.size()));
        }
    }

    // Only the raster engine's images on whole pixels keep cells: a moved by half a pixel, see-
    // through or scaled painter draws each cell as it comes.
    void onlyWholePixelsOfAnImageKeepCells() {
        QImage image(50, 50, QImage::Format_RGB32);
        QPainter p(&image);
        QVERIFY(CellPixelCache::keepsPixelsOn(&p));
        p.translate(0.5, 0);
        QVERIFY(!CellPixelCache::keepsPixelsOn(&p));
        p.resetTransform();
        p.scale(2, 2);
        QVERIFY(!CellPixelCache::keepsPixelsOn(&p));
        p.resetTransform();
        p.setOpacity(0.5);
        QVERIFY(!CellPixelCache::keepsPixelsOn(&p));
        p.setOpacity(1);
        QVERIFY(CellPixelCache::keepsPixelsOn(&p));
    }

    // Another font (the grid's font changed) lays the texts out anew.
    void anotherFontLaysTheTextsOutAnew() {
        CellTextCache cache;
        QImage a(120, 30, QImage::Format_ARGB32_Premultiplied), b = a, c = a;
        for (QImage* image : {&a, &b, &c})
            image->fill(Qt::white);
        QFont small = QApplication::font(), large = small;
        large.setPointSizeF(small.pointSizeF() * 2);
        {
            QPainter p(&a);
            p.setFont(small);
            cache.draw(&p, QRect(0, 0, 120, 30), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                       QStringLiteral("역삼1동"));
        }
        {
            QPainter p(&b);
            p.setFont(large);
            cache.draw(&p, QRect(0, 0, 120, 30), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                       QStringLiteral("역삼1동"));
        }
        {
            QPainter p(&c);
            p.setFont(large);
            p.drawText(QRect(0, 0, 120, 30), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                       QStringLiteral("역삼1동"));
        }
        QVERIFY(a != b);
        QCOMPARE(b, c);
        QCOMPARE(cache.size(), 1);
    }
};

NB_TEST_MAIN(TestGridPainting)
#include "tst_grid_painting.moc"
