#include "core/AppState.h"

namespace nb {

AppState& app() {
    static AppState state;
    return state;
}

void resetAppState() { app() = AppState{}; }

int versionMajor() { return NUBELLA_VERSION_MAJOR; }
int versionMinor() { return NUBELLA_VERSION_MINOR; }
int versionRevision() { return NUBELLA_VERSION_PATCH; }

} // namespace nb
