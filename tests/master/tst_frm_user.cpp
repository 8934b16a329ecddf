// The supplier screen driven by keys: Enter through the fields, the shaping on leaving, save,
// new, delete, previous/next, find with its list, the postcode search and the close question.
#include "MasterFixture.h"
#include "core/Settings.h"
#include "common/input/ImeMode.h"
#include "master/FrmUser.h"
#include "master/FrmUserList.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using namespace nb;
using namespace nb::test;

class TestFrmUser : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void loadShowsTheDefaultSupplierWithItsCheck() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "다라상사");
        SaveEnv("기본사업자", "222-22-22222");
        app().DefaultSerial = "222-22-22222";
        FrmUser form;
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("다라상사"));
        QVERIFY(form.ChkDefault()->isChecked());
        QVERIFY(form.state().HasUser);
        QCOMPARE(form.state().OldSerial, QStringLiteral("222-22-22222"));
    }
    void withoutADefaultTheFirstRowIsShownUnchecked() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("222-22-22222", "다라상사");
        FrmUser form;
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("222-22-22222"));
        QVERIFY(!form.ChkDefault()->isChecked());
    }
    void firstRunTypingThroughTheFieldsAndSavingAddsTheSupplier() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addPostRows({{"135080", "서울", "강남구", "역삼동", "1~100"}});
        FrmUser form;
        showActive(&form);
        QVERIFY(!form.state().HasUser);
        form.txtinput(0)->setFocus();
        for (const QString& value :
             {QStringLiteral("가나상사"), QStringLiteral("홍길동"), QStringLiteral("1234567890"),
              QStringLiteral("135080"), QStringLiteral("123-4"), QStringLiteral("02-123-4567"),
              QStringLiteral("02-123-4568"), QStringLiteral("도소매"), QStringLiteral("문구")}) {
            typeHere(value);
            keyHere(Qt::Key_Return);
        }
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("123-45-67890"));
        QCOMPARE(form.txtinput(3)->text(), QStringLiteral("135-080"));
        saveScreenshot(&form, "frm_user");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료를 저장하였습니다."));
        SupplierFields back;
        QVERIFY(ReadSupplier("123-45-67890", back));
        QCOMPARE(back[0], QStringLiteral("가나상사"));
        QCOMPARE(back[3], QStringLiteral("135-080"));
        QCOMPARE(back[4], QStringLiteral("서울 강남구 역삼동 123-4"));
        QCOMPARE(back[8], QStringLiteral("문구"));
    }
    void aSerialAlreadyHoldingAHyphenIsNotReformatted() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmUser form;
        showActive(&form);
        form.txtinput(2)->setFocus();
        typeHere("12-3456789");
        keyHere(Qt::Key_Return);
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("12-3456789"));
        form.txtinput(2)->setFocus();
        form.txtinput(2)->clear();
        typeHere("1234567890");
        keyHere(Qt::Key_Down);
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("123-45-67890"));
        QCOMPARE(focused(), form.txtinput(3));
    }
    void aSerialFailingItsCheckDigitIsWarnedAndStillMovesOn() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmUser form;
        showActive(&form);
        form.txtinput(2)->setFocus();
        typeHere("1234567891");  // passes the check digit
        keyHere(Qt::Key_Return);
        QVERIFY(msgs.records().empty());
        form.txtinput(2)->setFocus();
        form.txtinput(2)->clear();
        typeHere("1234567890");
        keyHere(Qt::Key_Return);
        QCOMPARE(focused(), form.txtinput(3));  // the operator goes on
        QCOMPARE(msgs.last().kind, QStringLiteral("float"));
        QVERIFY(!msgs.last().modal);
        QCOMPARE(msgs.last().text, QStringLiteral("사업자등록번호 123-45-67890의 검증번호가 맞지 않습니다.\r\n"
                                                  "번호를 다시 확인하십시오. (그대로 저장할 수 있습니다)"));
    }
    void theHangulKeyFlipsTheModeTheNextFieldOpensIn() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmUser form;
        showActive(&form);
        QVERIFY(form.hangulMode());
        form.txtinput(0)->setFocus();
        const auto hangulKey = [] {
            QTest::sendKeyEvent(QTest::Press, focused(), Qt::Key_Hangul, QString(), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, focused(), Qt::Key_Hangul, QString(), Qt::NoModifier);
        };
        hangulKey();
        QVERIFY(!form.hangulMode());
        keyHere(Qt::Key_Return);
        QVERIFY(!imeModeIsHangul(form.txtinput(1)));
        hangulKey();
        QVERIFY(form.hangulMode());
    }
    void upInTheFirstFieldGoesToQuitAndRightComesBack() {
        TestHome home;
        QVERIFY(openStores());
        script();
        FrmUser form;
        showActive(&form);
        form.txtinput(1)->setFocus();
        keyHere(Qt::Key_Up);
        QCOMPARE(focused(), form.txtinput(0));
        keyHere(Qt::Key_Up);
        QCOMPARE(focused(), form.btnQuit());
        keyHere(Qt::Key_Right);
        QCOMPARE(focused(), form.txtinput(0));
    }
    void saveWithoutASerialAsksForItAndFocusesIt() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmUser form;
        showActive(&form);
        form.txtinput(0)->setFocus();
        typeHere("가나");
        form.btnSave()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("사업자 번호는 필수입력사항 입니다."));
        QCOMPARE(focused(), form.txtinput(2));
    }
    void newThenAKnownSerialIsRefusedAsADuplicate() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        FrmUser form;
        showActive(&form);
        form.cmdNew()->click();
        QCOMPARE(form.txtinput(0)->text(), QString());
        QCOMPARE(focused(), form.txtinput(0));
        QVERIFY(form.state().IsNew);
        form.txtinput(2)->setText("111-11-11111");
        form.btnSave()->click();
        QCOMPARE(msgs.last().title, kAppTitle);
        QCOMPARE(
            msgs.last().text,
            QStringLiteral("이미 같은 사업자번호가 등록되어 있습니다.\r\n사업자번호는 중복될 수 없습니다."));
    }
    void clickingTheDefaultCheckMakesTheShownSupplierTheDefault() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        FrmUser form;
        showActive(&form);
        form.ChkDefault()->click();
        QCOMPARE(GetEnv("기본사업자"), QStringLiteral("111-11-11111"));
        QCOMPARE(app().DefaultSerial, QStringLiteral("111-11-11111"));
        form.ChkDefault()->click(); // unchecking does nothing
        QCOMPARE(GetEnv("기본사업자"), QStringLiteral("111-11-11111"));
    }
    void deleteAsksWithNoAsDefaultAndShowsTheNextSupplier() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "다라상사");
        SetDefaultSupplier("111-11-11111");
        FrmUser form;
        msgs.answer(AnsNo);
        form.cmdDelete()->click();
        QCOMPARE(count(stores().dbBasic, "User"), 2);
        QCOMPARE(msgs.last().title, QStringLiteral("사업자 삭제"));
        QCOMPARE(msgs.last().text, QStringLiteral("현재 사업자를 정말 삭제 하시겠습니까?\r\n"
                                                  "※사업자번호가 같은 사업자는 모두 삭제됩니다."));
        QCOMPARE(msgs.last().buttons, int(MbYesNo | MbQuestion | MbDefaultButton2));
        msgs.answer(AnsYes);
        form.cmdDelete()->click();
        QCOMPARE(count(stores().dbBasic, "User"), 1);
        QCOMPARE(GetEnv("기본사업자"), QString());
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("222-22-22222"));
    }
    void deletingTheLastSupplierLeavesTheFormEmpty() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        FrmUser form;
        msgs.answer(AnsYes);
        form.cmdDelete()->click();
        QCOMPARE(form.txtinput(0)->text(), QString());
        QCOMPARE(form.txtinput(2)->text(), QString());
    }
    void previousAndNextWalkTheSerials() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "다라상사");
        FrmUser form;
        form.CmdMove(1)->click();
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("다라상사"));
        form.CmdMove(1)->click();
        QCOMPARE(msgs.last().text, QStringLiteral("자료의 마지막입니다."));
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("다라상사"));
        form.CmdMove(0)->click();
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("가나상사"));
    }
    void findWithNoMatchSaysSoAndKeepsTheShownSupplier() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        FrmUser form;
        form.txtinput(0)->setText("마바");
        form.cmdFind()->click();
        QCOMPARE(msgs.last().text, QStringLiteral("등록된 유저가 없습니다."));
        QCOMPARE(msgs.last().buttons, int(MbInformation));
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("가나상사"));
    }
    void findWithOneMatchShowsItWithoutAList() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "다라상사");
        FrmUser form;
        form.txtinput(0)->setText("다라");
        form.cmdFind()->click();
        QCOMPARE(form.txtinput(2)->text(), QStringLiteral("222-22-22222"));
        QCOMPARE(form.txtinput(0)->text(), QStringLiteral("다라상사"));
    }
    void findWithSeveralMatchesOpensTheListAndEnterChooses() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사", "02-111-1111");
        addUser("222-22-22222", "가나물산", "02-222-2222");
        addUser("333-33-33333", "가나유통", "02-333-3333");
        FrmUser form;
        showActive(&form);
        form.txtinput(0)->setText("가나");
        bool seen = false;
        whenModalShows([&](QWidget* modal) {
            auto* list = qobject_cast<FrmUserList*>(modal);
            QVERIFY(list);
            seen = true;
            list->txtinput()->setFocus();
            list->txtinput()->clear();
            typeText(list->txtinput(), "가나유");
            pressKey(list->txtinput(), Qt::Key_Return); // finds the row
            QCOMPARE(list->activeText(5), QStringLiteral("333-33-33333"));
            list->grdList()->setFocus();
            QCOMPARE(list->hintPanel()->text(), QStringLiteral("사용자를 선택하세요.[Click or Enter]"));
            saveScreenshot(list, "frm_user_list");
            pressKey(list->grdList(), Qt::Key_Up);
            pressKey(list->grdList(), Qt::Key_Return);
        });
        form.cmdFind()->click();
        QVERIFY(seen);
        QCOMPARE(form.txtinput(2)->text(),
                 QStringLiteral("111-11-11111")); // rows by company: 가나물산, 가나상사, 가나유통
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void theListsEntrySearchSaysWhenNothingIsFound() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "가나물산");
        FrmUserList list;
        int result = 0;
        list.InitForm("", result);
        QCOMPARE(result, 2);
        showActive(&list);
        list.txtinput()->setFocus();
        typeText(list.txtinput(), "zz");
        pressKey(list.txtinput(), Qt::Key_Return);
        QCOMPARE(msgs.last().text, QStringLiteral("검색된 사용자가 없습니다."));
    }
    void closingTheListWithoutAChoiceBringsBackTheRememberedSupplier() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addUser("111-11-11111", "가나상사");
        addUser("222-22-22222", "가나물산");
        FrmUser form;
        showActive(&form);
        const QString shown = form.txtinput(2)->text();
        form.txtinput(0)->setText("가나");
        whenModalShows([](QWidget* modal) {
            pressKey(modal->focusWidget() ? modal->focusWidget() : modal, Qt::Key_Escape);
        });
        form.cmdFind()->click();
        QCOMPARE(form.txtinput(2)->text(), shown);
    }
    void escWithoutASupplierAsksAndNoKeepsTheForm() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        FrmUser form;
        showActive(&form);
        form.txtinput(0)->setFocus();
        msgs.answer(AnsNo);
        keyHere(Qt::Key_Escape);
        QVERIFY(form.isVisible());
        QCOMPARE(msgs.last().title, QStringLiteral("사업자 등록"));
        QCOMPARE(msgs.last().text, QStringLiteral("사업자가 등록되지 않았습니다.\r\n"
                                                  "사업자를 등록하지 않으면 프로그램이 종료됩니다.\r\n"
                                                  "종료하시겠습니까?"));
        QCOMPARE(msgs.last().buttons, int(MbYesNo | MbQuestion | MbDefaultButton2));
        msgs.answer(AnsYes);
        keyHere(Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }
    void escWithASupplierClosesWithoutAQuestion() {
        TestHome home;
        QVERIFY(openStores());
        auto& msgs = script();
        addUser("111-11-11111");
        FrmUser form;
        showActive(&form);
        form.txtinput(0)->setFocus();
        keyHere(Qt::Key_Escape);
        QVERIFY(!form.isVisible());
        QCOMPARE(msgs.boxes().size(), size_t(0));
    }
    void enterInThePostcodeFieldDeliversASingleHitWithoutAWindow() {
        TestHome home;
        QVERIFY(openStores());
        script();
        addPostRows(
            {{"135080", "서울", "강남구", "역삼동", "1~100"}, {"100011", "서울", "중구", "명동1가", ""}});
        FrmUser form;
        showActive(&form);
        form.txtinput(3)->setFocus();
        typeHere("13508");
        keyHere(Qt::Key_Return);
        QCOMPARE(form.txtinput(3)->text(), QStringLiteral("135-080"));
        QCOMPARE(form.txtinput(4)->text(), QStringLiteral("서울 강남구 역삼동 "));
        QCOMPARE(focused(), form.txtinput(4));
        QTest::qWait(20);
        QCOMPARE(form.txtinput(4)->cursorPosition(), form.txtinput(4)->text().size());
        QVERIFY(!form.txtinput(4)->hasSelectedText());
    }
};

NB_TEST_MAIN(TestFrmUser)
#include "tst_frm_user.moc"
