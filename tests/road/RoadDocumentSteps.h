#pragma once
// The documents' roads, step by step, for a program up on a desk with the parties in place
// (registered by the first step, or put in by seedParties). Each step uses QtTest's checks;
// after a step, QTest::currentTestFailed() tells whether to go on.
#include "RoadSteps.h"

namespace road {

// 가나상사 (supplier), 다라상회 (trader 000001, 220-81-34573) and 볼트 M10 at 1,500 registered on
// their forms by keys.
void registerPartiesOnTheirForms(RoadDesk& desk);
// Statement 000001: 볼트(M10) × 3 for 다라상회.
void typeAStatement(RoadDesk& desk);
// Invoice 100000: 볼트(M10) × 3 for 다라상회, issued, stored and printed.
void issueAnInvoice(RoadDesk& desk);
// A quotation for 다라상회 with one line 볼트 M10 × 3 at 1,500.
void typeAQuotation(RoadDesk& desk);
// The period's totals printed and the tax service's sheet written (needs the invoice).
void printTheTotalsAndWriteTheSheet(RoadDesk& desk);

} // namespace road
