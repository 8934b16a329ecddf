// Opening a pop-up form at the control that called it.
#include "TestSupport.h"
#include "common/input/FormPlacement.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace nb;

namespace {

// An anchor of 100 x 20 at (200, 300) on the screen, a form of 160 x 90.
const QRect kAnchor(200, 300, 100, 20);
const QSize kForm(160, 90);

struct AnchorForm {
    QWidget window;
    QLineEdit* anchor = new QLineEdit(&window);
    AnchorForm() {
        window.setGeometry(150, 120, 400, 200);
        anchor->setGeometry(40, 50, 120, 24);
        window.show();
    }
};

} // namespace

class TestFormPlacement : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void horizontalAlignment_data() {
        QTest::addColumn<int>("hAlign");
        QTest::addColumn<int>("left");
        QTest::newRow("0: the anchor's left edge") << 0 << 200;
        QTest::newRow("1: right edges meet") << 1 << 200 + 100 - 160;
        QTest::newRow("2: centred over the anchor") << 2 << 200 + (100 - 160) / 2;
    }
    void horizontalAlignment() {
        test::TestHome home;
        QFETCH(int, hAlign);
        QFETCH(int, left);
        QCOMPARE(placedFormPosition(kAnchor, kForm, hAlign, 3).x(), left);
    }
    void verticalAlignment_data() {
        QTest::addColumn<int>("vAlign");
        QTest::addColumn<int>("top");
        QTest::newRow("4: above the anchor") << 4 << 300 - 90;
        QTest::newRow("3 (the calendar's): below the anchor") << 3 << 300 + 20;
        QTest::newRow("0: below the anchor") << 0 << 300 + 20;
        QTest::newRow("5: below the anchor") << 5 << 300 + 20;
    }
    void verticalAlignment() {
        test::TestHome home;
        QFETCH(int, vAlign);
        QFETCH(int, top);
        QCOMPARE(placedFormPosition(kAnchor, kForm, 0, vAlign).y(), top);
    }
    void placeFormAtUsesTheAnchorsScreenPosition() {
        test::TestHome home;
        AnchorForm host;
        QDialog form;
        form.resize(160, 90);
        PlaceFormAt(&form, host.anchor, AlignRightEdges, PlaceAbove);
        const QRect anchor = screenRectOf(host.anchor);
        QCOMPARE(anchor.topLeft(), host.anchor->mapToGlobal(QPoint(0, 0)));
        QCOMPARE(form.pos(), QPoint(anchor.right() + 1 - 160, anchor.top() - 90));
    }
    void moveFormUnderPutsLeftEdgesTogetherJustBelow() {
        test::TestHome home;
        AnchorForm host;
        QDialog form;
        form.resize(300, 200);
        MoveFormUnder(&form, host.anchor);
        const QPoint anchorTopLeft = host.anchor->mapToGlobal(QPoint(0, 0));
        QCOMPARE(form.pos(), QPoint(anchorTopLeft.x(), anchorTopLeft.y() + host.anchor->height()));
        form.show();
        // The move places the window's frame.
        QCOMPARE(form.frameGeometry().topLeft(), QPoint(anchorTopLeft.x(), anchorTopLeft.y() + 24));
    }
    void aFormNotYetSizedIsPlacedWithItsNaturalSize() {
        test::TestHome home;
        AnchorForm host;
        QDialog form;
        auto* layout = new QVBoxLayout(&form);
        layout->addWidget(new QPushButton(QStringLiteral("선택"), &form));
        PlaceFormAt(&form, host.anchor, AlignLeftEdges, PlaceAbove);
        const QSize placedWith = form.size();
        QVERIFY(placedWith.height() > 0);
        form.show();
        QCOMPARE(form.size(), placedWith);
        const QPoint anchorTopLeft = host.anchor->mapToGlobal(QPoint(0, 0));
        QCOMPARE(form.frameGeometry().top() + placedWith.height(), anchorTopLeft.y());
    }
    void missingFormOrAnchorIsPassedOver() {
        test::TestHome home;
        QDialog form;
        form.move(10, 10);
        PlaceFormAt(&form, nullptr, 0, 3);
        MoveFormUnder(nullptr, &form);
        QCOMPARE(form.pos(), QPoint(10, 10));
    }
};

NB_TEST_MAIN(TestFormPlacement)
#include "tst_formplacement.moc"
