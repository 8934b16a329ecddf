// A statement of 100 lines (seven sheets) printed to a PDF file, the whole process as an operator
// or a script runs it: `nubella --print-statement BILLNO --pdf FILE`, with and without the form.
// Beside it, the statement's lines read through the sqlite3 command line on the same file.
#include "BenchSupport.h"

#include <QApplication>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cstdio>

using namespace nb;

namespace {

void fillStatement(int lines) {
    QSqlQuery(stores().dbBasic.connection())
        .exec(QStringLiteral(
            "INSERT INTO User (Company, Delegate, Serial) VALUES ('하르문상사', '홍길동', '123-45-67890')"));
    QSqlQuery(stores().dbBasic.connection())
        .exec(QStringLiteral(
            "INSERT INTO Trader (Code, C_Name, Serial) VALUES ('000001', '가나철강', '234-56-78901')"));
    QSqlQuery(stores().dbBill.connection())
        .exec(QStringLiteral("INSERT INTO Master VALUES ('000001', '2024-05-10', '000001', %1, %2, %3)")
                  .arg(10000 * lines)
                  .arg(1000 * lines)
                  .arg(lines));
    QSqlQuery line(stores().dbBill.connection());
    line.prepare(QStringLiteral("INSERT INTO Detail VALUES ('000001', ?, ?, 'EA', 2, 5000, 0, 10000, 1000)"));
    for (int i = 1; i <= lines; ++i) {
        line.addBindValue(i);
        line.addBindValue(QStringLiteral("품목%1").arg(i));
        line.exec();
    }
}

double printMs(const QString& home, bool frame) {
    return bench::medianMs(
        [&] {
            QProcess program;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("NUBELLA_HOME"), home);
            program.setProcessEnvironment(env);
            QStringList args{QStringLiteral("--print-statement"), QStringLiteral("000001"),
                             QStringLiteral("--pdf"), home + QStringLiteral("/s.pdf")};
            if (frame) args << QStringLiteral("--frame");
            program.start(QStringLiteral(NB_BINARY_DIR) + QStringLiteral("/nubella"), args);
            program.waitForFinished(60000);
        },
        5);
}

} // namespace

int main(int argc, char** argv) {
    test::prepareEnvironment();
    QApplication app(argc, argv);
    test::prepareApplication(app);
    test::TestHome home;
    bench::openFreshStore();
    fillStatement(100);
    const double cli =
        bench::cliMs(stores().dbBill.path(),
                     QStringLiteral("SELECT * FROM Detail WHERE BillNo = '000001' ORDER BY BillSEQ"));
    const double plain = printMs(home.path(), false);
    const double framed = printMs(home.path(), true);
    std::printf("100-line statement to PDF, whole process      %8.1f ms  sqlite3 lines %6.1f ms\n", plain,
                cli);
    std::printf("the same with the form on plain paper         %8.1f ms\n", framed);
    return 0;
}
