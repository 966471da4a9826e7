#pragma once

#include <QDate>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "app/OperatorRoles.h"
#include "store/Clock.h"
#include "store/Store.h"

namespace orve::app {

// The installation's own settings, read from strspecif at start-up.
struct Installation {
    QString code;
    QString name;
    QString district;
    QString financialYearStart;  // "yyyymmdd"
    QString financialYearEnd;    // "yyyymmdd"
};

// The signed-in operator.
struct Operator {
    QString login;   // as typed at sign-in
    QString league;  // par_region
    QString mail;    // par_mail
};

// Everything a screen or a rule may know about where it runs and who runs it.
// One per program run, passed in; nothing of it lives in globals.
class Session {
  public:
    Session(QString programFolder, QString dataFolder, QString invoiceFolder,
            std::unique_ptr<store::Store> store, Installation installation, Clock clock);

    const QString& programFolder() const { return m_programFolder; }
    const QString& dataFolder() const { return m_dataFolder; }
    const QString& invoiceFolder() const { return m_invoiceFolder; }
    // orve.ini beside the path files: letterhead, bank, mail server, options.
    QString settingsPath() const;

    store::Store& store() const { return *m_store; }
    const Installation& installation() const { return m_installation; }

    bool signedIn() const { return m_signedIn; }
    const Operator& user() const { return m_user; }
    void setUser(const Operator& user);

    // The national level sees everything.
    bool isNational() const { return isNationalCode(m_user.league); }
    // A committee user's league value is the committee number.
    bool isCommitteeUser() const { return isCommitteeCode(m_user.login); }
    // Full rights belong to this one login, compared exactly.
    bool isAdministrator() const { return m_user.login == QStringLiteral("gestu"); }

    // What every sign-in makes sure of in the data (the pseudo-competitions,
    // say). The subsystem that owns the data adds its step when the program
    // wires itself together; sign-in runs them inside its transaction.
    using SignInStep = std::function<void(store::Store&, const QDate& today)>;
    void addSignInStep(SignInStep step) { m_signInSteps.push_back(std::move(step)); }
    void runSignInSteps();

    Clock& clock() { return m_clock; }
    QDate today() const { return m_clock.today(); }
    // The season the federation is working in: orve.ini [saison] courante
    // when set, else the season of today's date.
    int workingSeason() const;

    // The mail server's password typed by the operator: kept in memory for
    // this run of the program only, never written anywhere.
    const QString& mailPassword() const { return m_mailPassword; }
    void setMailPassword(const QString& password) { m_mailPassword = password; }

  private:
    QString m_programFolder;
    QString m_dataFolder;
    QString m_invoiceFolder;
    std::unique_ptr<store::Store> m_store;
    Installation m_installation;
    Clock m_clock;
    Operator m_user;
    bool m_signedIn = false;
    std::vector<SignInStep> m_signInSteps;
    QString m_mailPassword;
};

}  // namespace orve::app
