#pragma once
// Steps the road tests share: the program up, parties put in place, a failure's message.
#include "RoadDesk.h"

#include <QByteArray>

namespace road {

// What the desk shows, for a failure's message.
QByteArray seen(const RoadDesk& desk);
// The program up on the desk, its main window active.
bool programUp(RoadDesk& desk);
// A supplier (가나상사), a trader (다라상회, code 000001) and a product (볼트 M10 at 1,500 a 개)
// put straight into the basic store of the running program.
bool seedParties(RoadDesk& desk);
// The first value of a query's first row.
QString value(const RoadDesk& desk, const QString& storeName, const QString& sql);

} // namespace road
