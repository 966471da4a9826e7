#pragma once

#include <QString>
#include <memory>

#include "app/BatchCommands.h"
#include "app/Session.h"
#include "store/Clock.h"

// The top of the program: the one place that knows every subsystem and wires
// them together. No subsystem includes anything from here.
namespace orve::shell {

// Starts an installation as both programs do, with every subsystem's
// sign-in steps in place.
std::unique_ptr<app::Session> openSession(const QString& programFolder, const Clock& clock,
                                          const store::PasswordPrompt& askPassword = {});

// Every orve-batch command, each subsystem adding its own.
void registerBatchCommands(app::BatchRegistry& registry);

}  // namespace orve::shell
