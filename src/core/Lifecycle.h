#pragma once
// Parts of the program that keep open handles register how to let go of them, so that a new
// application folder (a test, a fresh start in the same process) starts clean.

#include <functional>

namespace nb {

void registerResetHook(std::function<void()> hook);
// Runs every registered hook, then forgets the settings store and the shared state.
void resetProgramState();

} // namespace nb
