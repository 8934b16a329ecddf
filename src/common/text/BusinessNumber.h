#pragma once
// The check digit of a business registration number (사업자등록번호). The program refuses no
// number for it (a shop may need to type one as it stands on a paper it received); screens warn,
// and the electronic invoice sheet leaves out an invoice whose numbers fail.

#include <QString>

namespace nb {

// The digits of the text, hyphens and blanks dropped ("123-45-67891" -> "1234567891").
QString businessNumberDigits(const QString& text);

// True when the text holds exactly ten digits (hyphens and blanks aside) whose last digit is
// the check digit of the first nine: weights 1,3,7,1,3,7,1,3,5, plus the tens digit of the
// ninth digit times 5, the tenth digit making the sum a multiple of ten.
bool IsValidBusinessNumber(const QString& text);

// The warning a screen shows when a typed number fails the check.
QString businessNumberWarning(const QString& text);

// What the supplier and trader screens do when their number box is left: a floating notice
// that does not stop the operator, shown when the text is not empty and fails the check. A
// trader may be a person, so there a 13-digit resident number passes without a word. Answers
// whether it warned.
bool WarnOnBadBusinessNumber(const QString& text, bool residentNumberAllowed);

} // namespace nb
