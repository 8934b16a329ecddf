// The steps of each document's road, typed by keys. Each checks what it stored and printed;
// a failed check ends the test that runs it (QtTest marks it failed and the step returns).
#include "RoadDocumentSteps.h"

#include <QDate>
#include <QDir>
#include <QProcess>
#include <QTest>

namespace road {
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

// An entry of the 출력 menu by keys from whatever screen is in front: Alt pressed and let go
// alone opens the menu bar (the screen may hold the letter P itself), Right goes on to 출력.
void openFromTheOutputMenu(const RoadDesk& desk, const QString& letter) {
    desk.keys({QStringLiteral("alt"), QStringLiteral("Right"), letter});
    desk.settle(1500);
}

} // namespace

// The supplier, a trader and a product registered on their forms by keys, from an empty folder.
void registerPartiesOnTheirForms(RoadDesk& desk) {
    desk.keys({QStringLiteral("alt+f"), QStringLiteral("s")}); // 사용자등록
    QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("사업자 등록"))), seen(desk));
    typeAndEnter(desk, {QStringLiteral("가나상사"), QStringLiteral("김가나"), QStringLiteral("1234567891")});
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
    for (int field = 0; field < 5; ++field) // 전화번호 to 담당자 left empty
        desk.key(QStringLiteral("Return"));
    typeAndEnter(desk, {QStringLiteral("2208134573")}); // 사업번호
    desk.key(QStringLiteral("alt+s"));
    QTRY_COMPARE_WITH_TIMEOUT(
        desk.rows(QStringLiteral("dbBasic.db"), QStringLiteral("SELECT Code, C_Name, U_Name FROM Trader")),
        QStringList{QStringLiteral("000001|다라상회|이다라")}, 10000);
    QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk)); // a new trader's form closes on saving

    desk.keys({QStringLiteral("alt+f"), QStringLiteral("m")}); // 상품 등록
    QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("상품 등록"))), seen(desk));
    typeAndEnter(
        desk, {QStringLiteral("볼트"), QStringLiteral("M10"), QStringLiteral("100"), QStringLiteral("1500")});
    desk.key(QStringLiteral("Return")); // 비고 left empty
    desk.type(QStringLiteral("개"));    // 단위
    desk.key(QStringLiteral("alt+s"));
    QTRY_COMPARE_WITH_TIMEOUT(
        desk.rows(QStringLiteral("dbBasic.db"),
                  QStringLiteral("SELECT PName, PNorm, BuyPrice, SalePrice, Unit FROM Product")),
        QStringList{QStringLiteral("볼트|M10|100.0|1500.0|개")}, 10000);
    desk.settle(1200);
    desk.key(QStringLiteral("alt+x"));
    QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
}

// A statement for the trader: a product from the list, its quantity typed over the 1 put there;
// stored line by line with its head equal to its lines.
void typeAStatement(RoadDesk& desk) {
    openFromTheOutputMenu(desk, QStringLiteral("m")); // 출력 → 거래명세표
    typeAndEnter(desk, {QStringLiteral("다라")});     // the one trader it matches
    typeAndEnter(desk, {QStringLiteral("볼트")});
    QVERIFY2(desk.waitActive(kProductList), seen(desk));
    desk.key(QStringLiteral("alt+s"));
    QVERIFY2(desk.waitActive(mainWindowName()), seen(desk));
    typeAndEnter(desk, {QStringLiteral("3")}); // over the 1 the product put there
    QTRY_COMPARE_WITH_TIMEOUT(desk.rows(QStringLiteral("dbBill.db"),
                                        QStringLiteral("SELECT BillNo, PName, Quant, Price, Amount, VAT "
                                                       "FROM Detail")),
                              QStringList{QStringLiteral("000001|볼트(M10)|3.0|1500.0|4091.0|409.0")}, 5000);
    QCOMPARE(desk.rows(QStringLiteral("dbBill.db"),
                       QStringLiteral("SELECT BillNo, CCode, TotAmount, TotVat, NumBill FROM Master")),
             QStringList{QStringLiteral("000001|000001|4091.0|409.0|1")});
}

// An invoice for the trader: issued by 발 행, stored and printed to PDF.
void issueAnInvoice(RoadDesk& desk) {
    openFromTheOutputMenu(desk, QStringLiteral("f")); // 출력 → 세금계산서
    desk.key(QStringLiteral("Insert"));               // the traders' list
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
    QCOMPARE(desk.rows(QStringLiteral("dbTax.db"),
                       QStringLiteral("SELECT TaxCode, CCode, PName, Quantity, UnitCost, TradeKum, VatKum "
                                      "FROM NewAcount")),
             QStringList{QStringLiteral("100000|000001|볼트(M10)|3.0|1500.0|4091.0|409.0")});
    const QString printed = newestPrint(desk);
    QVERIFY(printed.contains(QStringLiteral("볼트(M10)")));
    QVERIFY(printed.contains(QStringLiteral("4,091")));
    QVERIFY(printed.contains(QStringLiteral("₩4,500")));
    QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
}

// A quotation for the trader by keys: its head saved when the grid takes the focus, whatever box
// borrowed the focus on the way, then a line.
void typeAQuotation(RoadDesk& desk) {
    openFromTheOutputMenu(desk, QStringLiteral("e")); // 출력 → 견적서
    typeAndEnter(desk, {QStringLiteral("다라")});     // the one trader it matches
    // Enter on through the head to the grid. On the way the delivery-date box may borrow the
    // focus; the head is saved all the same when the grid takes it.
    const QString kSaveHead = QStringLiteral("저장하시겠습니까");
    for (int field = 0; field < 12 && desk.countSaid(kSaveHead) == 0; ++field) {
        desk.key(QStringLiteral("Return"));
        desk.settle(200);
    }
    QVERIFY2(desk.countSaid(kSaveHead) > 0, seen(desk));
    desk.key(QStringLiteral("Return")); // 예
    QTRY_COMPARE_WITH_TIMEOUT(
        desk.rows(QStringLiteral("dbEstimate.db"), QStringLiteral("SELECT CCode, CName FROM EstiBase")),
        QStringList{QStringLiteral("000001|다라상회")}, 5000);
    QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
    // Enter on an empty first cell lists the products; the one chosen is stored as a line at
    // once, and the cursor waits on its unit. Enter goes on to the quantity.
    desk.key(QStringLiteral("Return"));
    QVERIFY2(desk.waitActive(kProductList), seen(desk));
    desk.key(QStringLiteral("alt+s"));
    QVERIFY2(desk.waitActive(mainWindowName()), seen(desk));
    desk.key(QStringLiteral("Return"));
    typeAndEnter(desk, {QStringLiteral("3")});
    QTRY_COMPARE_WITH_TIMEOUT(
        desk.rows(QStringLiteral("dbEstimate.db"),
                  QStringLiteral("SELECT PName, PNorm, EUnit, EAmount, EUnitPrice, EstiKum FROM Estimate")),
        QStringList{QStringLiteral("볼트|M10|개|3.0|1500.0|4500")}, 5000);
}

// The totals of the period searched and printed; the tax service's sheet written into a folder.
void printTheTotalsAndWriteTheSheet(RoadDesk& desk) {
    openFromTheOutputMenu(desk, QStringLiteral("s")); // 출력 → 세금계산서 합계표
    desk.key(QStringLiteral("alt+s"));                // 검색(&S)
    desk.settle(800);
    desk.key(QStringLiteral("alt+p")); // 인쇄(&P)
    QVERIFY2(desk.waitSaid(QStringLiteral("PDF 파일로 저장했습니다")), seen(desk));
    desk.key(QStringLiteral("Return"));
    const QString printed = newestPrint(desk);
    // The official form, the first choice: 4,091 stands in its digit cells.
    QVERIFY(printed.contains(QStringLiteral("매출처별 세금계산서합계표(갑)")));
    QVERIFY(printed.contains(QStringLiteral("다라상회")));
    QVERIFY(printed.contains(QStringLiteral("091")));

    const QString sheetFolder = desk.home() + QStringLiteral("/hometax");
    QVERIFY(QDir().mkpath(sheetFolder));
    QVERIFY2(desk.waitActive(mainWindowName(), 5000), seen(desk));
    desk.key(QStringLiteral("alt+h")); // 전자세금계산서 엑셀(&H)
    // The period window offers the month just ended; the invoice is of the period searched.
    QVERIFY2(desk.waitActive(QRegularExpression(QStringLiteral("^전자세금계산서 엑셀$"))), seen(desk));
    desk.key(QStringLiteral("alt+s"));  // 검색 기간(&S)
    desk.key(QStringLiteral("Return")); // 작성(&W)
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

} // namespace road
