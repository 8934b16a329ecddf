#pragma once
// A decade of a busy shop as the old Jet files, made from the shared current set: its statement
// and invoice tables copied 31 and 20 times over with their keys renumbered (62,000 statements,
// 508,710 lines, 20,000 invoices); the other files as they are. Throws when a file cannot be
// made.
#include "JetGrow.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>

namespace nb::bench {

inline constexpr int kStatementCopies = 31; // 2,000 statements a copy
inline constexpr int kInvoiceCopies = 20;   // 1,000 invoices a copy

inline QString sharedJetSet(const QString& set) {
    return test::sharedDataDir() + QStringLiteral("/legacy-jet/") + set;
}

// Statement n of copy k is n + 3,000 k, which leaves the numbers just above 2,000 to the lines
// without a head of the first copy; such a line of copy k goes to 100,000 + 1,000 k + its
// distance above 2,000, so it stays without one. Invoice n is n + 1,000 k.
inline qint64 statementNumber(qint64 n, int copy) {
    return n <= 2000 ? n + 3000 * copy : 100000 + 1000 * copy + (n - 2000);
}

inline void makeDecadeJetSet(const QString& folder) {
    const QDir from(sharedJetSet(QStringLiteral("current")));
    for (const QString& name : from.entryList({QStringLiteral("*.mdb")}, QDir::Files)) {
        QFile::copy(from.filePath(name), folder + u'/' + name);
        QFile(folder + u'/' + name).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    JetGrower bill(folder + QStringLiteral("/dbBill.mdb"));
    bill.grow(QStringLiteral("Master"), QStringLiteral("BillNo"), kStatementCopies - 1, statementNumber);
    bill.grow(QStringLiteral("Detail"), QStringLiteral("BillNo"), kStatementCopies - 1, statementNumber);
    bill.save();
    JetGrower tax(folder + QStringLiteral("/dbTax.mdb"));
    tax.grow(QStringLiteral("NewAcount"), QStringLiteral("TaxCode"), kInvoiceCopies - 1,
             [](qint64 n, int copy) { return n + 1000 * copy; });
    tax.save();
}

} // namespace nb::bench
