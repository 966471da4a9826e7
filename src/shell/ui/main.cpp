#include <QDir>
#include <QFile>
#include <QTextStream>
#include <cstdio>
#include <memory>
#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#endif

#include "app/Startup.h"
#include "app/ui/FrenchDesktop.h"
#include "app/ui/ORVE_menu.h"
#include "app/ui/OrveApplication.h"
#include "app/ui/QtDialogs.h"
#if defined(ORVE_WITH_SCENARIOS)
#include "app/ui/ScenarioRunner.h"
#endif
#include "app/ui/ScreenCatalog.h"
#include "shell/Composition.h"
#include "shell/QtMessages.h"
#include "shell/ui/Screens.h"
#include "store/Refusal.h"
#include "store/Settings.h"

namespace {

QString optionValue(int argc, char** argv, const char* name) {
    for (int i = 1; i + 1 < argc; ++i)
        if (qstrcmp(argv[i], name) == 0) return QString::fromLocal8Bit(argv[i + 1]);
    return {};
}

// Qt's own complaint about a missing display is cryptic; say it in one line.
bool displayMissing() {
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    return qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
           qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return false;
#endif
}

}  // namespace

int main(int argc, char** argv) {
#if defined(Q_OS_UNIX)
    // Data files, backups and documents hold addresses and amounts: owner only.
    ::umask(077);
#endif
    using namespace orve::app;
    const QString scenario = optionValue(argc, argv, "--scenario");
    const QString home = optionValue(argc, argv, "--home");
#if !defined(ORVE_WITH_SCENARIOS)
    // A release build leaves the test driver out; say so rather than open
    // the desktop as if the option had not been given.
    if (!scenario.isEmpty()) {
        std::fprintf(stderr,
                     "Les scénarios ne sont pas disponibles dans cette version d'ORVE "
                     "(construite sans ORVE_SCENARIOS).\n");
        return 1;
    }
#endif
    if (!scenario.isEmpty()) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (displayMissing()) {
        std::fprintf(stderr,
                     "ORVE a besoin d'un écran : aucun affichage graphique n'est disponible "
                     "(DISPLAY est vide) ; lancez-le sous Xvfb avec « xvfb-run -a orve --home "
                     "DOSSIER ».\n");
        return 1;
    }
    orve::shell::quietQtMessages();
    OrveApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("ORVE"));
    if (!installFrench(app) && scenario.isEmpty())
        std::fprintf(stderr,
                     "Les traductions françaises de Qt sont introuvables dans %s : les "
                     "fenêtres de choix de fichier resteront en anglais (paquet "
                     "qt6-translations-l10n).\n",
                     qPrintable(QDir::toNativeSeparators(qtTranslationsFolder())));
    ScreenCatalog catalog;
    orve::shell::registerScreens(catalog);
    const QString programFolder =
        resolveProgramFolder(home, QCoreApplication::applicationDirPath());
    const orve::Clock clock = orve::Clock::fromEnvironment();

#if defined(ORVE_WITH_SCENARIOS)
    if (!scenario.isEmpty()) {
        ScriptedDialogs dialogs;
        app.setDialogs(&dialogs);
        QFile file(scenario);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            std::fprintf(stderr, "cannot read scenario %s\n", qPrintable(scenario));
            return 1;
        }
        const QString script = QString::fromUtf8(file.readAll());
        std::unique_ptr<Session> session;
        std::unique_ptr<ORVE_menu> menu;
        try {
            session = orve::shell::openSession(programFolder, clock);
            menu = std::make_unique<ORVE_menu>(*session, dialogs, catalog);
            menu->show();
        } catch (const std::exception& e) {
            dialogs.fail(orve::describeError(e));
        }
        ScenarioRunner runner(dialogs, session.get());
        const QString failure = runner.run(script);
        menu.reset();
        if (!failure.isEmpty()) {
            std::fprintf(stderr, "scenario %s failed at %s\n", qPrintable(scenario),
                         qPrintable(failure));
            return 1;
        }
        return 0;
    }
#endif

    QtDialogs dialogs;
    app.setDialogs(&dialogs);
    std::unique_ptr<Session> session;
    try {
        session = orve::shell::openSession(programFolder, clock, [&](const QString& question) {
            return dialogs.askPassword(question);
        });
    } catch (const std::exception& e) {
        dialogs.fail(orve::describeError(e));
        return 1;
    }
    ORVE_menu menu(*session, dialogs, catalog);
    menu.show();
    // A setting of orve.ini that cannot be used is named once, at start.
    if (const QStringList problems = orve::store::settingsProblems(session->settingsPath());
        !problems.isEmpty())
        dialogs.warn(problems.join(QStringLiteral("\n")));
    return app.exec();
}
