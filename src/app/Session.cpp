#include "app/Session.h"

#include <QDir>

#include "store/Seasons.h"
#include "store/Settings.h"

namespace orve::app {

Session::Session(QString programFolder, QString dataFolder, QString invoiceFolder,
                 std::unique_ptr<store::Store> store, Installation installation, Clock clock)
    : m_programFolder(std::move(programFolder)),
      m_dataFolder(std::move(dataFolder)),
      m_invoiceFolder(std::move(invoiceFolder)),
      m_store(std::move(store)),
      m_installation(std::move(installation)),
      m_clock(clock) {}

QString Session::settingsPath() const { return QDir(m_programFolder).filePath("orve.ini"); }

int Session::workingSeason() const {
    const store::Settings ini(settingsPath());
    bool ok = false;
    const int configured = ini.text(QStringLiteral("saison/courante")).toInt(&ok);
    if (ok && configured >= store::kFirstSeason && configured < 10000) return configured;
    return store::seasonOf(today());
}

void Session::setUser(const Operator& user) {
    m_user = user;
    m_signedIn = true;
}

void Session::runSignInSteps() {
    for (const auto& step : m_signInSteps) step(*m_store, today());
}

}  // namespace orve::app
