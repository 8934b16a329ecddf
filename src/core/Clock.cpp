#include "core/Clock.h"

namespace nb {
namespace {
std::function<QDateTime()>& clockSlot() {
    static std::function<QDateTime()> clock;
    return clock;
}
} // namespace

QDateTime now() { return clockSlot() ? clockSlot()() : QDateTime::currentDateTime(); }
QDate today() { return now().date(); }
void setClock(std::function<QDateTime()> clock) { clockSlot() = std::move(clock); }

} // namespace nb
