// The message service: box shapes, titles, answers, the timed notice, the floating message,
// the failure report and the progress form.
#include "TestSupport.h"

#include "common/MessageDialogs.h"
#include "common/Messages.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace nb;

namespace {
// Presses a key on the modal box that is about to open.
void pressOnNextModal(Qt::Key key) {
    QTimer::singleShot(50, [key] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal) QTest::keyClick(modal, key);
    });
}
} // namespace

class TestMessages : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { setApplicationTitle(QStringLiteral("누벨라")); }

    void showInfoIsAnInformationBox() {
        auto& msgs = test::script();
        ShowInfo(QStringLiteral("저장되었습니다."), QStringLiteral("알림"));
        QCOMPARE(msgs.last().buttons, 64);
        QCOMPARE(msgs.last().text, QStringLiteral("저장되었습니다."));
        QCOMPARE(msgs.last().title, QStringLiteral("알림"));
    }
    void showWarningIsAnExclamationBox() {
        auto& msgs = test::script();
        ShowWarning(QStringLiteral("경고"), QStringLiteral("제목"));
        QCOMPARE(msgs.last().buttons, 48);
    }
    void emptyTitleShowsTheApplicationsTitle() {
        auto& msgs = test::script();
        ShowInfo(QStringLiteral("a"));
        ShowWarning(QStringLiteral("b"), QString());
        msgs.answer(AnsNo);
        AskYesNo(QStringLiteral("c"));
        msgs.answer(AnsCancel);
        AskYesNoCancel(QStringLiteral("d"), QString());
        for (const auto& r : msgs.boxes()) QCOMPARE(r.title, QStringLiteral("누벨라"));
        QCOMPARE(int(msgs.boxes().size()), 4);
    }
    void askYesNoUsesThirtySixOrTwoNinetyTwo() {
        auto& msgs = test::script();
        msgs.answer(AnsYes);
        QCOMPARE(AskYesNo(QStringLiteral("질문"), QStringLiteral("t"), true), int(AnsYes));
        QCOMPARE(msgs.last().buttons, 36);
        msgs.answer(AnsNo);
        QCOMPARE(AskYesNo(QStringLiteral("질문"), QStringLiteral("t"), false), int(AnsNo));
        QCOMPARE(msgs.last().buttons, 292);
    }
    void askYesNoCancelAddsExtraToThirtyFive() {
        auto& msgs = test::script();
        msgs.answer(AnsCancel);
        QCOMPARE(AskYesNoCancel(QStringLiteral("질문"), QStringLiteral("t"), 256), int(AnsCancel));
        QCOMPARE(msgs.last().buttons, 35 + 256);
    }
    void showErrorHasThreeLinesAndTitleOryu() {
        auto& msgs = test::script();
        ShowError(QStringLiteral("저장 실패"), 3022, QStringLiteral("중복"));
        QCOMPARE(msgs.last().title, QStringLiteral("오류"));
        QCOMPARE(msgs.last().buttons, 48);
        QCOMPARE(msgs.last().text, QStringLiteral("저장 실패\r\n오류번호 : 3022\r\n오류내용 : 중복"));
    }
    void failureReportNamesProcedureAndModule() {
        auto& msgs = test::script();
        ShowFailureReport(13, QStringLiteral("형식이 일치하지 않습니다."), QStringLiteral("TransFromSpread"),
                          QStringLiteral("modSMSLink"));
        QCOMPARE(msgs.last().text,
                 QStringLiteral("Error 13 (형식이 일치하지 않습니다.) in procedure TransFromSpread of Module modSMSLink"));
        QCOMPARE(msgs.last().buttons, 0);
    }
    void unscriptedBoxTakesItsDefaultButton() {
        auto& msgs = test::script();
        QCOMPARE(AskYesNo(QStringLiteral("q"), QString(), false), int(AnsNo));
        QCOMPARE(AskYesNo(QStringLiteral("q"), QString(), true), int(AnsYes));
        QCOMPARE(msgs.unscripted(), 2);
    }
    void progressRecordsEachStep() {
        auto& msgs = test::script();
        {
            Progress progress(QStringLiteral("가져오는 중"), 3);
            progress.step();
            progress.step();
        }
        QCOMPARE(msgs.records().front().kind, QStringLiteral("progress"));
        QCOMPARE(msgs.progressValues(), (QList<int>{1, 2}));
    }

    // The real dialogs.
    void boxShapesFollowTheButtonValue() {
        QMessageBox* yesNo = buildMessageBox(QStringLiteral("질문"), 292, QStringLiteral("t"), nullptr);
        QCOMPARE(yesNo->icon(), QMessageBox::Question);
        QCOMPARE(yesNo->standardButtons(), QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(yesNo->defaultButton(), yesNo->button(QMessageBox::No));
        delete yesNo;
        QMessageBox* info = buildMessageBox(QStringLiteral("a\r\nb"), 64, QStringLiteral("t"), nullptr);
        QCOMPARE(info->icon(), QMessageBox::Information);
        QCOMPARE(info->text(), QStringLiteral("a\nb"));
        delete info;
    }
    void standardButtonsReadInKorean() {
        QMessageBox* box = buildMessageBox(QStringLiteral("질문"), 35, QStringLiteral("t"), nullptr);
        QCOMPARE(box->button(QMessageBox::Yes)->text(), QStringLiteral("예(&Y)"));
        QCOMPARE(box->button(QMessageBox::No)->text(), QStringLiteral("아니요(&N)"));
        QCOMPARE(box->button(QMessageBox::Cancel)->text(), QStringLiteral("취소"));
        delete box;
    }
    void askYesNoWithDefaultNoReturnsSevenOnEnter() {
        setMessageBackend(std::make_unique<DialogMessages>());
        pressOnNextModal(Qt::Key_Return);
        QCOMPARE(AskYesNo(QStringLiteral("삭제하시겠습니까?"), QString(), false), int(AnsNo));
        pressOnNextModal(Qt::Key_Return);
        QCOMPARE(AskYesNo(QStringLiteral("삭제하시겠습니까?"), QString(), true), int(AnsYes));
    }
    void realBoxCarriesTheApplicationsTitle() {
        setMessageBackend(std::make_unique<DialogMessages>());
        QString seenTitle;
        QTimer::singleShot(50, [&seenTitle] {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal) return;
            seenTitle = modal->windowTitle();
            test::saveScreenshot(modal, QStringLiteral("message_box"));
            QTest::keyClick(modal, Qt::Key_Return);
        });
        ShowInfo(QStringLiteral("저장되었습니다."));
        QCOMPARE(seenTitle, QStringLiteral("누벨라"));
    }
    void showNoticeComesBackByItselfAfterItsTime() {
        setMessageBackend(std::make_unique<DialogMessages>());
        QElapsedTimer clock;
        clock.start();
        ShowNotice(QStringLiteral("저장되었습니다."), 500, kNoticeColor);
        QVERIFY(clock.elapsed() >= 450);
    }
    void noticePanelTakesColourAndText() {
        FrmMsgbox notice(QStringLiteral("저장되었습니다."), 0, kNoticeColor);
        QCOMPARE(notice.pnlCaption->text(), QStringLiteral("저장되었습니다."));
        QCOMPARE(notice.pnlCaption->palette().color(QPalette::Window), QColor(192, 192, 255));
        notice.show();
        test::saveScreenshot(&notice, QStringLiteral("notice"));
    }
    void floatMsgWithZeroMillisNeverClosesByItself() {
        frmFloatMsg floating(QStringLiteral("처리중입니다"), 0, 65535);
        floating.show();
        QTest::qWait(700);
        QVERIFY(floating.isVisible());
        QVERIFY(!floating.Timer1->isActive());
    }
    void floatMsgWithMillisClosesByItself() {
        frmFloatMsg floating(QStringLiteral("처리중입니다"), 200, 65535);
        floating.show();
        QTRY_VERIFY_WITH_TIMEOUT(!floating.isVisible(), 3000);
    }
};

NB_TEST_MAIN(TestMessages)
#include "tst_messages.moc"
