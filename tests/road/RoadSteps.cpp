#include "RoadSteps.h"

namespace road {

QByteArray seen(const RoadDesk& desk) {
    return ("active window: \"" + desk.activeWindowName() +
            "\"; said: " + desk.said().join(QStringLiteral(" / ")))
        .toUtf8();
}

bool programUp(RoadDesk& desk) {
    return desk.ready() && desk.startProgram() && desk.waitActive(mainWindowName(), 30000);
}

bool seedParties(RoadDesk& desk) {
    return desk.exec(
        QStringLiteral("dbBasic.db"),
        QStringLiteral(
            "INSERT INTO User (Company, Delegate, Serial, Post, Addr) "
            "VALUES ('가나상사', '김가나', '1234567891', '', '');"
            "INSERT INTO Trader (Code, C_Name, U_Name, Serial, Phone, Fax, Addr1, Addr2, Status, Item, "
            "Section, VAT, TotNoPay, bDeled) VALUES ('000001', '다라상회', '이다라', '2208134573', '', '', "
            "'', '', '', '', 0, 0, 0, 0);"
            "INSERT INTO Product (Code, PName, PNorm, BuyPrice, SalePrice, Unit, Bigo, PTax) "
            "VALUES ('000001', '볼트', 'M10', 100, 1500, '개', '', 0);"));
}

QString value(const RoadDesk& desk, const QString& storeName, const QString& sql) {
    return desk.rows(storeName, sql).value(0);
}

} // namespace road
