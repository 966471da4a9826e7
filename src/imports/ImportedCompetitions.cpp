#include "imports/ImportedCompetitions.h"

#include "imports/ImportReport.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::imports {

namespace {

constexpr int kLargestNumber = 99999;

const QStringList kColumns{"c_index",
                           "index_reference",
                           "c_saison",
                           "c_type",
                           "c_intitule",
                           "c_nature",
                           "c_codification",
                           "c_cod1",
                           "c_cod2",
                           "c_cod3",
                           "c_cod4",
                           "c_cod5",
                           "c_numero",
                           "c_nb_lignes",
                           "c_date_finale",
                           "c_tri_finale",
                           "c_formule",
                           "c_lr",
                           "c_dept",
                           "c_num_bowling",
                           "c_organisateur",
                           "c_nom_organisateur",
                           "c_nom_organ_suite",
                           "c_inscription",
                           "c_caution",
                           "c_arbitre",
                           "c_nb_joueur_prevu",
                           "c_nb_joueur_reel",
                           "c_nb_equipe",
                           "c_nb_equipe_eliminatoire",
                           "c_nb_equipe_finale",
                           "c_ligne_eliminatoire",
                           "c_ligne_finale",
                           "c_phase",
                           "c_date_enreg",
                           "c_date_modif",
                           "c_facture",
                           "c_num_facture",
                           "c_date_facture",
                           "c_tri_facture",
                           "c_edt",
                           "c_edt_fact",
                           "c_nat_fact",
                           "c_fact_ligne",
                           "c_fact_engagement",
                           "c_fact_ir",
                           "c_fact_multi",
                           "c_envoi_mail",
                           "c_add_tiers",
                           "c_transfert"};

}  // namespace

void setFinalDate(ImportedCompetition& c, const QDate& day) {
    const auto two = [](int n) {
        const QChar digits[2] = {QChar(char16_t(u'0' + n / 10)), QChar(char16_t(u'0' + n % 10))};
        return QString(digits, 2);
    };
    const QString year = QString::number(day.year());
    const QString month = two(day.month());
    const QString dayText = two(day.day());
    c.finalDate = dayText + '/' + month + '/' + year;
    c.finalSortKey = year + month + dayText;
}

QString indexPrefix(const QString& season, const QString& kind) { return season.right(1) + kind; }

CompetitionWriter::CompetitionWriter(store::Store& store)
    : m_store(store),
      m_insert(
          store::PreparedStatement::insertInto(store, QStringLiteral("strcompetition"), kColumns)),
      // Columns the import does not take from the file: the register's defaults.
      m_values{QVariant(),
               kMasterReference,
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QVariant(),
               QString(),
               0,
               QVariant(),
               QVariant(),
               QStringLiteral("00"),
               QString(),
               QStringLiteral("00"),
               QStringLiteral("000"),
               QVariant(),
               QVariant(),
               QString(),
               0,
               0,
               QStringLiteral("NC"),
               0,
               0,
               0,
               QVariant(),
               QVariant(),
               0,
               0,
               QString(),
               QVariant(),
               QVariant(),
               kNotInvoiced,
               QString(),
               QString(),
               QString(),
               QString(),
               QStringLiteral("NON"),
               QStringLiteral("C"),
               QStringLiteral("N"),
               QStringLiteral("N"),
               QStringLiteral("N"),
               QStringLiteral("N"),
               QStringLiteral("N"),
               QStringLiteral("N"),
               QString()} {
    Q_ASSERT(m_values.size() == static_cast<size_t>(kColumns.size()));
}

int CompetitionWriter::nextNumber(const QString& prefix) {
    auto it = m_next.find(prefix);
    if (it == m_next.end()) {
        // Two workstations importing at once must not take the same keys.
        m_store.lockSeries(QStringLiteral("c_index ") + prefix);
        // Keys of this prefix only: a pseudo-competition or another kind's
        // key above it says nothing of this numbering.
        const QVariant highest =
            m_store.scalar(QStringLiteral("SELECT max(CAST(substr(c_index, 4, 5) AS INTEGER)) FROM "
                                          "strcompetition WHERE c_index >= ? AND c_index <= ?"),
                           {prefix + QStringLiteral("00000"), prefix + QStringLiteral("99999")});
        it = m_next.emplace(prefix, highest.isNull() ? 1 : highest.toInt() + 1).first;
    }
    if (it->second > kLargestNumber)
        throw Refusal(QStringLiteral("Les numéros des compétitions %1 sont épuisés (%1%2) : rien "
                                     "n'a été enregistré.")
                          .arg(prefix)
                          .arg(kLargestNumber));
    return it->second++;
}

QString CompetitionWriter::add(const QString& prefix, const ImportedCompetition& c) {
    const QString index = prefix + padded(nextNumber(prefix), 5);
    QVariant* v = m_values.data();
    v[0] = index;
    v[2] = c.season;
    v[3] = c.type;
    v[4] = c.title;
    v[5] = c.nature;
    v[6] = c.codification;
    v[7] = c.cod1;
    v[8] = c.cod2;
    v[9] = c.cod3;
    v[10] = c.cod4;
    v[11] = c.cod5;
    v[14] = c.finalDate;
    v[15] = c.finalSortKey;
    v[20] = c.organiserKind;
    v[21] = c.organiserName;
    v[29] = c.fixedPartCents;
    v[30] = c.players;
    v[34] = c.registered;
    v[35] = c.registered;
    m_insert.exec(m_values);
    return index;
}

}  // namespace orve::imports
