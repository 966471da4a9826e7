#pragma once

namespace orve::shell {

// Keeps Qt's own housekeeping warnings (connections removed while a query
// object lingers, window hints the offscreen platform cannot honour, runtime
// folders) off the operator's terminal: the operator reads ORVE's messages,
// in French, and nothing else. Real warnings and fatal errors still print.
void quietQtMessages();

}  // namespace orve::shell
