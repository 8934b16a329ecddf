#pragma once
// The form of an e-mail address as the tax service's sheet and a mail server take it: one "@",
// a name of letters, digits and the usual signs (no blank, no dot at either end nor two in a
// row), and a domain of at least two dot-separated labels of letters, digits and hyphens, the
// last of letters only. Only the form is checked: whether the box exists is for the mail to say.

#include <QString>

namespace nb {

bool IsValidEmail(const QString& address);

// The message a screen shows for a bad address ("" when the address is empty or good).
QString emailRefusal(const QString& address);

} // namespace nb
