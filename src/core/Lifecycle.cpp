#include "core/Lifecycle.h"

#include "core/AppState.h"
#include "core/Clock.h"
#include "core/Settings.h"

#include <vector>

namespace nb {
namespace {
std::vector<std::function<void()>>& hooks() {
    static std::vector<std::function<void()>> list;
    return list;
}
} // namespace

void registerResetHook(std::function<void()> hook) { hooks().push_back(std::move(hook)); }

void resetProgramState() {
    for (auto& hook : hooks()) hook();
    resetSettings();
    resetAppState();
    setClock({});
}

} // namespace nb
