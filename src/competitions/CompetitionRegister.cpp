#include "competitions/CompetitionRegister.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include "invoicing/RecordStates.h"
#include "reference/ReferenceCodes.h"
#include "store/Clock.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::competitions {

using store::Fields;
using store::Store;

namespace {

// Keys of competitions made here and of the rows under them are numbered
// under one lock, so two workstations never give the same key twice.
const QString kKeySeries = QStringLiteral("strcompetition.c_index");

// The longest c_nom_organisateur kept: code, " - " and the name.
constexpr int kPartyNameLength = 39;

QString text(const store::Row& r, const char* column) {
    return r.value(QLatin1String(column)).toString();
}

QString yesNo(bool b) { return b ? QStringLiteral("O") : QStringLiteral("N"); }

// "FD" and the last digit of the season.
QString keyPrefix(const QString& season) { return kFederalType + season.trimmed().right(1); }

QString keyOf(const QString& prefix, qint64 sequence) {
    return prefix + format::zeroPad(sequence, 5);
}

// The numeric value of a key's last five characters.
qint64 sequenceOf(const QString& key) { return format::leadingNumber(key.trimmed().right(5)); }

// The highest key whose first three characters are the prefix.
qint64 lastSequenceOfPrefix(const Store& store, const QString& prefix) {
    const auto r =
        store.selectOne(QStringLiteral("SELECT c_index FROM strcompetition WHERE c_index LIKE ? "
                                       "ORDER BY c_index DESC LIMIT 1"),
                        {prefix + QStringLiteral("%")});
    return r ? sequenceOf(r->value(0).toString()) : 0;
}

bool keyTaken(const Store& store, const QString& key) {
    return store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ?"), {key});
}

// Today's date for the record stamps (ORVE_TODAY in tests and scenarios).
QString todayText() { return format::displayDate(Clock::fromEnvironment().today()); }

// The fields the card writes on the master and, copied, on every party row.
Fields descriptiveFields(const CompetitionRecord& r) {
    return {{"c_type", r.type.trimmed().isEmpty() ? kFederalType : r.type.trimmed()},
            {"c_intitule", r.title},
            {"c_formule", r.composition.trimmed()},
            {"c_nature", r.nature.trimmed()},
            {"c_nat_fact", r.billedKind},
            {"c_fact_ligne", yesNo(r.billLines)},
            {"c_fact_engagement", yesNo(r.billEntry)},
            {"c_ligne_eliminatoire", format::leadingNumber(lineCountText(r.eliminatoryLines))},
            {"c_ligne_finale", format::leadingNumber(lineCountText(r.finalLines))},
            {"c_tri_finale", competitionSortKey(r.date)},
            {"c_date_finale", r.date.trimmed()},
            {"c_cod1", r.codes[0].trimmed()},
            {"c_cod2", r.codes[1].trimmed()},
            {"c_cod3", r.codes[2].trimmed()},
            {"c_cod4", r.codes[3].trimmed()},
            {"c_cod5", r.codes[4].trimmed()}};
}

// One party the competition may be invoiced to.
struct Party {
    QString code;  // at the head of c_nom_organisateur
    QString name;
    QString department;
};

// Who the rows are made for: leagues at the national level, else the kind
// the card chose.
QString partyKindFor(const reference::Viewer& viewer, const CompetitionRecord& record) {
    if (viewer.isNational()) return kLeagues;
    return record.billedKind == kCommittees ? kCommittees : kClubs;
}

// The parties of a kind the operator invoices: a committee user its own
// department, a league user of a "DD" installation its league's district,
// any other league user its league; the national level all.
std::vector<Party> partiesOf(const Store& store, const reference::Viewer& viewer,
                             const QString& kind) {
    std::vector<Party> parties;
    if (kind == kLeagues) {
        for (const auto& r :
             store.select(QStringLiteral("SELECT re_code, re_lib FROM strregion ORDER BY re_code")))
            parties.push_back({text(r, "re_code").trimmed(), text(r, "re_lib").trimmed(), {}});
        return parties;
    }
    const bool clubs = kind == kClubs;
    const QString region = clubs ? QStringLiteral("club_region") : QStringLiteral("de_region");
    const QString district =
        clubs ? QStringLiteral("club_district") : QStringLiteral("de_district");
    const QString department = clubs ? QStringLiteral("club_dept") : QStringLiteral("de_no");
    store::Condition filter;
    if (viewer.isNational()) {
    } else if (viewer.isCommitteeUser()) {
        filter = {department + QStringLiteral(" = ?"), {viewer.committeeNumber()}};
    } else if (viewer.district.trimmed().compare(QStringLiteral("DD"), Qt::CaseInsensitive) == 0) {
        filter = {region + QStringLiteral(" = ? AND ") + district + QStringLiteral(" = ?"),
                  {viewer.league, viewer.district.trimmed()}};
    } else {
        filter = {region + QStringLiteral(" = ?"), {viewer.league}};
    }
    const store::Query query =
        clubs ? store::Query{QStringLiteral("SELECT club_code, club_nom, club_dept FROM strclub"),
                             filter, QStringLiteral("club_code")}
              : store::Query{QStringLiteral("SELECT de_no, de_lib FROM strdept"), filter,
                             QStringLiteral("de_no")};
    for (const auto& r : store.select(query)) {
        if (clubs)
            parties.push_back({text(r, "club_code").trimmed(), text(r, "club_nom").trimmed(),
                               text(r, "club_dept").trimmed()});
        else
            parties.push_back({QStringLiteral("CD") + text(r, "de_no").trimmed(),
                               text(r, "de_lib").trimmed(), text(r, "de_no").trimmed()});
    }
    return parties;
}

// How many leading characters of c_nom_organisateur name the party: the
// club's seven, "CD" and the committee's number.
int codeLength(const QString& kind) { return kind == kCommittees ? 5 : 7; }

// Builds (or finds) the rows of `parties` under the master `index`.
int buildPartyRows(Store& store, const CompetitionRecord& record, const QString& index,
                   const QString& season, const QString& kind, const std::vector<Party>& parties) {
    // The rows already there, by the code at the head of their party name;
    // the first by key wins, as the lookup by key order would find it.
    QHash<QString, QString> existing;
    for (const auto& r :
         store.select(QStringLiteral("SELECT c_index, c_nom_organisateur FROM strcompetition "
                                     "WHERE index_reference = ? ORDER BY c_index"),
                      {index})) {
        const QString head = text(r, "c_nom_organisateur").left(codeLength(kind)).toUpper();
        if (!existing.contains(head)) existing.insert(head, text(r, "c_index"));
    }
    const Fields descriptive = descriptiveFields(record);
    const QString stamp = todayText();
    for (const Party& p : parties) {
        const QString head = p.code.left(codeLength(kind)).toUpper();
        const auto found = kind == kLeagues ? existing.cend() : existing.constFind(head);
        if (found != existing.cend()) {
            Fields fields = descriptive;
            fields.push_back({"c_date_modif", stamp});
            store.update(QStringLiteral("strcompetition"), fields, QStringLiteral("c_index = ?"),
                         {*found});
            continue;
        }
        const QString key =
            kind == kLeagues ? nextMasterIndex(store, season) : nextPartyIndex(store, season);
        Fields fields{{"c_index", key},
                      {"index_reference", index},
                      {"c_saison", season},
                      {"c_facture", kOpenState},
                      {"c_organisateur", kind},
                      {"c_nom_organisateur",
                       (p.code + QStringLiteral(" - ") + p.name).left(kPartyNameLength)},
                      {"c_dept", p.department},
                      {"c_nb_equipe", 0},
                      {"c_nb_equipe_eliminatoire", 0},
                      {"c_nb_equipe_finale", 0},
                      {"c_num_facture", " "},
                      {"c_date_facture", format::kEmptyDateMask},
                      {"c_tri_facture", " "},
                      {"c_edt", " "},
                      {"c_edt_fact", invoicing::kNoDocument},
                      {"c_envoi_mail", invoicing::kNo},
                      {"c_add_tiers", "N"},
                      {"c_date_enreg", stamp},
                      {"c_date_modif", stamp}};
        for (const auto& f : descriptive) fields.push_back(f);
        store.insert(QStringLiteral("strcompetition"), fields);
        if (kind != kLeagues) existing.insert(head, key);
    }
    return store
        .scalar(QStringLiteral("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ?"),
                {index})
        .toInt();
}

QString emptyListMessage(const QString& kind) {
    return kind == kCommittees ? QStringLiteral("aucun département à facturer")
                               : QStringLiteral("aucun club à facturer");
}

// Writes the master's card and builds its party rows; the caller holds the
// transaction and the key lock.
ValidationOutcome writeAndBuild(Store& store, const reference::Viewer& viewer,
                                const CompetitionRecord& record, const QString& index,
                                const QString& season) {
    Fields fields = descriptiveFields(record);
    fields.push_back({"c_facture", kMasterState});
    fields.push_back({"index_reference", kMasterReference});
    fields.push_back({"c_date_modif", todayText()});
    store.update(QStringLiteral("strcompetition"), fields,
                 QStringLiteral("c_index = ? AND index_reference = ?"), {index, kMasterReference});

    ValidationOutcome outcome;
    outcome.index = index;
    const QString kind = partyKindFor(viewer, record);
    const std::vector<Party> parties = partiesOf(store, viewer, kind);
    if (parties.empty()) {
        outcome.emptyListMessage = emptyListMessage(kind);
        outcome.partyRows =
            store
                .scalar(
                    QStringLiteral("SELECT COUNT(*) FROM strcompetition WHERE index_reference = ?"),
                    {index})
                .toInt();
        return outcome;
    }
    outcome.partyRows = buildPartyRows(store, record, index, season, kind, parties);
    return outcome;
}

// A new master row under the next key of its season.
QString addMaster(Store& store, const QString& season, const QString& owner) {
    const QString index = nextMasterIndex(store, season);
    const QString stamp = todayText();
    store.insert(QStringLiteral("strcompetition"), {{"c_index", index},
                                                    {"c_saison", season},
                                                    {"c_niveau", owner},
                                                    {"index_reference", kMasterReference},
                                                    {"c_facture", kMasterState},
                                                    {"c_nb_equipe", 0},
                                                    {"c_nb_equipe_eliminatoire", 0},
                                                    {"c_nb_equipe_finale", 0},
                                                    {"c_date_enreg", stamp}});
    return index;
}

QString checkedSeason(const QString& season) {
    const QString s = season.trimmed();
    static const QRegularExpression year(QStringLiteral("^\\d{4}$"));
    if (!year.match(s).hasMatch())
        throw Refusal(
            QStringLiteral("La saison « %1 » n'est pas valide (une année sur quatre chiffres).")
                .arg(format::echoed(s)));
    return s;
}

// A count box: empty is 0, else digits only.
std::optional<qint64> countValue(const QString& typed) {
    const QString t = typed.trimmed();
    if (t.isEmpty()) return 0;
    if (!reference::isWholeNumber(t) || t.size() > 9) return std::nullopt;
    return t.toLongLong();
}

}  // namespace

QString competitionSortKey(const QString& date) {
    const auto d = format::parseDisplayDate(date.trimmed());
    return d ? format::sortDate(*d) : QString();
}

QString lineCountText(const QString& typed) {
    const QString t = typed.trimmed();
    if (t.isEmpty()) return QStringLiteral("0");
    // Anything but digits stays as typed, for the card's check to name it.
    if (!reference::isWholeNumber(t) || t.size() > 9) return t;
    return QString::number(t.toLongLong());
}

store::Query competitionsQuery(const QString& season) {
    // A closed competition ("F") stays listed so that it can still be looked at.
    return {QStringLiteral("SELECT * FROM strcompetition"),
            {QStringLiteral("c_saison = ? AND index_reference = ? AND c_facture IN (?, ?)"),
             {season.trimmed(), kMasterReference, kMasterState, kInvoicedState}},
            QStringLiteral("c_index")};
}

store::Query partyRowsQuery(const QString& index) {
    return {QStringLiteral("SELECT * FROM strcompetition"),
            {QStringLiteral("index_reference = ?"), {index.trimmed()}},
            QStringLiteral("c_index")};
}

store::Query partyRowsByNameQuery(const QString& index) {
    store::Query q = partyRowsQuery(index);
    q.orderBy = QStringLiteral("c_nom_organisateur");
    return q;
}

store::Query rowsToInvoiceQuery(const QString& index) {
    return {QStringLiteral("SELECT * FROM strcompetition"),
            {QStringLiteral("index_reference = ? AND c_facture = ?"),
             {index.trimmed(), kCalculatedState}},
            QStringLiteral("c_index")};
}

CompetitionRecord loadCompetition(const Store& store, const QString& index) {
    const auto r = store.selectOne(
        QStringLiteral("SELECT * FROM strcompetition WHERE c_index = ? AND index_reference = ?"),
        {index.trimmed(), kMasterReference});
    if (!r) throw Refusal(QStringLiteral("La compétition %1 n'existe pas.").arg(index.trimmed()));
    CompetitionRecord c;
    c.index = text(*r, "c_index").trimmed();
    c.season = text(*r, "c_saison").trimmed();
    c.type = text(*r, "c_type").trimmed();
    c.title = text(*r, "c_intitule");
    c.composition = text(*r, "c_formule").trimmed();
    c.nature = text(*r, "c_nature").trimmed();
    c.billedKind = text(*r, "c_nat_fact").trimmed().toUpper() == kCommittees ? kCommittees : kClubs;
    c.billEntry = text(*r, "c_fact_engagement").trimmed().toUpper() == QStringLiteral("O");
    c.billLines = text(*r, "c_fact_ligne").trimmed().toUpper() == QStringLiteral("O");
    c.eliminatoryLines = QString::number(r->value("c_ligne_eliminatoire").toLongLong());
    c.finalLines = QString::number(r->value("c_ligne_finale").toLongLong());
    for (int i = 0; i < 5; ++i)
        c.codes[i] = r->value(QStringLiteral("c_cod%1").arg(i + 1)).toString().trimmed();
    // The date is rebuilt from its sort key, as the card shows it.
    const QString sortKey = text(*r, "c_tri_finale").trimmed();
    c.date = sortKey.size() == 8
                 ? sortKey.mid(6, 2) + QChar('/') + sortKey.mid(4, 2) + QChar('/') + sortKey.left(4)
                 : text(*r, "c_date_finale").trimmed();
    return c;
}

Openness competitionOpenness(const Store& store, const QString& index) {
    const auto master = store.selectOne(
        QStringLiteral(
            "SELECT c_facture FROM strcompetition WHERE c_index = ? AND index_reference = ?"),
        {index.trimmed(), kMasterReference});
    if (master && master->value(0).toString().trimmed().toUpper() == kInvoicedState)
        return Openness::Closed;
    if (store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE index_reference = ? AND "
                                    "c_facture = ?"),
                     {index.trimmed(), kInvoicedState}))
        return Openness::Frozen;
    return Openness::Open;
}

void checkCompetition(const CompetitionRecord& record) {
    if (record.nature.trimmed().isEmpty() || record.nature.trimmed() == reference::kChoose)
        throw Refusal(QStringLiteral("code nature obligatoire"));
    if (record.composition.trimmed().isEmpty())
        throw Refusal(QStringLiteral("code formule obligatoire"));
    if (competitionSortKey(record.date).isEmpty())
        throw Refusal(QStringLiteral("Date compétition obligatoire"));
    // "trois" lines per player is no count to bill: it is not read as 0.
    for (const auto& [caption, count] :
         {std::pair{QStringLiteral("Eliminatoires : Nombre de lignes par joueur"),
                    record.eliminatoryLines},
          std::pair{QStringLiteral("Finales : Nombre de lignes par joueur"), record.finalLines}}) {
        reference::requireDigits(caption, count);
        if (count.trimmed().size() > 9)
            throw Refusal(QStringLiteral("Le champ « %1 » est trop grand : « %2 ».")
                              .arg(caption, format::echoed(count.trimmed())));
    }
}

ValidationOutcome saveCompetition(Store& store, const reference::Viewer& viewer,
                                  const CompetitionRecord& record) {
    checkCompetition(record);
    store::Transaction tx(store);
    store.lockSeries(kKeySeries);
    QString index = record.index.trimmed();
    QString season;
    if (index.isEmpty()) {
        season = checkedSeason(record.season);
        index = addMaster(store, season, viewer.level());
    } else {
        requireCompetitionOwner(store, viewer, index);
        const auto master = store.selectOne(
            QStringLiteral("SELECT c_saison FROM strcompetition WHERE c_index = ? AND "
                           "index_reference = ?"),
            {index, kMasterReference});
        if (!master) throw Refusal(QStringLiteral("La compétition %1 n'existe pas.").arg(index));
        // The key carries the season: a saved competition keeps its own.
        season = master->value(0).toString().trimmed();
        switch (competitionOpenness(store, index)) {
            case Openness::Closed:
                throw Refusal(
                    QStringLiteral("Cette compétition est facturée, elle n'est plus modifiable"));
            case Openness::Frozen:
                throw Refusal(QStringLiteral(
                    "les caractéristiques de cette compétition ne sont plus modifiables"));
            case Openness::Open:
                break;
        }
        // The rows of the other kind go, whatever their state; at the national
        // level every league row goes and is made afresh.
        const QString other = viewer.isNational()                ? kLeagues
                              : record.billedKind == kCommittees ? kClubs
                                                                 : kCommittees;
        store.exec(
            QStringLiteral(
                "DELETE FROM strcompetition WHERE index_reference = ? AND c_organisateur = ?"),
            {index, other});
    }
    ValidationOutcome outcome = writeAndBuild(store, viewer, record, index, season);
    tx.commit();
    return outcome;
}

ValidationOutcome createComplementaryCompetition(Store& store, const reference::Viewer& viewer,
                                                 const CompetitionRecord& record) {
    checkCompetition(record);
    store::Transaction tx(store);
    store.lockSeries(kKeySeries);
    if (!record.index.trimmed().isEmpty())
        requireCompetitionOwner(store, viewer, record.index.trimmed());
    const QString season = checkedSeason(record.season);
    const QString index = addMaster(store, season, viewer.level());
    ValidationOutcome outcome = writeAndBuild(store, viewer, record, index, season);
    tx.commit();
    return outcome;
}

QString nextMasterIndex(const Store& store, const QString& season) {
    const QString prefix = keyPrefix(season);
    return keyOf(prefix, lastSequenceOfPrefix(store, prefix) + 1);
}

QString nextPartyIndex(const Store& store, const QString& season) {
    const QString prefix = keyPrefix(season);
    // Deliberately the last key above the prefix's first one, whatever its
    // own prefix: a season-0 row follows the keys of "FD1…" when there are some.
    const auto last =
        store.selectOne(QStringLiteral("SELECT c_index FROM strcompetition WHERE c_index > ? "
                                       "ORDER BY c_index DESC LIMIT 1"),
                        {keyOf(prefix, 0)});
    const QString key = keyOf(prefix, (last ? sequenceOf(last->value(0).toString()) : 0) + 1);
    // That rule alone would give the same key again as long as the last key
    // belongs to another prefix; a key is never given twice.
    if (!keyTaken(store, key)) return key;
    return keyOf(prefix, lastSequenceOfPrefix(store, prefix) + 1);
}

void setTeamCounts(Store& store, const reference::Viewer& viewer, const QString& partyIndex,
                   const TeamCounts& counts) {
    store::Transaction tx(store);
    requireCompetitionOwner(store, viewer, partyIndex.trimmed());
    const auto row = store.selectOne(
        QStringLiteral("SELECT c_nom_organisateur, c_facture FROM strcompetition WHERE "
                       "c_index = ? AND index_reference <> ?"),
        {partyIndex.trimmed(), kMasterReference});
    if (!row)
        throw Refusal(QStringLiteral("La ligne %1 de la compétition n'existe pas.")
                          .arg(partyIndex.trimmed()));
    const QString name = text(*row, "c_nom_organisateur").trimmed();
    if (text(*row, "c_facture").trimmed().toUpper() == kInvoicedState)
        throw Refusal(
            QStringLiteral("%1 : cette ligne est facturée, ses nombres d'équipes ne sont plus "
                           "modifiables.")
                .arg(name));
    const std::pair<const char*, const QString*> boxes[] = {{"Nbre Equipes", &counts.teams},
                                                            {"Equipe élimin.", &counts.eliminatory},
                                                            {"Equipe Finale", &counts.finals}};
    std::vector<qint64> values;
    for (const auto& [caption, typed] : boxes) {
        const auto v = countValue(*typed);
        if (!v)
            throw Refusal(
                QStringLiteral("%1 : « %2 » n'est pas un nombre entier positif ou nul "
                               "(%3).")
                    .arg(name, format::echoed(typed->trimmed()), QString::fromUtf8(caption)));
        values.push_back(*v);
    }
    store.update(QStringLiteral("strcompetition"),
                 {{"c_nb_equipe", values[0]},
                  {"c_nb_equipe_eliminatoire", values[1]},
                  {"c_nb_equipe_finale", values[2]},
                  {"c_date_modif", todayText()}},
                 QStringLiteral("c_index = ?"), {partyIndex.trimmed()});
    tx.commit();
}

QString competitionOwner(const Store& store, const QString& index) {
    const auto row = store.selectOne(
        QStringLiteral("SELECT c_niveau, index_reference FROM strcompetition WHERE c_index = ?"),
        {index.trimmed()});
    if (!row) return reference::kNationalLevel;
    QString owner = text(*row, "c_niveau").trimmed();
    const QString master = text(*row, "index_reference").trimmed();
    if (!master.isEmpty() && master != kMasterReference)
        owner = store
                    .scalar(QStringLiteral("SELECT c_niveau FROM strcompetition WHERE c_index = ?"),
                            {master})
                    .toString()
                    .trimmed();
    return owner.isEmpty() ? reference::kNationalLevel : owner;
}

bool mayChangeCompetition(const Store& store, const reference::Viewer& viewer,
                          const QString& index) {
    return viewer.mayChange(competitionOwner(store, index));
}

void requireCompetitionOwner(const Store& store, const reference::Viewer& viewer,
                             const QString& index) {
    const QString owner = competitionOwner(store, index);
    if (!viewer.mayChange(owner))
        throw Refusal(QStringLiteral("Cette compétition est celle %1 : seuls ce niveau et le "
                                     "niveau national peuvent la modifier, la calculer ou la "
                                     "facturer. Vous pouvez la consulter.")
                          .arg(reference::ofLevel(owner)));
}

namespace {

// The level a stored competition's party rows show (see assignCompetitionOwners).
QString ownerFromRows(const Store& store, const QString& index) {
    const store::Rows rows = store.select(
        QStringLiteral("SELECT c_organisateur, c_nom_organisateur, c_dept FROM strcompetition "
                       "WHERE index_reference = ?"),
        {index});
    QSet<QString> departments;
    QString kind;
    QString firstCode;
    for (const auto& r : rows) {
        const QString k = text(r, "c_organisateur").trimmed().toUpper();
        if (k == kLeagues) return reference::kNationalLevel;
        if (k != kClubs && k != kCommittees) continue;
        kind = k;
        if (firstCode.isEmpty()) firstCode = text(r, "c_nom_organisateur").left(codeLength(k));
        departments.insert(reference::formatNumber(text(r, "c_dept").trimmed(), 3));
    }
    if (kind.isEmpty()) return reference::kNationalLevel;
    const bool clubs = kind == kClubs;
    const auto league = store.selectOne(
        clubs ? QStringLiteral("SELECT club_region FROM strclub WHERE club_code = ?")
              : QStringLiteral("SELECT de_region FROM strdept WHERE de_no = ?"),
        {clubs ? firstCode.trimmed() : *departments.begin()});
    const QString leagueCode = league ? league->value(0).toString().trimmed() : QString();
    if (departments.size() == 1) {
        // One department: a committee's list, unless its league has no other.
        const bool otherDepartments =
            !leagueCode.isEmpty() &&
            store.exists(QStringLiteral("SELECT 1 FROM strdept WHERE de_region = ? AND de_no <> ?"),
                         {leagueCode, *departments.begin()});
        if (otherDepartments || leagueCode.isEmpty())
            return QStringLiteral("CD") + *departments.begin();
    }
    return leagueCode.isEmpty() ? reference::kNationalLevel : leagueCode;
}

}  // namespace

int assignCompetitionOwners(Store& store) {
    const QString unassigned = QStringLiteral(
        "index_reference = '00000000' AND (c_niveau IS NULL OR trim(c_niveau) = '')");
    const bool competitions =
        store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE ") + unassigned);
    const bool invoices =
        store.exists(QStringLiteral("SELECT 1 FROM strentete WHERE ent_niveau IS NULL"));
    if (!competitions && !invoices) return 0;
    store::Transaction tx(store);
    int assigned = 0;
    for (const auto& r :
         store.select(QStringLiteral("SELECT c_index FROM strcompetition WHERE ") + unassigned)) {
        const QString index = text(r, "c_index");
        assigned += store.update(QStringLiteral("strcompetition"),
                                 {{"c_niveau", ownerFromRows(store, index)}},
                                 QStringLiteral("c_index = ? AND index_reference = ? AND "
                                                "(c_niveau IS NULL OR trim(c_niveau) = '')"),
                                 {index, kMasterReference});
    }
    // Invoices stored before levels were recorded: their competition's owner
    // issued them; those of no such competition are the national level's.
    if (invoices)
        store.exec(QStringLiteral(
            "UPDATE strentete SET ent_niveau = COALESCE((SELECT m.c_niveau FROM strcompetition r "
            "JOIN strcompetition m ON m.c_index = CASE WHEN r.index_reference = '00000000' THEN "
            "r.c_index ELSE r.index_reference END WHERE r.c_index = strentete.ent_c_index "
            "LIMIT 1), 'JKV') WHERE ent_niveau IS NULL"));
    tx.commit();
    return assigned;
}

}  // namespace orve::competitions
