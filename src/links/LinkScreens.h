#pragma once
// Registers the screens and actions of the links under their menu entries.

namespace nb {
void registerLinkScreens();
} // namespace nb
