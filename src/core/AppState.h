#pragma once
// The shared configuration of the running program: paths of the store files, the default
// supplier and the decimal settings. Read at start (ReadSettings) and written only by the
// screens that own each value.

#include <QString>

namespace nb {

struct AppState {
    QString DbPath;          // folder of the store files ("db경로")
    QString RptPath;         // folder of the report files ("Rpt경로")
    QString DbBasicFile;     // dbBasic.db
    QString DbBillFile;      // dbBill.db
    QString DbTaxFile;       // dbTax.db
    QString DbInOutFile;     // InOutCash.db: its path is kept up to date, the file is never opened
    QString DbEstimateFile;  // dbEstimate.db
    QString DbPostFile;      // dbPost.db
    QString DefaultSerial;   // Serial of the default supplier, empty for none
    QString DefaultCompany;  // company of the default supplier, or the placeholder
    bool PasswordInUse = false;
    QString PasswordNo;
    int DecimalQty = 0;      // "chk소수점1"
    int DecimalPrice = 0;    // "chk소수점2"
    QString StartAppMonth;   // "StartApp" as found at start
};

AppState& app();
// Back to a blank state (tests, and a fresh start in the same process).
void resetAppState();

// The program's version, printed as plain integers in the title.
int versionMajor();
int versionMinor();
int versionRevision();

// The address of the maker's home page: used in the title, the home page entry, the convert
// box and the about screen.
inline const QString kMakerAddress = QStringLiteral("https://www.example.com");
// The application's title: the program's name, used where a box is given no title.
inline const QString kAppTitle = QStringLiteral("누벨라");

} // namespace nb
