#include "core/ScreenRegistry.h"

#include <QHash>

namespace nb {
namespace {
QHash<QString, ScreenEntry>& registry() {
    static QHash<QString, ScreenEntry> entries;
    return entries;
}
} // namespace

void registerChildScreen(const QString& menuControl, std::function<QWidget*()> create) {
    registry()[menuControl] = ScreenEntry{std::move(create), {}};
}

void registerMenuAction(const QString& menuControl, std::function<void(QWidget*)> run) {
    registry()[menuControl] = ScreenEntry{{}, std::move(run)};
}

const ScreenEntry* screenFor(const QString& menuControl) {
    auto it = registry().constFind(menuControl);
    return it == registry().constEnd() ? nullptr : &it.value();
}

void clearScreenRegistry() { registry().clear(); }

} // namespace nb
