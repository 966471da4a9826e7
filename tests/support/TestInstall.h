#pragma once

#include <QDate>
#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "app/Session.h"

namespace orve::test {

// A throw-away installation in its own temporary folder.
class TestInstall {
  public:
    enum class Kind { Empty, Demo };
    // On the suite's server run, the data go to a database of their own.
    explicit TestInstall(Kind kind = Kind::Demo, const QDate& today = QDate(2026, 11, 21));
    ~TestInstall();
    const QString& home() const { return m_home; }
    const QDate& today() const { return m_today; }
    // Starts the installation as the desktop program does.
    std::unique_ptr<app::Session> start() const;
    // Started and signed in as a demo user (without checking the password).
    std::unique_ptr<app::Session> startAs(const QString& login) const;

  private:
    QTemporaryDir m_dir;
    QString m_home;
    QString m_base;  // the server database, when there is one
    QDate m_today;
};

// The Qt application every test of windows or documents needs, made once per
// test program and never destroyed: at exit Qt Sql's own statics are gone.
// In French, as the program runs; offscreen, its one screen is a laptop's
// kScreenWidth x kScreenHeight.
constexpr int kScreenWidth = 1366;
constexpr int kScreenHeight = 768;
void application();

// Runs a program, feeding stdin; returns its exit code, fills out and err.
int runProgram(const QString& program, const QStringList& args, const QString& input, QString* out,
               QString* err, const QStringList& extraEnv = {});

}  // namespace orve::test
