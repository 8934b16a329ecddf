#pragma once
// Which of a trader's numbers go to the sending program, by the number types ticked.

#include <QString>

namespace nb {

struct PhoneTypes {
    bool mobile = false;    // "핸드폰": HPhone when it starts with "01", else Phone when that does
    bool telephone = false; // "일반전화": Phone when not empty and not a mobile number
    bool fax = false;       // "팩스": Fax under the same two tests
};

// The numbers joined with ",", in the order mobile, telephone, fax.
QString pickNumbers(const QString& phone, const QString& fax, const QString& hphone, const PhoneTypes& types);

} // namespace nb
