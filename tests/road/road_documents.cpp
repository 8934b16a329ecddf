// Each document's whole road in a real window, by keys only, from an empty folder: the parties
// registered on their forms, then a statement, an invoice and a quotation typed and stored.
// Checked in the stores and in the printed PDF.
#include "RoadSteps.h"

#include <QDate>
#include <QDir>
#include <QProcess>
#include <QTest>

using namespace road;

namespace {

const QRegularExpression kProductList(QStringLiteral("상품명 검색"));
const QRegularExpression kTraderList(QStringLiteral("거래처 리스트"));

void typeAndEnter(const RoadDesk& desk, const QStringList& texts) {
    for (const QString& text : texts) {
        desk.type(text);
        desk.key(QStringLiteral("Return"));
    }
}

// The text of the newest PDF in the home folder's print folder.
QString newestPrint(const RoadDesk& desk) {
    const QFileInfoList pdfs = QDir(desk.home() + QStringLiteral("/Print"))
                                   .entryInfoList({QStringLiteral("*.pdf")}, QDir::Files, QDir::Time);
    if (pdfs.isEmpty()) return {};
    QProcess text;
    text.start(QStringLiteral("pdftotext"),
               {QStringLiteral("-layout"), pdfs.first().filePath(), QStringLiteral("-")});
    text.waitForFinished(10000);
    return QString::fromUtf8(text.readAllStandardOutput());
}

} // namespace

class RoadDocuments : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void thePartiesAreRegisteredOnTheirForms() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        desk.keys({QStringLiteral("alt+f"), QStringLiteral("s")}); // 사용자등록
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("사업자 등록"))), seen(desk));
        typeAndEnter(desk,
                     {QStringLiteral("가나상사"), QStringLiteral("김가나"), QStringLiteral("1234567891")});
        desk.key(QStringLiteral("alt+s"));
        QTRY_COMPARE_WITH_TIMEOUT(
            value(desk, QStringLiteral("dbBasic.db"), QStringLiteral("SELECT Serial FROM User")),
            QStringLiteral("123-45-67891"), 10000);
        desk.settle(1200);
        desk.key(QStringLiteral("alt+q"));
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));

        desk.keys({QStringLiteral("alt+f"), QStringLiteral("t")}); // 거래처등록
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("거래처 등록"))), seen(desk));
        typeAndEnter(desk, {QStringLiteral("다라상회"), QStringLiteral("이다라")});
        desk.key(QStringLiteral("alt+s"));
        QTRY_COMPARE_WITH_TIMEOUT(desk.rows(QStringLiteral("dbBasic.db"),
                                            QStringLiteral("SELECT Code, C_Name, U_Name FROM Trader")),
                                  QStringList{QStringLiteral("000001|다라상회|이다라")}, 10000);
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk)); // a new trader's form closes on saving

        desk.keys({QStringLiteral("alt+f"), QStringLiteral("m")}); // 상품 등록
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("상품 등록"))), seen(desk));
        typeAndEnter(desk, {QStringLiteral("볼트"), QStringLiteral("M10"), QStringLiteral("100"),
                            QStringLiteral("1500")});
        desk.key(QStringLiteral("alt+s"));
        QTRY_COMPARE_WITH_TIMEOUT(
            desk.rows(QStringLiteral("dbBasic.db"),
                      QStringLiteral("SELECT PName, PNorm, BuyPrice, SalePrice FROM Product")),
            QStringList{QStringLiteral("볼트|M10|100.0|1500.0")}, 10000);
        desk.settle(1200);
        desk.key(QStringLiteral("alt+x"));
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
    }
    void anInvoiceIsTypedIssuedStoredAndPrinted() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        QVERIFY(seedParties(desk));
        desk.keys({QStringLiteral("alt+p"), QStringLiteral("f")}); // 출력 → 세금계산서
        desk.settle(1000);
        desk.key(QStringLiteral("Insert")); // the traders' list
        QVERIFY2(desk.waitActive(kTraderList), seen(desk));
        desk.key(QStringLiteral("alt+s"));
        QVERIFY2(desk.waitActive(mainWindowName()), seen(desk));
        typeAndEnter(desk, {QStringLiteral("볼트")});
        QVERIFY2(desk.waitActive(kProductList), seen(desk));
        desk.key(QStringLiteral("alt+s"));
        QVERIFY2(desk.waitActive(mainWindowName()), seen(desk));
        typeAndEnter(desk, {QStringLiteral("3")}); // over the 1 the product put there
        desk.key(QStringLiteral("alt+p"));         // 발 행(&P)
        QVERIFY2(desk.waitSaid(QStringLiteral("발행하시겠습니까?")), seen(desk));
        desk.key(QStringLiteral("Return"));
        QVERIFY2(desk.waitSaid(QStringLiteral("PDF 파일로 저장했습니다")), seen(desk));
        desk.key(QStringLiteral("Return"));
        QCOMPARE(
            desk.rows(QStringLiteral("dbTax.db"),
                      QStringLiteral("SELECT TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum "
                                     "FROM NewAcount")),
            QStringList{QStringLiteral("100000|000001|볼트(M10)|3.0|1500.0|4091.0|409.0")});
        const QString printed = newestPrint(desk);
        QVERIFY(printed.contains(QStringLiteral("볼트(M10)")));
        QVERIFY(printed.contains(QStringLiteral("4,091")));
        QVERIFY(printed.contains(QStringLiteral("₩4,500")));
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
    }
    void theTotalsArePrintedAndTheTaxServiceSheetWritten() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        QVERIFY(seedParties(desk));
        const QString day = QDate::currentDate().toString(u"yyyy-MM-dd");
        QVERIFY(desk.exec(
            QStringLiteral("dbTax.db"),
            QStringLiteral("INSERT INTO NewAcount (TaxCode, CCode, PName, PNorm, Quantity, UnitCost, "
                           "TradeKum, VatKum, DealDate, IssueDate, TradeDate, UserCode, Receipt) VALUES "
                           "('100000', '000001', '볼트(M10)', '개', 3, 1500, 4091, 409, '%1', '', "
                           "'%2', '1234567891', '영수')")
                .arg(day, day.mid(5))));
        desk.keys({QStringLiteral("alt+p"), QStringLiteral("s")}); // 출력 → 세금계산서 합계표
        desk.settle(1500);
        desk.key(QStringLiteral("alt+s")); // 검색(&S)
        desk.settle(800);
        desk.key(QStringLiteral("alt+p")); // 인쇄(&P)
        QVERIFY2(desk.waitSaid(QStringLiteral("PDF 파일로 저장했습니다")), seen(desk));
        desk.key(QStringLiteral("Return"));
        const QString printed = newestPrint(desk);
        QVERIFY(printed.contains(QStringLiteral("매출처별 세금계산서 합계표")));
        QVERIFY(printed.contains(QStringLiteral("다라상회")));
        QVERIFY(printed.contains(QStringLiteral("4,091")));

        const QString sheetFolder = desk.home() + QStringLiteral("/hometax");
        QVERIFY(QDir().mkpath(sheetFolder));
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
        desk.key(QStringLiteral("alt+h")); // 전자세금계산서 엑셀(&H)
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("저장 폴더"))), seen(desk));
        desk.key(QStringLiteral("ctrl+a"));
        typeAndEnter(desk, {sheetFolder});
        QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("작성 결과"))), seen(desk));
        const QFileInfoList sheets = QDir(sheetFolder).entryInfoList({QStringLiteral("*.xlsx")}, QDir::Files);
        QCOMPARE(sheets.size(), 1);
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), sheets.first().filePath()});
        QVERIFY(unzip.waitForFinished(10000));
        const QString inside = QString::fromUtf8(unzip.readAllStandardOutput());
        QVERIFY(inside.contains(QStringLiteral("다라상회")));
        QVERIFY(inside.contains(QStringLiteral("2208134573")));
        desk.key(QStringLiteral("alt+x")); // the result's 닫기(&X)
        QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
    }
};

QTEST_GUILESS_MAIN(RoadDocuments)
#include "road_documents.moc"
