#pragma once
// The official form summed from the period's invoice lines read straight from a SQLite store:
// the lines are grouped in memory, each once, instead of sorted by the engine three times over
// (per trader, per receiver, per part), which is what most of the form's time went to.

#include "management/OfficialTotals.h"

#include <QString>
#include <QVariantList>

namespace nb {

class Database;

// The statements the form is summed from, each with its values.
struct FormLineReads {
    // Per invoice line of the period: CCode, TaxCode, its part (0 sent in time, 2 not),
    // TradeKum, VatKum.
    QString linesSql;
    QVariantList lineValues;
    // Per trader record: Code, Serial.
    QString tradersSql;
    // The records of one code: Serial, C_Name.
    QString recordSql;
};

// Whether the store's connection is SQLite's, so that the form can be summed this way.
bool canSumFormFromLines(Database& store);

// The totals block and the listed receivers from the one numbered first + 1, at most count of
// them (every one from there when count is negative), into form, by the same rules as the
// store's one statement. False when a read failed (its box shown).
bool sumFormFromLines(Database& store, const FormLineReads& reads, OfficialTotals& form, int first,
                      int count);

} // namespace nb
