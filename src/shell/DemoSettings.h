#pragma once

#include <QString>

namespace orve::shell {

// The legal mentions a French installation prints under its totals, as the
// demo installation's orve.ini holds them (group [mentions]: tva, penalites,
// indemnite). `folder` is the installation's program folder.
void writeDemoMentions(const QString& folder);

}  // namespace orve::shell
