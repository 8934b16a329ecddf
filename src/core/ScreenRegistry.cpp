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

void clearScreenRegistry() {
    registry().clear();
}

namespace {
std::function<QWidget*(const QString&)>& opener() {
    static std::function<QWidget*(const QString&)> installed;
    return installed;
}
} // namespace

QWidget* openScreen(const QString& menuControl) {
    return opener() ? opener()(menuControl) : nullptr;
}

void setScreenOpener(std::function<QWidget*(const QString& menuControl)> open) {
    opener() = std::move(open);
}

namespace {
std::function<QWidget*(const QString&, bool)>& loader() {
    static std::function<QWidget*(const QString&, bool)> installed;
    return installed;
}
} // namespace

QWidget* loadScreen(const QString& menuControl, bool afresh) {
    return loader() ? loader()(menuControl, afresh) : nullptr;
}

void setScreenLoader(std::function<QWidget*(const QString& menuControl, bool afresh)> load) {
    loader() = std::move(load);
}

} // namespace nb
