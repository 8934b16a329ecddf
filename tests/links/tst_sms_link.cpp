// The hand-over to the sending program: finding it, the number file (CP949, CRLF, one line a
// number), the start with the file or "0", and the boxes on the way.
#include "SmsKit.h"
#include "common/External.h"
#include "common/grid/Grid.h"
#include "core/Settings.h"
#include "links/SmsNumbers.h"

using namespace nb;

namespace {

const QString kNotChosen =
    QStringLiteral("전송할 자료를 선택하지 않았습니다.\r\n문자/팩스전송 프로그램을 실행할까요?");

struct GridRow {
    bool ticked;
    QString name, numbers;
};

void fill(Grid& grid, const QList<GridRow>& rows) {
    grid.setMaxCols(4);
    grid.setMaxRows(int(rows.size()));
    for (int r = 1; r <= rows.size(); ++r) {
        const GridRow& g = rows[r - 1];
        grid.SetText(1, r, g.ticked ? QStringLiteral("1") : QString());
        grid.SetText(2, r, g.name);
        grid.SetText(3, r, g.numbers);
    }
}

} // namespace

class TestSmsLink : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void numbersArePickedByTheTickedTypes() {
        const PhoneTypes mobile{true, false, false};
        QCOMPARE(pickNumbers(QStringLiteral("02-1"), QStringLiteral("02-2"), QStringLiteral("010-1"), mobile),
                 QStringLiteral("010-1"));
        // A mobile number kept in the telephone field stands in for a missing one.
        QCOMPARE(pickNumbers(QStringLiteral("011-9"), QString(), QString(), mobile), QStringLiteral("011-9"));
        QCOMPARE(pickNumbers(QStringLiteral("02-1"), QString(), QStringLiteral("02-7"), mobile), QString());
        const PhoneTypes all{true, true, true};
        QCOMPARE(pickNumbers(QStringLiteral("02-1"), QStringLiteral("02-2"), QStringLiteral("010-1"), all),
                 QStringLiteral("010-1,02-1,02-2"));
        QCOMPARE(pickNumbers(QStringLiteral("011-9"), QStringLiteral("010-8"), QString(), all),
                 QStringLiteral("011-9"));
    }

    void noNumberTypeTickedATickedRowAddsNoLine() {
        test::TestHome home;
        QCOMPARE(pickNumbers(QStringLiteral("02-1"), QStringLiteral("02-2"), QStringLiteral("010-1"),
                             PhoneTypes{}),
                 QString());
        Grid grid;
        fill(grid, {{true, QStringLiteral("가나상사"), QString()},
                    {true, QStringLiteral("다라"), QStringLiteral("010-1")}});
        const QString file = home.file(QStringLiteral("ExternTelNo.txt"));
        QVERIFY(CreateTelListFile(grid, file, 1, 2, 3));
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), ToCp949(QStringLiteral("다라,010-1\r\n")));
    }

    void numbersStartingWithACommaAreWrittenAsOneLine() {
        QCOMPARE(telListLines(QStringLiteral("가"), QStringLiteral(",010-1,02-2")),
                 QStringList{QStringLiteral("가,,010-1,02-2")});
        QCOMPARE(telListLines(QStringLiteral("가;나:다"), QStringLiteral("010-1 , 02-2,02-3")),
                 (QStringList{QStringLiteral("가나다,010-1"), QStringLiteral("가나다,02-2"),
                              QStringLiteral("가나다,02-3")}));
        QCOMPARE(telListLines(QStringLiteral("가"), QString()), QStringList{});
    }

    void theNumberFileIsCp949WithCrlfAndWrittenAnew() {
        test::TestHome home;
        const QString file = home.file(QStringLiteral("ExternTelNo.txt"));
        QFile old(file);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("an old list that is much longer than the new one\r\n");
        old.close();
        Grid grid;
        fill(grid, {{true, QStringLiteral("한글;상사:"), QStringLiteral("010-1,02-2")},
                    {false, QStringLiteral("빠짐"), QStringLiteral("010-9")},
                    {true, QStringLiteral("O'Neil"), QStringLiteral(",02-5")}});
        QVERIFY(CreateTelListFile(grid, file, 1, 2, 3));
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray bytes = f.readAll();
        QCOMPARE(bytes, ToCp949(QStringLiteral("한글상사,010-1\r\n한글상사,02-2\r\nO'Neil,,02-5\r\n")));
        QCOMPARE(bytes.left(2), QByteArray("\xC7\xD1")); // 한 in CP949
    }

    void getSendProgramPathPrefersTheOwnFolderToTheSetting() {
        test::TestHome home;
        test::SendProgramFolder own;
        QTemporaryDir other;
        test::SendProgramFolder::writeStandIn(other.path());
        SaveSetting(QStringLiteral("하르문플라이노트"), QStringLiteral("환경설정"), QStringLiteral("AppPath"),
                    other.path());
        auto& msgs = test::script();
        QCOMPARE(GetSendProgramPath(), own.path());
        QVERIFY(msgs.records().empty());
    }

    void getSendProgramPathFallsBackOnTheSetting() {
        test::TestHome home;
        test::SendProgramFolder own(false);
        QTemporaryDir other;
        test::SendProgramFolder::writeStandIn(other.path());
        SaveSetting(QStringLiteral("하르문플라이노트"), QStringLiteral("환경설정"), QStringLiteral("AppPath"),
                    other.path() + u'/');
        auto& msgs = test::script();
        QCOMPARE(GetSendProgramPath(), other.path());
        QVERIFY(msgs.records().empty());
    }

    void getSendProgramPathSaysWhyWhenNotFound() {
        test::TestHome home;
        test::SendProgramFolder own(false);
        auto& msgs = test::script();
        QCOMPARE(GetSendProgramPath(), QString());
        QCOMPARE(msgs.last().text, QStringLiteral("문자전송 실행파일을 찾을 수 없습니다."));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        SaveSetting(QStringLiteral("하르문플라이노트"), QStringLiteral("환경설정"), QStringLiteral("AppPath"),
                    home.file(QStringLiteral("gone")));
        QCOMPARE(GetSendProgramPath(), QString());
        QCOMPARE(msgs.last().text,
                 QStringLiteral("문자전송 프로그램을 찾을 수 없습니다.\r\n파일명:") +
                     home.file(QStringLiteral("gone/HMFlyNote.exe")) +
                     QStringLiteral("\r\n하르문 홈페이지에서 문자전송 프로그램(플라이노트)을 "
                                    "다운받아 설치하세요."));
    }

    void nothingTickedAndYesStartsTheProgramWithZeroAndWritesNoFile() {
        test::TestHome home;
        test::SendProgramFolder own;
        Grid grid;
        fill(grid, {{false, QStringLiteral("가"), QStringLiteral("010-1")}});
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        QVERIFY(TransFromSpread(grid, 1, 2, 3));
        QCOMPARE(msgs.last().text, kNotChosen);
        QCOMPARE(msgs.last().title, QStringLiteral("SMS"));
        QCOMPARE(msgs.last().buttons & 7, int(MbYesNo));
        QTRY_VERIFY(own.started());
        QCOMPARE(own.argument(), QStringLiteral("0"));
        QCOMPARE(own.workingFolder(), own.path());
        QVERIFY(!QFile::exists(own.path() + QStringLiteral("/ExternTelNo.txt")));
    }

    void nothingTickedAndNoStartsNothing() {
        test::TestHome home;
        test::SendProgramFolder own;
        auto& launches = recordLaunches();
        Grid grid;
        fill(grid, {{false, QStringLiteral("가"), QStringLiteral("010-1")}});
        auto& msgs = test::script();
        msgs.answer(AnsNo);
        QVERIFY(!TransFromSpread(grid, 1, 2, 3));
        QVERIFY(launches.calls.empty());
        setLauncher(nullptr);
    }

    void tickedRowsStartTheProgramWithTheNumberFile() {
        test::TestHome home;
        test::SendProgramFolder own;
        Grid grid;
        fill(grid, {{true, QStringLiteral("가나"), QStringLiteral("010-1")}});
        auto& msgs = test::script();
        QVERIFY(TransFromSpread(grid, 1, 2, 3));
        QVERIFY(msgs.records().empty());
        QTRY_VERIFY(own.started());
        QCOMPARE(own.argument(), own.path() + QStringLiteral("/ExternTelNo.txt"));
        QCOMPARE(own.numberFile(), ToCp949(QStringLiteral("가나,010-1\r\n")));
    }

    void aProgramThatCannotStartGivesTheFailureReport() {
        test::TestHome home;
        test::SendProgramFolder own;
        auto& launches = recordLaunches();
        launches.succeed = false;
        Grid grid;
        fill(grid, {{true, QStringLiteral("가나"), QStringLiteral("010-1")}});
        auto& msgs = test::script();
        QVERIFY(!TransFromSpread(grid, 1, 2, 3));
        QVERIFY(
            msgs.last().text.endsWith(QStringLiteral(") in procedure TransFromSpread of Module modSMSLink")));
        QCOMPARE(launches.calls.at(0).workingFolder, own.path());
        setLauncher(nullptr);
    }

    void anUnwritableNumberFileGivesItsFailureReport() {
        test::TestHome home;
        Grid grid;
        fill(grid, {{true, QStringLiteral("가나"), QStringLiteral("010-1")}});
        auto& msgs = test::script();
        QVERIFY(!CreateTelListFile(grid, home.file(QStringLiteral("no/such/folder/x.txt")), 1, 2, 3));
        QVERIFY(msgs.last().text.endsWith(
            QStringLiteral(") in procedure CreateTelListFile of Module modSMSLink")));
    }
};

NB_TEST_MAIN(TestSmsLink)
#include "tst_sms_link.moc"
