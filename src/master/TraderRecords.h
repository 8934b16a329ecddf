#pragma once
// What the trader screens decide without a window: the list's query, the last word of an
// address, the filling of the record object from the entry form, and the delete of a trader
// with its statement heads and invoices.

#include "master/SearchIndex.h"
#include "master/clsTrader.h"

#include <QString>
#include <array>

namespace nb {

// The trader list for a name ("'", "\" and "]" already removed) and a section: a name starting
// with a digit searches the telephone and the last address word, any other name the company
// name and the last address word, anywhere in them. A section above 1 lists every kind not
// marked deleted; an empty name lists the section (or everything above 1). Ordered by name.
SqlPart TraderListQuery(Database& db, const QString& name, int section);

// The characters behind the last blank, or the whole text when it has none.
QString LastAddressWord(const QString& address);

// The boxes txtinput(0..16) of the entry form, the person in charge, the mode and the code.
inline constexpr int kTraderFieldCount = 17;
inline constexpr int kTraderEmailField = 16;
struct TraderForm {
    std::array<QString, kTraderFieldCount> fields;
    QString charge;
    int mode = 0;
    QString code;
};
// Fills the object in the form's order. False (after the platform's failure text) when the
// VAT kind is not a number or does not fit a byte; the object is then left half filled and
// must not be saved.
bool FillTrader(const TraderForm& form, clsTrader& trader);

// Deletes the trader, its statements (heads in Master with their lines in Detail: a line left
// without its head would join the next statement given that number) and its invoices
// (NewAcount). Each store's deletes are one transaction; a failure before the first commit
// leaves everything as it was, and shows its box.
bool DeleteTraderWithBusiness(const QString& code);

} // namespace nb
