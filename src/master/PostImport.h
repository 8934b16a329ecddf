#pragma once
// Loading a postcode book into the postcode store: a CSV file with a header row naming
// ZIPCODE, SIDO, GUGUN, DONG and BUNJI (other columns, such as SEQ, are passed over), the
// postcode with or without its hyphen, in UTF-8 or CP949, found out from the bytes. The
// table's rows are replaced in one transaction, with the progress form and a closing count.

#include <QString>
#include <QStringList>
#include <QVector>

class QWidget;

namespace nb {

// The file's text: UTF-8 (a byte order mark allowed) when the bytes are valid UTF-8,
// otherwise CP949.
QString DecodePostcodeBytes(const QByteArray& bytes);
// One CSV line split into fields; double quotes enclose a field and "" stands for one quote.
QStringList SplitCsvLine(const QString& line);

struct PostcodeBook {
    QVector<QStringList> rows; // ZIPCODE (six digits), SIDO, GUGUN, DONG, BUNJI
    int skipped = 0;           // lines whose postcode is not six digits
    QString error;             // why the file could not be read; empty when it could
};
PostcodeBook ReadPostcodeBook(const QString& path);

// Replaces the rows of Post in the postcode store (the file and table are made when
// missing), says how many rows came in, and answers that number, or -1 after a message.
int ImportPostcodeFile(const QString& path);
// The menu's flow: a file dialog, then the import.
void RunPostcodeImport(QWidget* parent);

inline const QString kPostImportTitle = QStringLiteral("우편번호 가져오기");

} // namespace nb
