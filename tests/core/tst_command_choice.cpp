// What the command line asks for: the window, one job, or a usage error; and the program's own
// files, which no output of a job may be written over.
#include "TestSupport.h"
#include "core/AppState.h"
#include "core/CommandLine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace nb;

namespace {

std::vector<CommandJob> sampleJobs() {
    auto none = [](const QStringList&) { return 0; };
    return {{QStringLiteral("--print-invoice"),
             1,
             {QStringLiteral("--pdf")},
             {},
             QStringLiteral("사용법: a"),
             none},
            {QStringLiteral("--print-statement"),
             1,
             {QStringLiteral("--pdf")},
             {QStringLiteral("--frame")},
             QStringLiteral("사용법: b"),
             none},
            {QStringLiteral("--export-etax"),
             2,
             {QStringLiteral("--out"), QStringLiteral("--receipt")},
             {},
             QStringLiteral("사용법: c"),
             none}};
}

CommandChoice choose(const QStringList& arguments, const std::vector<CommandJob>& jobs) {
    return chooseCommand(arguments, jobs);
}

} // namespace

class TestCommandChoice : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void noArgumentsOpenTheWindow() { QCOMPARE(choose({}, sampleJobs()).kind, CommandChoice::Kind::Window); }
    void qtsOwnOptionsStillOpenTheWindow() {
        const auto jobs = sampleJobs();
        QCOMPARE(choose({"-platform", "offscreen", "-reverse", "-style=fusion"}, jobs).kind,
                 CommandChoice::Kind::Window);
    }
    void aJobWithItsOptionsIsChosen() {
        const auto jobs = sampleJobs();
        const CommandChoice choice =
            choose({"--print-statement", "000001", "--pdf", "a.pdf", "--frame"}, jobs);
        QCOMPARE(choice.kind, CommandChoice::Kind::Job);
        QCOMPARE(choice.job->option, QStringLiteral("--print-statement"));
        const CommandChoice etax = choose({"--export-etax", "2024-01-01", "2024-01-31", "--out", "e"}, jobs);
        QCOMPARE(etax.kind, CommandChoice::Kind::Job);
        QCOMPARE(etax.job->option, QStringLiteral("--export-etax"));
    }
    // A job whose values are missing is still that job: it says its own usage line.
    void aJobMissingItsValuesIsStillChosen() {
        const CommandChoice choice = choose({"--print-invoice", "--pdf", "a.pdf"}, sampleJobs());
        QCOMPARE(choice.kind, CommandChoice::Kind::Job);
    }
    void twoJobsInOneCallAreAUsageError() {
        const auto jobs = sampleJobs();
        const CommandChoice choice =
            choose({"--print-invoice", "100000", "--pdf", "a.pdf", "--print-statement", "000001"}, jobs);
        QCOMPARE(choice.kind, CommandChoice::Kind::Usage);
        QCOMPARE(choice.problem,
                 QStringLiteral("한 번에 한 가지 작업만 할 수 있습니다: --print-invoice, --print-statement"));
        QCOMPARE(usageLines(choice, jobs),
                 (QStringList{choice.problem, "사용법: a", "사용법: b", "사용법: c"}));
        QCOMPARE(choose({"--print-invoice", "1", "--print-invoice", "2", "--pdf", "a.pdf"}, jobs).kind,
                 CommandChoice::Kind::Usage);
    }
    void anOptionNoJobKnowsIsAUsageError() {
        const auto jobs = sampleJobs();
        QCOMPARE(choose({"--bogus"}, jobs).problem, QStringLiteral("알 수 없는 옵션입니다: --bogus"));
        QCOMPARE(choose({"--print-invoice", "1", "--pdf", "a.pdf", "--bogus"}, jobs).kind,
                 CommandChoice::Kind::Usage);
        QCOMPARE(choose({"stray.txt"}, jobs).problem, QStringLiteral("알 수 없는 인수입니다: stray.txt"));
        QCOMPARE(choose({"-x"}, jobs).kind, CommandChoice::Kind::Usage);
    }
    void anOptionOfAnotherJobOrOfNoJobIsAUsageError() {
        const auto jobs = sampleJobs();
        QCOMPARE(choose({"--print-invoice", "1", "--pdf", "a.pdf", "--frame"}, jobs).problem,
                 QStringLiteral("--print-invoice 에는 쓸 수 없는 옵션입니다: --frame"));
        QCOMPARE(choose({"--pdf", "a.pdf"}, jobs).problem,
                 QStringLiteral("작업 없이 쓸 수 없는 옵션입니다: --pdf"));
        QCOMPARE(choose({"--print-invoice", "1", "--pdf", "a.pdf", "--pdf", "b.pdf"}, jobs).problem,
                 QStringLiteral("옵션이 두 번 주어졌습니다: --pdf"));
    }

    void theStoresTheSettingsAndTheProgramAreRefusedAsTargets() {
        test::TestHome home;
        QDir().mkpath(home.file("Dbs"));
        AppState& s = app();
        s.DbPath = home.file("Dbs");
        s.DbBasicFile = home.file("Dbs/dbBasic.db");
        s.DbTaxFile = home.file("Dbs/dbTax.db");
        s.DbPostFile = home.path() + "/elsewhere/dbPost.db"; // a store kept outside its folder
        QDir().mkpath(home.path() + "/elsewhere");
        for (const QString& own :
             {home.file("Dbs/dbTax.db"), home.file("Dbs/dbBasic.db"), home.file("Dbs/new.db"),
              home.file("Dbs/dbTax.db-journal"), home.file("Dbs/../Dbs/dbTax.db"), home.file("settings.ini"),
              home.path() + "/elsewhere/dbPost.db", QCoreApplication::applicationFilePath()})
            QVERIFY2(ownFileRefusal(own).startsWith(QStringLiteral("누벨라의 자료 파일이라")),
                     qPrintable(own));
        QFile store(home.file("Dbs/dbTax.db"));
        QVERIFY(store.open(QIODevice::WriteOnly));
        store.close();
        QVERIFY(QFile::link(home.file("Dbs/dbTax.db"), home.file("link.pdf")));
        QVERIFY(!ownFileRefusal(home.file("link.pdf")).isEmpty()); // a link leads to the store
        for (const QString& other : {home.file("Dbs/list.pdf"), home.file("out.db"),
                                     home.file("archive/a.pdf"), home.path() + "/elsewhere/other.db"})
            QVERIFY2(ownFileRefusal(other).isEmpty(), qPrintable(other));
    }
};

NB_TEST_MAIN(TestCommandChoice)
#include "tst_command_choice.moc"
