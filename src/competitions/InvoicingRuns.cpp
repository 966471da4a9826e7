#include "competitions/InvoicingRuns.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSysInfo>
#include <QUuid>

#include "competitions/CompetitionRegister.h"
#include "store/Refusal.h"

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#endif

namespace orve::competitions {

namespace {

const QString kTable = QStringLiteral("strtraitement");

qint64 now() { return QDateTime::currentSecsSinceEpoch(); }

QString thisWorkstation() { return QSysInfo::machineHostName(); }

// A process of this workstation that no longer exists holds nothing, however
// recent its last sign of life.
bool goneFromThisWorkstation(const QString& workstation, qint64 pid) {
#ifdef Q_OS_UNIX
    if (pid <= 0 || workstation != thisWorkstation()) return false;
    return ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
#else
    Q_UNUSED(workstation);
    Q_UNUSED(pid);
    return false;
#endif
}

struct LiveRun {
    QString scope, token, workstation, login, started;
};

// The leases whose run is alive; the dead ones are left for the next taker
// to remove.
std::vector<LiveRun> liveRuns(const store::Store& store) {
    std::vector<LiveRun> live;
    for (const auto& r : store.select(
             QStringLiteral("SELECT tr_portee, tr_jeton, tr_poste, tr_processus, tr_login, "
                            "tr_debut FROM strtraitement WHERE tr_signe >= ?"),
             {now() - kRunStaleSeconds})) {
        const QString workstation = r.value(2).toString();
        if (goneFromThisWorkstation(workstation, r.value(3).toLongLong())) continue;
        live.push_back({r.value(0).toString().trimmed(), r.value(1).toString(), workstation,
                        r.value(4).toString().trimmed(), r.value(5).toString()});
    }
    return live;
}

QString heldText(const RunScope& scope, const LiveRun& run) {
    return QStringLiteral(
               "%1 est en cours de facturation par %2 (poste %3, depuis %4). Attendez la fin de "
               "ce traitement ; s'il a été interrompu, réessayez dans %5 minutes.")
        .arg(scope.label, run.login.isEmpty() ? QStringLiteral("un autre opérateur") : run.login,
             run.workstation, run.started, QString::number((kRunStaleSeconds + 59) / 60));
}

}  // namespace

RunScope RunScope::competition(const QString& index) {
    const QString key = index.trimmed();
    return {QStringLiteral("competition:") + key, QStringLiteral("La compétition ") + key,
            store::Condition(QStringLiteral("index_reference = ?"), {key})};
}

RunScope RunScope::batch(BatchKind kind, const QString& season) {
    const QString s = season.trimmed();
    const bool championship = kind == BatchKind::Championship;
    return {(championship ? QStringLiteral("cdc:") : QStringLiteral("prive:")) + s,
            (championship ? QStringLiteral("Le championnat national des clubs de la saison ")
                          : QStringLiteral("Les compétitions privées de la saison ")) +
                s,
            batchRowsCondition(kind, s)};
}

RunScope RunScope::fromKey(const QString& key) {
    const QString kind = key.section(QChar(':'), 0, 0);
    const QString value = key.section(QChar(':'), 1);
    if (kind == QStringLiteral("competition")) return competition(value);
    if (kind == QStringLiteral("cdc")) return batch(BatchKind::Championship, value);
    if (kind == QStringLiteral("prive")) return batch(BatchKind::Private, value);
    return {key, key, {}};
}

RunLease::RunLease(store::Store& store, const RunScope& scope, const QString& login)
    : m_store(store), m_scope(scope), m_token(QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    store::Transaction tx(store);
    // Taken under the numbering lock, so that two runs starting at once on
    // the same rows cannot both see the other absent.
    store.lockSeries(QStringLiteral("orve-runs"));
    for (const LiveRun& run : liveRuns(store))
        if (run.scope.compare(scope.key, Qt::CaseInsensitive) == 0)
            throw Refusal(heldText(scope, run));
    store.exec(QStringLiteral("DELETE FROM strtraitement WHERE tr_portee = ?"), {scope.key});
    m_lastSign = now();
    store.insert(
        kTable,
        {{"tr_portee", scope.key},
         {"tr_jeton", m_token},
         {"tr_poste", thisWorkstation()},
         {"tr_processus", QCoreApplication::applicationPid()},
         {"tr_login", login},
         {"tr_debut", QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm"))},
         {"tr_signe", m_lastSign}});
    tx.commit();
}

RunLease::~RunLease() {
    try {
        store::Transaction tx(m_store);
        m_store.exec(QStringLiteral("DELETE FROM strtraitement WHERE tr_jeton = ?"), {m_token});
        tx.commit();
    } catch (...) {
        // The store is gone (server stopped, disk full): the lease goes stale.
    }
}

void RunLease::keepAlive() {
    const qint64 t = now();
    if (t - m_lastSign < kRunHeartbeatSeconds) return;
    store::Transaction tx(m_store);
    m_store.update(kTable, {{"tr_signe", t}}, QStringLiteral("tr_jeton = ?"), {m_token});
    tx.commit();
    m_lastSign = t;
}

store::Condition rowsOutsideLiveRuns(const store::Store& store, const QString& own) {
    store::Condition outside;
    for (const LiveRun& run : liveRuns(store)) {
        if (!own.isEmpty() && run.token == own) continue;
        const RunScope scope = RunScope::fromKey(run.scope);
        if (scope.rows.isEmpty()) continue;
        outside &=
            store::Condition(QStringLiteral("NOT (%1)").arg(scope.rows.sql()), scope.rows.params());
    }
    return outside;
}

void requireNoLiveRun(const store::Store& store, const RunScope& scope) {
    for (const LiveRun& run : liveRuns(store))
        if (run.scope.compare(scope.key, Qt::CaseInsensitive) == 0)
            throw Refusal(heldText(scope, run));
}

int releaseCalculatedRows(store::Store& store) {
    store::Transaction tx(store);
    const store::Condition rows =
        store::Condition(QStringLiteral("c_facture = ?"), {kCalculatedState}) &&
        rowsOutsideLiveRuns(store);
    const int changed = store.update(QStringLiteral("strcompetition"), {{"c_facture", kOpenState}},
                                     rows.sql(), rows.params());
    tx.commit();
    return changed;
}

}  // namespace orve::competitions
