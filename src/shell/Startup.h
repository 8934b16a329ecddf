#pragma once
// The start-up road: from the load of the main window to a working program.

#include <QDate>
#include <QString>
#include <optional>

namespace nb {

class DayBackup;

// Reads and repairs the paths and flags of the settings store into the shared state, then
// saves the repaired paths back (so a repair is remembered from the first run on).
void ReadSettings();

// The title bar: "하르문 거래명세표 & 세금계산서발행 Ver.1.0.0 - " + the maker's address.
QString mainWindowTitle();
// The first status panel: "YYYY/MM/DD" + one blank + the Korean weekday.
QString datePanelText(const QDate& date);

// The integer conversion the decimal settings go through: blanks around the number allowed,
// fractions rounded half to even, 16-bit range; nothing when the text is not a number.
std::optional<int> toInteger16(const QString& text);

// Reads "chk소수점1"/"chk소수점2" (default 0) into the shared state. Returns false when a value
// is not a number: the load stops there.
bool LoadDecimalSettings();

// The steps after the decimals: ReadSettings; the store files laid down where missing or
// empty and each checked on its own; the old statement store's move; the whole stores opened
// and the damaged ones named in one box; the upgrades. The splash is shown by the caller. The
// day's first backup is taken first, or, given `dayBackup`, left prepared there for the caller
// to take beside the splash.
void StartProgram(DayBackup* dayBackup = nullptr);
// Its two halves, for a caller that shows its splash between them: the settings read and the
// backups that must come before any store is opened (PrepareStart), then the stores laid down,
// checked, moved, opened and upgraded (OpenStoresAtStart).
void PrepareStart(DayBackup* dayBackup = nullptr);
void OpenStoresAtStart();

} // namespace nb
