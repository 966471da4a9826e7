#include "store/Settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTextStream>

#include "store/Seasons.h"
#include "store/TextCodec.h"

namespace orve::store {

namespace {

bool readIni(QIODevice& device, QSettings::SettingsMap& map) {
    QByteArray bytes = device.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
    // A file saved by a Windows editor has accented letters that are not UTF-8.
    const QString text = isValidUtf8(bytes) ? QString::fromUtf8(bytes) : fromWindows1252(bytes);
    QString group;
    for (QString line : text.split(u'\n')) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#')) continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.mid(1, line.size() - 2).trimmed().toLower();
            continue;
        }
        const qsizetype equal = line.indexOf(u'=');
        if (equal <= 0) continue;  // not a setting: nothing to read from it
        const QString key = line.left(equal).trimmed().toLower();
        if (key.isEmpty()) continue;
        map.insert(group.isEmpty() ? key : group + u'/' + key, line.mid(equal + 1).trimmed());
    }
    return true;
}

QString plainText(const QVariant& value) {
    QString text = value.typeId() == QMetaType::Bool
                       ? (value.toBool() ? QStringLiteral("true") : QStringLiteral("false"))
                       : value.toString();
    // One line per setting: a line break could only start a bogus setting.
    text.replace(u'\r', u' ').replace(u'\n', u' ');
    return text.trimmed();
}

bool writeIni(QIODevice& device, const QSettings::SettingsMap& map) {
    QByteArray out;
    QString group;
    bool first = true;
    // The map is sorted: keys without a group first, then group by group.
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const qsizetype slash = it.key().lastIndexOf(u'/');
        const QString keyGroup = slash < 0 ? QString() : it.key().left(slash);
        const QString key = slash < 0 ? it.key() : it.key().mid(slash + 1);
        if (first || keyGroup != group) {
            if (!keyGroup.isEmpty()) {
                if (!first) out += "\n";
                out += "[" + keyGroup.toUtf8() + "]\n";
            }
            group = keyGroup;
            first = false;
        }
        out += key.toUtf8() + "=" + plainText(it.value()).toUtf8() + "\n";
    }
    return device.write(out) == out.size();
}

QString integerProblem(const QString& value, int low, int high) {
    bool ok = false;
    const int n = value.toInt(&ok);
    if (!ok) return QStringLiteral("ce n'est pas un nombre entier.");
    if (n < low || n > high)
        return QStringLiteral("attendu un nombre de %1 à %2.").arg(low).arg(high);
    return {};
}

}  // namespace

QSettings::Format iniFormat() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("ini"), readIni, writeIni);
    return format;
}

Settings::Settings(const QString& path) : QSettings(path, iniFormat()) {}

QString Settings::text(const QString& key, const QString& fallback) const {
    return contains(key) ? value(key).toString().trimmed() : fallback;
}

QString settingName(const QString& key, const QString& value) {
    const qsizetype slash = key.indexOf(u'/');
    return QStringLiteral("orve.ini [%1] %2 = « %3 » : ")
        .arg(key.left(slash), key.mid(slash + 1), value);
}

std::optional<bool> settingFlag(const QString& value) {
    const QString v = value.trimmed().toLower();
    if (v == u"true" || v == u"oui" || v == u"1") return true;
    if (v == u"false" || v == u"non" || v == u"0") return false;
    return std::nullopt;
}

QString settingFile(const QString& iniPath, const QString& value) {
    if (value.isEmpty() || value.startsWith(u':')) return value;
    return QDir(QFileInfo(iniPath).absolutePath())
        .absoluteFilePath(QString(value).replace(u'\\', u'/'));
}

QStringList settingsProblems(const QString& path) {
    QStringList problems;
    if (!QFileInfo::exists(path)) return problems;
    QFile probe(path);
    if (!probe.open(QIODevice::ReadOnly))
        return {QStringLiteral("Le fichier %1 ne peut pas être lu : ses réglages sont ignorés.")
                    .arg(QDir::toNativeSeparators(path))};
    const Settings ini(path);
    const auto check = [&](const QString& key, const auto& problemOf) {
        const QString value = ini.text(key);
        if (value.isEmpty()) return;
        const QString problem = problemOf(value);
        if (!problem.isEmpty()) problems << settingName(key, value) + problem;
    };
    check(QStringLiteral("saison/courante"), [](const QString& v) {
        const QString p = integerProblem(v, kFirstSeason, 9999);
        return p.isEmpty() ? p : p + QStringLiteral(" La saison de la date du jour est prise.");
    });
    check(QStringLiteral("mail/port"),
          [](const QString& v) { return integerProblem(v, 1, 65535); });
    check(QStringLiteral("mail/delai"),
          [](const QString& v) { return integerProblem(v, 1, 24 * 3600); });
    check(QStringLiteral("mail/securite"), [](const QString& v) {
        const QString s = v.toLower();
        return s == u"starttls" || s == u"tls" || s == u"aucune"
                   ? QString()
                   : QStringLiteral("valeur inconnue (starttls, tls ou aucune).");
    });
    check(QStringLiteral("documents/ouvrir_pdf"), [](const QString& v) {
        return settingFlag(v) ? QString() : QStringLiteral("attendu true ou false (oui ou non).");
    });
    check(QStringLiteral("federation/logo"), [&](const QString& v) {
        const QString file = settingFile(path, v);
        if (!QFile::exists(file))
            return QStringLiteral("fichier introuvable (%1) ; le logo du programme est imprimé.")
                .arg(QDir::toNativeSeparators(file));
        if (!QImageReader(file).canRead())
            return QStringLiteral(
                "ce fichier n'est pas une image lisible ; le logo du programme "
                "est imprimé.");
        return QString();
    });
    return problems;
}

}  // namespace orve::store
