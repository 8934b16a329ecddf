// The ways out of the program: the scheduler, web pages, the paper order and stamp help, and
// the enlarged samples.
#include "TestSupport.h"
#include "common/External.h"
#include "core/AppFolder.h"
#include "core/AppState.h"
#include "core/ScreenRegistry.h"
#include "core/Settings.h"
#include "links/ExternalLinks.h"
#include "links/HelpForms.h"
#include "links/LinkPaths.h"
#include "links/LinkScreens.h"
#include "links/ZoomForms.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

using namespace nb;

namespace {

const QString kNotFound = QStringLiteral("루미달 실행파일을 찾을 수 없습니다.");

void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
}

QString scheduleSetting() {
    return GetSetting(QStringLiteral("루미달"), QStringLiteral("General"), QStringLiteral("AppPath"));
}

void setScheduleSetting(const QString& folder) {
    SaveSetting(QStringLiteral("루미달"), QStringLiteral("General"), QStringLiteral("AppPath"), folder);
}

// The program's own folder stands in a temporary one for the test.
struct OwnFolder {
    QTemporaryDir dir;
    OwnFolder() { setProgramFolder(dir.path()); }
    ~OwnFolder() { setProgramFolder(QString()); }
};

} // namespace

class TestExternalLinks : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void withTheSchedulerBesideTheProgramTheSettingIsNotRead() {
        test::TestHome home;
        OwnFolder own;
        touch(own.dir.path() + QStringLiteral("/HMAgenda.exe"));
        setScheduleSetting(home.file(QStringLiteral("elsewhere")));
        auto& launches = recordLaunches();
        auto& msgs = test::script();
        QVERIFY(RunSchedule(QStringLiteral("/data/Dbs")));
        QCOMPARE(launches.calls.size(), size_t(1));
        QCOMPARE(launches.calls[0].target, own.dir.path() + QStringLiteral("/HMAgenda.exe"));
        QCOMPARE(launches.calls[0].arguments, QStringList{QStringLiteral("/data/Dbs")});
        QVERIFY(msgs.records().empty());
        QCOMPARE(scheduleSetting(), home.file(QStringLiteral("elsewhere"))); // neither read nor mended
        setLauncher(nullptr);
    }

    void aDataPathEndingInASeparatorLosesItOnlyInTheStartedCommand() {
        test::TestHome home;
        OwnFolder own;
        touch(own.dir.path() + QStringLiteral("/HMAgenda.exe"));
        auto& launches = recordLaunches();
        test::script();
        const QString dataPath = QStringLiteral("C:\\Data\\");
        QVERIFY(RunSchedule(dataPath));
        QCOMPARE(launches.calls[0].arguments, QStringList{QStringLiteral("C:\\Data")});
        QCOMPARE(dataPath, QStringLiteral("C:\\Data\\"));
        QVERIFY(RunSchedule(QStringLiteral("/data/Dbs/")));
        QCOMPARE(launches.calls[1].arguments, QStringList{QStringLiteral("/data/Dbs")});
        setLauncher(nullptr);
    }

    void theSchedulerIsFoundThroughItsSetting() {
        test::TestHome home;
        OwnFolder own;
        QTemporaryDir other;
        touch(other.path() + QStringLiteral("/HMAgenda.exe"));
        setScheduleSetting(other.path());
        auto& launches = recordLaunches();
        QVERIFY(RunSchedule(QStringLiteral("/d")));
        QCOMPARE(launches.calls[0].target, other.path() + QStringLiteral("/HMAgenda.exe"));
        setLauncher(nullptr);
    }

    void noSettingSaysTheSchedulerIsNotFound() {
        test::TestHome home;
        OwnFolder own;
        auto& launches = recordLaunches();
        auto& msgs = test::script();
        QVERIFY(!RunSchedule(QStringLiteral("/d")));
        QCOMPARE(msgs.last().text, kNotFound);
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QVERIFY(launches.calls.empty());
        setLauncher(nullptr);
    }

    void aVanishedFolderIsMendedToTheProgramsOwnAndSaved() {
        test::TestHome home;
        OwnFolder own;
        setScheduleSetting(home.file(QStringLiteral("moved-away")));
        auto& launches = recordLaunches();
        auto& msgs = test::script();
        QVERIFY(!RunSchedule(QStringLiteral("/d")));
        QCOMPARE(scheduleSetting(), own.dir.path());
        QCOMPARE(msgs.last().text, own.dir.path() + QStringLiteral("/HMAgenda.exe\r\n") + kNotFound);
        QVERIFY(launches.calls.empty());
        setLauncher(nullptr);
    }

    void anExistingFolderWithoutTheProgramNamesTheFile() {
        test::TestHome home;
        OwnFolder own;
        QTemporaryDir other;
        setScheduleSetting(other.path());
        auto& msgs = test::script();
        QVERIFY(!RunSchedule(QStringLiteral("/d")));
        QCOMPARE(msgs.last().text, other.path() + QStringLiteral("/HMAgenda.exe\r\n") + kNotFound);
        QCOMPARE(scheduleSetting(), other.path());
    }

    void theHomePageIsOpenedOnlyOnYes() {
        test::TestHome home;
        auto& launches = recordLaunches();
        auto& msgs = test::script();
        msgs.answer(AnsNo);
        GoHomePage();
        QCOMPARE(msgs.last().text, QStringLiteral("고객지원센터 홈페이지로 이동하시겠습니까?"));
        QCOMPARE(msgs.last().buttons & 7, int(MbYesNo));
        QVERIFY(launches.calls.empty());
        msgs.answer(AnsYes);
        GoHomePage();
        QCOMPARE(launches.calls.size(), size_t(1));
        QCOMPARE(launches.calls[0].target, kMakerAddress);
        QVERIFY(launches.calls[0].isUrl);
        QVERIFY(OpenDocument(nullptr, QStringLiteral("https://example.org/x")));
        QCOMPARE(launches.calls[1].target, QStringLiteral("https://example.org/x"));
        setLauncher(nullptr);
    }

    void thePaperOrderShowsItsTextAndOpensTheOrderPage() {
        test::TestHome home;
        auto& launches = recordLaunches();
        FrmPaperOrder form;
        test::showActive(&form);
        QCOMPARE(form.windowTitle(), QStringLiteral("용지 주문"));
        QVERIFY(form.txtMemo->isReadOnly());
        const QStringList lines = form.txtMemo->toPlainText().split(u'\n');
        QCOMPARE(lines.first(), QStringLiteral(" 아래계좌로 용지대금을 송금후 [주문]단추를 누르세요!"));
        QVERIFY(lines.contains(QStringLiteral("  -세금계산서:25,000원(1BOX-1,000매기준)")));
        QVERIFY(lines.contains(QStringLiteral("  -거래명세서:25,000원(1BOX-1,000매기준)")));
        QVERIFY(lines.contains(QStringLiteral(" ※계산서 발행시 VAT별도")));
        QVERIFY(lines.contains(QStringLiteral("  [계좌번호]")));
        QVERIFY(lines.contains(kPaperOrderAccount));
        QVERIFY(kPaperOrderAccount.contains(QStringLiteral("예시")));
        QCOMPARE(lines.last(), QStringLiteral(" ※용지주문 신청 후 전화를 주시지 않아도 발송됩니다."));
        test::saveScreenshot(&form, QStringLiteral("frm_paper_order"));
        QTest::mouseClick(form.cmdOrder, Qt::LeftButton);
        QCOMPARE(launches.calls.size(), size_t(1));
        QCOMPARE(launches.calls[0].target, kMakerAddress + QStringLiteral("/order_buy.php"));
        QTest::mouseClick(form.cmdClose, Qt::LeftButton);
        QVERIFY(!form.isVisible());
        setLauncher(nullptr);
    }

    void theStampHelpShowsItsText() {
        test::TestHome home;
        FrmSignInfo form;
        test::showActive(&form);
        QVERIFY(form.txtMemo->isReadOnly());
        const QStringList lines = form.txtMemo->toPlainText().split(u'\n');
        QCOMPARE(lines.first(), QStringLiteral(" 누벨라는 공급자도장 인쇄기능을 지원합니다."));
        QVERIFY(lines.contains(QStringLiteral("  1. 도장을 깨끗한 A4용지에 선명하게 찍습니다. ")));
        QVERIFY(lines.contains(QStringLiteral("  4. 이미지 크기를 115x115픽셀로 편집합니다.")));
        QCOMPARE(lines.last(), QStringLiteral("                             문의:1500-0000"));
        test::saveScreenshot(&form, QStringLiteral("frm_sign_info"));
        QTest::mouseClick(form.cmdClose, Qt::LeftButton);
        QVERIFY(!form.isVisible());
    }

    void aMissingSampleImageLeavesTheZoomFormOpenWithTheDrawnSampleAndNoBox() {
        test::TestHome home;
        auto& msgs = test::script();
        frmZoomTax tax;
        test::showActive(&tax);
        QVERIFY(tax.isVisible());
        QCOMPARE(tax.picture()->pixmap().size(), zoomedInvoiceSample().size());
        test::saveScreenshot(&tax, QStringLiteral("frm_zoom_tax"));
        frmZoomDealList deal;
        test::showActive(&deal);
        QVERIFY(deal.isVisible());
        QCOMPARE(deal.picture()->pixmap().size(), drawnStatementSample().size());
        test::saveScreenshot(&deal, QStringLiteral("frm_zoom_deal_list"));
        QVERIFY(msgs.records().empty());
        QTest::mouseClick(deal.cmdClose, Qt::LeftButton);
        QVERIFY(!deal.isVisible());
    }

    void aPictureInImageIsShownInsteadOfTheDrawnSample() {
        test::TestHome home;
        QDir().mkpath(appFolderFile(QStringLiteral("Image")));
        QImage mine(123, 45, QImage::Format_RGB32);
        mine.fill(Qt::red);
        QVERIFY(mine.save(appFolderFile(QStringLiteral("Image/sample_bill_zoom.jpg"))));
        QVERIFY(mine.save(appFolderFile(QStringLiteral("Image/sample_tax_zoom.jpg"))));
        frmZoomDealList deal;
        QCOMPARE(deal.picture()->pixmap().size(), QSize(123, 45));
        frmZoomTax tax;
        QCOMPARE(tax.picture()->pixmap().size(), QSize(123, 45));
    }

    void theMenuEntriesAreRegistered() {
        clearScreenRegistry();
        registerLinkScreens();
        for (const char* control : {"mnu_SMS", "mnuSchedule", "mnuPaperOrder", "mnuSignInfo"})
            QVERIFY2(screenFor(QString::fromLatin1(control)), control);
        QVERIFY(screenFor(QStringLiteral("mnu_SMS"))->createChild);
        clearScreenRegistry();
    }
};

NB_TEST_MAIN(TestExternalLinks)
#include "tst_external_links.moc"
