// An engine's error as the operator reads it: the file or server, the table
// and the operation it concerns, and its cause in French.
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>

#include "store/FileWriting.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "store/Store.h"
#include "store/StoreInternals.h"

namespace orve::store {

using namespace internal;

QString internal::operationOf(const QString& sql) {
    const QString verb = sql.trimmed().section(' ', 0, 0).toLower();
    if (verb == QStringLiteral("select")) return QStringLiteral("lecture");
    if (verb == QStringLiteral("insert")) return QStringLiteral("ajout");
    if (verb == QStringLiteral("update")) return QStringLiteral("modification");
    if (verb == QStringLiteral("delete")) return QStringLiteral("suppression");
    if (verb == QStringLiteral("begin") || verb == QStringLiteral("savepoint"))
        return QStringLiteral("début de l'opération");
    if (verb == QStringLiteral("commit") || verb == QStringLiteral("release"))
        return QStringLiteral("validation de l'opération");
    if (verb == QStringLiteral("rollback")) return QStringLiteral("annulation de l'opération");
    return QStringLiteral("opération");
}

namespace {

// The first table a statement names, with its schema when it has one.
QString tableOf(const QString& sql) {
    static const QRegularExpression tableRe(
        QStringLiteral("\\b(?:from|into|update|table|join)\\s+([A-Za-z_][A-Za-z0-9_.]*)"),
        QRegularExpression::CaseInsensitiveOption);
    const auto m = tableRe.match(sql);
    return m.hasMatch() ? m.captured(1) : QString();
}

}  // namespace

void internal::failIn(const QString& path, const QString& sql, const QSqlError& error) {
    throw StoreError(QStringLiteral("Erreur de la base de données %1 (%2) : %3")
                         .arg(QDir::toNativeSeparators(path), operationOf(sql),
                              describeEngineError(error, false, QFileInfo(path).absolutePath())));
}

void Store::fail(const QString& sql, const QSqlError& error) const {
    if (postgres() && (lostConnectionText(error.text()) || connectionLost())) {
        // The server has rolled back whatever was in hand; the next action
        // opens a new connection.
        m_lost = true;
        // Lost while the server was committing, the operation may or may not
        // have been kept: say so rather than promise either.
        if (sql.trimmed().compare(QStringLiteral("COMMIT"), Qt::CaseInsensitive) == 0)
            throw StoreError(QStringLiteral("La connexion au serveur de la base partagée %1 a été "
                                            "perdue pendant l'enregistrement : vérifiez si "
                                            "l'opération a été enregistrée avant de la refaire.")
                                 .arg(m_address.display()));
        // The server's own English words ("terminating connection …") are
        // for its log, not for the operator.
        throw StoreError(QStringLiteral("La connexion au serveur de la base partagée %1 est "
                                        "perdue : l'écriture en cours est annulée (ce qui avait "
                                        "été enregistré avant elle le reste). Réessayez dans un "
                                        "instant : ORVE se reconnectera.")
                             .arg(m_address.display()));
    }
    const QString table = tableOf(sql);
    QString where;
    if (!table.isEmpty()) {
        // "tri.strcompetition" lives in the scratch file, "strcompetition" in jkv.
        const QString schema = table.contains('.') ? table.section('.', 0, 0).toLower() : QString();
        const QString bare = table.section('.', -1).toLower();
        std::optional<File> file;
        for (File f : allFiles())
            if (schemaName(f) == schema || (postgres() && serverSchema(f) == schema)) file = f;
        if (!file) {
            const auto it = m_tableFiles.find(bare);
            if (it != m_tableFiles.end()) file = it->second;
        }
        const QString store =
            !file ? QStringLiteral("des données")
            : postgres()
                ? QStringLiteral("partagée %1 (%2)").arg(m_address.display(), serverSchema(*file))
                : fileName(*file);
        where = QStringLiteral("%1, table %2").arg(store, bare);
    } else if (postgres()) {
        where = QStringLiteral("partagée %1").arg(m_address.display());
    } else {
        // BEGIN, COMMIT and the like concern the whole installation.
        where = QStringLiteral("du dossier %1").arg(QDir::toNativeSeparators(m_folder));
    }
    throw StoreError(
        QStringLiteral("Erreur de la base de données %1 (%2) : %3")
            .arg(where, operationOf(sql), describeEngineError(error, postgres(), m_folder)),
        heldElsewhere(error, postgres()));
}

bool heldElsewhere(const QSqlError& error, bool server) {
    const QString code = error.nativeErrorCode();
    if (server)
        return code == QStringLiteral("40P01") || code == QStringLiteral("55P03") ||
               code == QStringLiteral("40001");
    const int primary = code.toInt() & 0xff;
    return primary == 5 || primary == 6;  // SQLITE_BUSY, SQLITE_LOCKED
}

QString describeEngineError(const QSqlError& error, bool server, const QString& folder) {
    QString cause;
    if (server) {
        const QString state = error.nativeErrorCode();
        if (heldElsewhere(error, true))
            cause = QStringLiteral(
                "la base est utilisée par un autre poste (réessayez dans un instant)");
        else if (state == QStringLiteral("53100"))
            cause = QStringLiteral("disque plein sur le serveur");
        else if (state == QStringLiteral("25006"))
            cause = QStringLiteral("la base est en lecture seule");
        else if (state == QStringLiteral("42501") || state == QStringLiteral("28P01") ||
                 state == QStringLiteral("28000"))
            cause = QStringLiteral("accès refusé par le serveur (utilisateur ou mot de passe)");
        else if (state == QStringLiteral("3D000"))
            cause = QStringLiteral("cette base n'existe pas sur le serveur");
    } else {
        // SQLite's extended codes keep the primary code in their low byte.
        switch (error.nativeErrorCode().toInt() & 0xff) {
            case 5:  // SQLITE_BUSY
            case 6:  // SQLITE_LOCKED
                cause = QStringLiteral(
                    "la base est utilisée par un autre poste (réessayez dans un instant)");
                break;
            case 13:
                cause = QStringLiteral("disque plein");
                break;  // SQLITE_FULL
            case 26:    // SQLITE_NOTADB
            case 11:    // SQLITE_CORRUPT
                cause = QStringLiteral("ce fichier n'est pas une base ORVE ou il est endommagé");
                break;
            case 8:
                cause = QStringLiteral("le fichier est en lecture seule");
                break;
            case 14:
                cause = QStringLiteral("le fichier ne peut pas être ouvert");
                break;
            case 10:  // SQLITE_IOERR: a write refused near the end of the room
                cause = !folder.isEmpty() && diskNearlyFull(folder)
                            ? QStringLiteral("disque plein")
                            : QStringLiteral("erreur de lecture ou d'écriture sur le disque");
                break;
            default:
                break;
        }
    }
    const QString raw = format::echoed(error.text().trimmed());
    if (cause.isEmpty()) return raw;
    return raw.isEmpty() ? cause : cause + QStringLiteral(" [") + raw + QStringLiteral("]");
}

}  // namespace orve::store
