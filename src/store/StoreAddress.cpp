#include "store/StoreAddress.h"

#include <QDir>
#include <QUrl>
#include <QUrlQuery>

#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::store {

bool StoreAddress::isServerAddress(const QString& text) {
    const QString t = text.trimmed();
    return t.startsWith(QStringLiteral("postgresql://"), Qt::CaseInsensitive) ||
           t.startsWith(QStringLiteral("postgres://"), Qt::CaseInsensitive);
}

StoreAddress StoreAddress::parse(const QString& text) {
    const QString t = text.trimmed();
    auto refuse = [&](const QString& why) {
        return Refusal(QStringLiteral("L'adresse de base « %1 » n'est pas valide : %2. Forme "
                                      "attendue : postgresql://UTILISATEUR@SERVEUR[:PORT]/BASE")
                           .arg(format::echoed(t), why));
    };
    if (!isServerAddress(t)) throw refuse(QStringLiteral("elle doit commencer par postgresql://"));
    // QUrl would take a socket folder's %2F for a path; split by hand.
    QString rest = t.section(QStringLiteral("://"), 1);
    QString query;
    if (const int q = rest.indexOf('?'); q >= 0) {
        query = rest.mid(q + 1);
        rest = rest.left(q);
    }
    const int slash = rest.indexOf('/');
    if (slash < 0) throw refuse(QStringLiteral("le nom de la base manque"));
    StoreAddress a;
    a.engine = Engine::Postgres;
    a.database = QUrl::fromPercentEncoding(rest.mid(slash + 1).toUtf8());
    QString authority = rest.left(slash);
    if (const int at = authority.lastIndexOf('@'); at >= 0) {
        // A password is never taken from here: it would end up in a shared file.
        const QString userPart = authority.left(at);
        if (userPart.contains(':'))
            throw refuse(
                QStringLiteral("le mot de passe ne s'écrit pas dans l'adresse (utilisez "
                               "le fichier .pgpass)"));
        a.user = QUrl::fromPercentEncoding(userPart.toUtf8());
        authority = authority.mid(at + 1);
    }
    if (const int colon = authority.lastIndexOf(':'); colon >= 0) {
        bool ok = false;
        a.port = authority.mid(colon + 1).toInt(&ok);
        if (!ok || a.port <= 0 || a.port > 65535) throw refuse(QStringLiteral("le port est faux"));
        authority = authority.left(colon);
    }
    a.host = QUrl::fromPercentEncoding(authority.toUtf8());
    const QUrlQuery options(query);
    if (options.hasQueryItem(QStringLiteral("host")))
        a.host = options.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    a.sslmode = options.queryItemValue(QStringLiteral("sslmode"), QUrl::FullyDecoded);
    if (a.database.isEmpty() || a.database.contains('/'))
        throw refuse(QStringLiteral("le nom de la base manque"));
    return a;
}

StoreAddress StoreAddress::ofFolder(const QString& folder) {
    StoreAddress a;
    a.folder = folder;
    return a;
}

QString StoreAddress::display() const {
    if (!shared()) return QDir::toNativeSeparators(folder);
    return (host.isEmpty() ? QStringLiteral("localhost") : host) + '/' + database;
}

QString StoreAddress::text() const {
    if (!shared()) return folder;
    QString out = QStringLiteral("postgresql://");
    if (!user.isEmpty()) out += QString::fromUtf8(QUrl::toPercentEncoding(user)) + '@';
    out += QString::fromUtf8(QUrl::toPercentEncoding(host));
    if (port != 5432) out += ':' + QString::number(port);
    out += '/' + QString::fromUtf8(QUrl::toPercentEncoding(database));
    if (!sslmode.isEmpty()) out += QStringLiteral("?sslmode=") + sslmode;
    return out;
}

}  // namespace orve::store
