#pragma once
// How the list screens turn typed text into conditions. Jet's "*" wildcards become LIKE
// patterns whose text is matched literally (a typed "%" or "_" is no wildcard), and the first
// character's code-page code picks the column searched, quirks included.

#include <QString>

namespace nb {

// The search screens drop "'", "\" and "]" from typed text before searching.
QString StripSearchText(const QString& text);

// Patterns for "LIKE ? ESCAPE '\'": a name that starts with the text, or holds it anywhere.
QString LikePrefix(const QString& text);
QString LikeContains(const QString& text);
// The clause that goes with them.
inline const QString kLikeEscape = QStringLiteral(" ESCAPE '\\'");
// A column holding the text anywhere, for a statement kept prepared and run again with other texts.
// On the files the pattern is bound as an expression rather than as a bare parameter: SQLite would
// otherwise look at a bare pattern when planning (one starting with the text could walk an index),
// so every new binding would throw the plan away and prepare the statement anew. A pattern that
// starts with "%" never walks an index, so nothing is lost. The server plans its own way and keeps
// the plain parameter.
inline QString LikeAnywhere(bool onServer) {
    return onServer ? QStringLiteral(" LIKE ?") + kLikeEscape
                    : QStringLiteral(" LIKE CAST(? AS TEXT)") + kLikeEscape;
}

// True for a code from 48 to 57.
bool IsDigitCode(int code);
// The supplier and trader lists treat codes 66-89 ("B"-"Y") and 98-121 ("b"-"y") apart from
// the other non-negative codes; "A", "Z", "a", "z" and signs fall with the digits' side.
bool IsOutsideLetterBands(int code);

// Which column and which kind of match the supplier list uses for a text.
enum class UserSearch { PhoneAnywhere, CompanyAnywhere, CompanyPrefix };
UserSearch UserSearchFor(const QString& text);

// The trader list searches telephone and address word for a text starting with a digit,
// name and address word otherwise.
bool TraderSearchByPhone(const QString& text);

// The product list also searches the code when the first character's code is not negative
// and below 66 or from 122 on.
bool ProductSearchesCode(const QString& text);

// The postcode search: a non-negative first code searches the postcode, a negative (Hangul)
// one the town.
bool PostSearchByZip(const QString& text);

} // namespace nb
