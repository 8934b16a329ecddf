#pragma once
// Colours are kept as the original's integers, blue * 65536 + green * 256 + red.

#include <QColor>

namespace nb {

inline QColor colorFromBgr(int value) {
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

} // namespace nb
