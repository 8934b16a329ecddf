#include "links/SmsNumbers.h"

#include <QStringList>

namespace nb {
namespace {
bool isMobile(const QString& number) {
    return number.startsWith(QStringLiteral("01"));
}
bool isLandline(const QString& number) {
    return !number.isEmpty() && !isMobile(number);
}
} // namespace

QString pickNumbers(const QString& phone, const QString& fax, const QString& hphone,
                    const PhoneTypes& types) {
    QStringList numbers;
    if (types.mobile) {
        if (isMobile(hphone))
            numbers << hphone;
        else if (isMobile(phone))
            numbers << phone; // a mobile number kept in the telephone field
    }
    if (types.telephone && isLandline(phone)) numbers << phone;
    if (types.fax && isLandline(fax)) numbers << fax;
    return numbers.join(u',');
}

} // namespace nb
