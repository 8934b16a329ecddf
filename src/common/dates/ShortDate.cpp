#include "common/dates/ShortDate.h"

#include "common/dates/DateText.h"
#include "core/Lifecycle.h"

#include <QLocale>

namespace nb {
namespace {

class ProgramShortDate : public ShortDateStore {
public:
    QString read() const override { return m_format; }
    bool write(const QString& format) override {
        m_format = format;
        return true;
    }

private:
    QString m_format = QLocale::system().dateFormat(QLocale::ShortFormat);
};

std::unique_ptr<ShortDateStore>& storeSlot() {
    static std::unique_ptr<ShortDateStore> store;
    return store;
}

void forgetShortDate() {
    storeSlot().reset();
    OldShortDate().clear();
}

} // namespace

ShortDateStore& shortDateStore() {
    static const bool hooked = (registerResetHook(forgetShortDate), true);
    Q_UNUSED(hooked);
    if (!storeSlot()) storeSlot() = std::make_unique<ProgramShortDate>();
    return *storeSlot();
}

void setShortDateStore(std::unique_ptr<ShortDateStore> store) {
    shortDateStore();
    storeSlot() = std::move(store);
}

QString& OldShortDate() {
    static QString old;
    return old;
}

QString GetShortDate() {
    return shortDateStore().read();
}

bool SetShortDate(const QString& format) {
    OldShortDate() = GetShortDate();
    return shortDateStore().write(format);
}

void ForceDateFormat(int mode) {
    if (mode == 0) {
        OldShortDate() = GetShortDate();
        // A refusal is passed over: the program formats its dates itself anyway.
        if (OldShortDate() != kDateFormat) SetShortDate(kDateFormat);
    } else if (mode == 1) {
        const QString old = OldShortDate(); // SetShortDate overwrites OldShortDate first
        SetShortDate(old);
    }
}

} // namespace nb
