#pragma once
// Today's date and the current time, as the program reads them. Tests set a fixed clock.

#include <QDate>
#include <QDateTime>
#include <functional>

namespace nb {

QDateTime now();
QDate today();
// Replaces the clock; an empty function puts the system clock back.
void setClock(std::function<QDateTime()> clock);

} // namespace nb
