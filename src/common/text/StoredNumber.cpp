#include "common/text/StoredNumber.h"

#include "common/Messages.h"

#include <cmath>
#include <limits>

namespace nb {

bool fitsColumn(double value, NumberColumn column) {
    if (!std::isfinite(value)) return false;
    switch (column) {
    case NumberColumn::Amount:
        return std::fabs(value) <= kMaxStoredAmount;
    case NumberColumn::Single:
        return std::fabs(value) <= double(std::numeric_limits<float>::max());
    case NumberColumn::Long:
        return value >= double(std::numeric_limits<qint32>::min()) &&
               value <= double(std::numeric_limits<qint32>::max());
    }
    return false;
}

void ShowOverflow(const QString& procedure, const QString& owner, ReportOwner kind) {
    if (kind == ReportOwner::Form)
        ShowFormFailureReport(6, QStringLiteral("Overflow"), procedure, owner);
    else
        ShowFailureReport(6, QStringLiteral("Overflow"), procedure, owner);
}

bool checkStoredNumber(double value, NumberColumn column, const QString& procedure, const QString& owner,
                       ReportOwner kind) {
    if (fitsColumn(value, column)) return true;
    ShowOverflow(procedure, owner, kind);
    return false;
}

} // namespace nb
