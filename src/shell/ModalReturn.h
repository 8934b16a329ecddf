#pragma once
// When a modal screen (a registration form, a list, a message box) closes, the window that
// opened it is the active one again and the box that had the focus has it again. Window
// managers hand the activation back on their own only some of the time (and not at all when
// another program's window was raised meanwhile); then the next keys went nowhere.

class QObject;

namespace nb {

// Puts the rule in force for every modal dialog of the application. `owner` ends it.
void installModalReturn(QObject* owner);

} // namespace nb
