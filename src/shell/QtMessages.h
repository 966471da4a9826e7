#pragma once

namespace orve::shell {

// Keeps Qt's and the database client's own English warnings off the
// operator's terminal: the operator reads ORVE's messages, in French, and
// nothing else. ORVE_DEBUG=1 shows them for support; fatal errors print.
void quietQtMessages();

}  // namespace orve::shell
