#pragma once
// The short date format that start-up forces to "yyyy-MM-dd". This platform has no machine-wide
// short date format, so the program keeps one of its own in a ShortDateStore; no routine formats
// by it (every date is written with kDateFormat), it only keeps the start-up step and its rule
// "leave an already right format alone" in place.

#include <QString>
#include <memory>

namespace nb {

// Where the short date format lives.
class ShortDateStore {
public:
    virtual ~ShortDateStore() = default;
    virtual QString read() const = 0;
    // True when the format was taken.
    virtual bool write(const QString& format) = 0;
};

// The store in force: by default the program's own, starting as the system locale's short format.
ShortDateStore& shortDateStore();
void setShortDateStore(std::unique_ptr<ShortDateStore> store);

// The format as it was before the program changed it.
QString& OldShortDate();

QString GetShortDate();
// Keeps the present format in OldShortDate, then writes the new one.
bool SetShortDate(const QString& format);
// Mode 0: remember the present format and make it "yyyy-MM-dd" unless it is already so.
// Mode 1: put the remembered format back. Other modes do nothing.
void ForceDateFormat(int mode);

} // namespace nb
