// Each document's whole road in a real window, by keys only, from an empty folder: the parties
// registered on their forms, then a statement, an invoice, a quotation, the totals and the tax
// service's sheet, each checked in the stores and in what was printed.
#include "RoadDocumentSteps.h"

#include <QTest>

using namespace road;

class RoadDocuments : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theWholeRoadFromAnEmptyFolder() {
        RoadDesk desk;
        QVERIFY2(programUp(desk), seen(desk));
        for (auto step : {registerPartiesOnTheirForms, typeAStatement, issueAnInvoice, typeAQuotation,
                          printTheTotalsAndWriteTheSheet}) {
            step(desk);
            if (QTest::currentTestFailed()) return;
            QVERIFY2(desk.programRunning(), seen(desk));
        }
    }
};

QTEST_GUILESS_MAIN(RoadDocuments)
#include "road_documents.moc"
