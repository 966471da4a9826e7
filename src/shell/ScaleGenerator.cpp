// The history is made the way a report reads it: the program decides each
// invoice (number, date, party, competition), and the statements derive what
// follows from it — the lines from a few models of invoice, the competitions'
// party rows, the credit notes' lines, the totals. Only the decisions travel
// as values, so hundreds of thousands of lines take seconds.
#include "shell/ScaleGenerator.h"

#include <QDir>
#include <QRandomGenerator>
#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "invoicing/InvoiceHomes.h"
#include "invoicing/RecordStates.h"
#include "shell/ScaleRows.h"
#include "store/Formats.h"
#include "store/Seasons.h"

namespace orve::shell::scale {

namespace {

class Generator {
  public:
    Generator(Store& store, const QDate& today, int workingSeason, const QString& dataFolder)
        : m_store(store),
          m_today(today),
          m_working(workingSeason),
          m_dataFolder(dataFolder),
          m_rng(20260901u) {}

    ScaleReport report;

    void prepare() {
        addClubs(286);
        addTariffs();
        m_store.exec(QStringLiteral("CREATE TEMP TABLE %1 (m_kind TEXT, m_variants INTEGER, "
                                    "m_variant INTEGER, m_line INTEGER, m_line_text TEXT, "
                                    "m_article TEXT, m_text TEXT, m_titled INTEGER, m_least "
                                    "INTEGER, m_span INTEGER, m_price INTEGER)")
                         .arg(kModelTable));
        m_store.exec(QStringLiteral("CREATE TEMP TABLE %1 (p_index TEXT, p_master TEXT, "
                                    "p_invoice TEXT, p_kind TEXT)")
                         .arg(kPartyRowTable));
        BulkInsert models(m_store, kModelTable,
                          {{"m_kind"},
                           {"m_variants"},
                           {"m_variant"},
                           {"m_line"},
                           {"m_line_text"},
                           {"m_article"},
                           {"m_text"},
                           {"m_titled"},
                           {"m_least"},
                           {"m_span"},
                           {"m_price"}});
        for (const InvoiceKind& k : invoiceKinds()) {
            const int variants = static_cast<int>(k.variants.size());
            for (int v = 0; v < variants; ++v) {
                int n = 0;
                for (const ModelLine& l : k.variants[static_cast<size_t>(v)]) {
                    ++n;
                    models.add({k.kind, variants, v, n, format::zeroPad(n, 2), l.article,
                                QString::fromUtf8(l.text), l.titled ? 1 : 0, l.least,
                                l.most - l.least + 1, l.priceCents});
                }
            }
        }
        models.flush();
        loadParties();
    }

    void finish() {
        m_store.exec(QStringLiteral("DROP TABLE %1").arg(kModelTable));
        m_store.exec(QStringLiteral("DROP TABLE %1").arg(kPartyRowTable));
    }

    void season(int s, qint64 targetLines) {
        m_season = s;
        m_first = store::seasonStart(s);
        m_last = std::min(store::seasonEnd(s), m_today);
        m_sequence = 100;
        m_competitionSequence = 0;
        m_federal.reset();
        m_private.reset();
        m_headers =
            std::make_unique<BulkInsert>(m_store, QStringLiteral("strentete"), kHeaderColumns);
        m_masters = std::make_unique<BulkInsert>(
            m_store, QStringLiteral("strcompetition"),
            masterColumns("'" + format::displayDate(m_today).toLatin1() + "'"));
        m_partyRows = std::make_unique<BulkInsert>(
            m_store, kPartyRowTable,
            std::vector<Column>{{"p_index"}, {"p_master"}, {"p_invoice"}, {"p_kind"}});
        preparePseudoCompetitions();
        qint64 written = 0;
        while (written < targetLines) {
            const quint32 pick = m_rng.bounded(100u);
            if (!m_pseudo.empty() && pick < 25)
                written += pseudoInvoice("LIC", club());
            else if (!m_pseudo.empty() && pick < 35)
                written += pseudoInvoice("DIV", m_rng.bounded(2u) ? committee() : club());
            else if (!m_pseudo.empty() && pick < 38)
                written += pseudoInvoice("LI", league());
            else if (!m_pseudo.empty() && pick < 43)
                written += pseudoInvoice("JORE", m_rng.bounded(2u) ? league() : committee());
            else if (pick < 60)
                written += competitionInvoice(m_private, "PR", QStringLiteral("PRIVE"));
            else
                written +=
                    competitionInvoice(m_federal, "FD",
                                       QString::fromLatin1(kFederalNatures[m_rng.bounded(
                                           static_cast<quint32>(std::size(kFederalNatures)))]));
        }
        m_headers->flush();
        m_masters->flush();
        m_partyRows->flush();
        deriveFromInvoices();
    }

  private:
    // ---- The decisions: invoices, competitions -------------------------------

    // Pseudo-competitions of the season: those of sign-in for the working
    // season, copies keyed by the season's last digit (as the new-season tool
    // makes them) for the others. A key already taken leaves the season
    // without them.
    void preparePseudoCompetitions() {
        m_pseudo.clear();
        const struct {
            const QString& index;
            const char* nature;
            const char* title;
        } kinds[] = {{invoicing::kLicenceIndex, "LIC", "Licences"},
                     {invoicing::kMiscIndex, "DIV", "Facture Divers"},
                     {invoicing::kLeagueIndex, "LI", "Facture Ligues"},
                     {invoicing::kRegionalDayIndex, "JORE", "Facture Journées LR CD"}};
        std::vector<Pseudo> pseudo;
        for (const auto& k : kinds) {
            QString index = k.index;
            if (m_season != m_working) {
                index = QString::number(m_season % 10) + k.index.mid(1);
                if (m_store.exists(QStringLiteral("SELECT 1 FROM strcompetition WHERE c_index = ?"),
                                   {index}))
                    return;
            }
            pseudo.push_back({index, QString::fromUtf8(k.title), QString::fromLatin1(k.nature)});
        }
        if (m_season != m_working) {
            const QString end = QStringLiteral("31/08/%1").arg(m_season);
            for (const Pseudo& p : pseudo) {
                m_store.insert(QStringLiteral("strcompetition"),
                               {{"c_index", p.index},
                                {"index_reference", "00000000"},
                                {"c_saison", QString::number(m_season)},
                                {"c_type", "FD"},
                                {"c_intitule", p.title},
                                {"c_nature", p.nature},
                                {"c_codification", " "},
                                {"c_date_finale", end},
                                {"c_tri_finale", format::displayToSortKey(end)},
                                {"c_formule", "1"},
                                {"c_dept", "00"},
                                {"c_num_bowling", "000"},
                                {"c_organisateur", "R"},
                                {"c_nom_organisateur", QStringLiteral("Ligue Régionale")},
                                {"c_arbitre", "NC"},
                                {"c_date_enreg", format::displayDate(m_today)},
                                {"c_date_modif", format::displayDate(m_today)},
                                {"c_facture", invoicing::kPseudoState},
                                {"c_num_facture", " "},
                                {"c_tri_facture", " "},
                                {"c_edt_fact", invoicing::kDocumentMade},
                                {"c_nat_fact", "R"},
                                {"c_fact_ligne", "N"},
                                {"c_fact_engagement", "O"},
                                {"c_envoi_mail", "N"},
                                {"c_add_tiers", "N"}});
                ++report.competitions;
            }
        }
        m_pseudo = pseudo;
    }

    QDate randomDay(const QDate& from, const QDate& to) {
        const qint64 span = std::max<qint64>(0, from.daysTo(to));
        return from.addDays(static_cast<qint64>(m_rng.bounded(static_cast<quint32>(span + 1))));
    }

    int bounded(int low, int high) {
        return low + static_cast<int>(m_rng.bounded(static_cast<quint32>(high - low + 1)));
    }

    const Party& pick(const std::vector<Party>& parties) {
        return parties[m_rng.bounded(static_cast<quint32>(parties.size()))];
    }
    const Party& club() { return pick(m_clubs); }
    const Party& committee() { return pick(m_committees); }
    const Party& league() { return pick(m_leagues); }

    QString nextIndex() {
        return QStringLiteral("FD") + QString::number(m_season % 10) +
               format::zeroPad(++m_competitionSequence, 5);
    }

    // Invoices of the older seasons are in accounting already, and so is the
    // first half of last season's.
    bool transferredOn(const QDate& day) const {
        if (m_season < m_working - 1) return true;
        return m_season == m_working - 1 && day < QDate(m_season, 3, 1);
    }

    QString transferFile(const QDate& day) const {
        const QDate monthEnd(day.year(), day.month(), day.daysInMonth());
        return QDir::toNativeSeparators(
            QDir(m_dataFolder)
                .filePath(QStringLiteral("Transfert_%1.csv").arg(format::sortDate(monthEnd))));
    }

    QString nextNumber() { return QString::number(qint64(m_season) * 1000000 + (++m_sequence)); }

    void header(const QString& number, const char* type, const QString& nature,
                const QString& title, const QString& index, const QString& codification,
                const Party& p, const QDate& day, const QString& origin) {
        const bool transferred = transferredOn(day);
        if (transferred) ++report.transferred;
        m_headers->add({number,
                        type,
                        nature,
                        format::displayDate(day),
                        format::sortDate(day),
                        format::displayDate(day.addDays(30)),
                        title,
                        index,
                        codification,
                        p.account,
                        p.name,
                        p.president,
                        p.address1,
                        p.address2,
                        p.postcodeTown,
                        p.mail,
                        transferred ? "O" : "N",
                        transferred ? "O" : "N",
                        transferred ? QVariant(transferFile(day)) : QVariant(),
                        origin.isEmpty() ? QVariant() : QVariant(origin)});
        ++report.invoices;
    }

    // One invoice; its lines come from its model. Sometimes a credit note
    // cancels it. Returns the lines it will have.
    qint64 invoice(const QString& number, const QString& kind, const QString& index,
                   const QString& title, const QString& nature, const QString& codification,
                   const Party& party, const QDate& day) {
        const InvoiceKind& k = invoiceKind(kind);
        const qint64 lines = static_cast<qint64>(
            k.variants[static_cast<size_t>(number.toLongLong() %
                                           static_cast<qint64>(k.variants.size()))]
                .size());
        header(number, "F", nature, title, index, codification, party, day, {});
        qint64 written = lines;
        if (m_rng.bounded(1000u) < 15) {
            const QDate when = std::min(day.addDays(bounded(1, 20)), m_last);
            header(nextNumber(), "A", nature, title, index, codification, party, when, number);
            ++report.creditNotes;
            written += lines;
        }
        report.lines += written;
        return written;
    }

    qint64 pseudoInvoice(const char* nature, const Party& party) {
        for (const Pseudo& p : m_pseudo)
            if (p.nature == QLatin1String(nature))
                return invoice(nextNumber(), p.nature, p.index, p.title, p.nature,
                               QStringLiteral(" "), party, randomDay(m_first, m_last));
        return 0;
    }

    // A new competition: its master row; party rows follow as it invoices.
    std::unique_ptr<Competition> newCompetition(const QString& type, const QString& nature) {
        auto c = std::make_unique<Competition>();
        c->index = nextIndex();
        c->nature = nature;
        c->day = randomDay(m_first, std::max(m_first, m_last.addDays(-15)));
        // Who organises it: a league, a committee or an inter-region.
        const quint32 level = m_rng.bounded(100u);
        QString cod3, cod4, organiser, organiserName;
        if (level < 55) {
            const Party& l = league();
            cod4 = QStringLiteral("R") + l.account.right(2);
            organiser = l.account;
            organiserName = l.name;
        } else if (level < 85) {
            const Party& d = committee();
            cod3 = QStringLiteral("DE");
            cod4 = QStringLiteral("D") + d.dept;
            organiser = d.dept;
            organiserName = d.name;
        } else {
            cod3 = QStringLiteral("IR");
            cod4 = QStringLiteral("IR%1").arg(bounded(1, 3));
            organiser = league().account;
            organiserName = QStringLiteral("Inter-région ") + cod4.right(1);
        }
        static const char* const kCod1[] = {"NAT", "CUM", ""};
        static const char* const kCod2[] = {"DM", "DF", "MX"};
        static const char* const kCod5[] = {"S1", "S2", ""};
        const QString cod1 = QString::fromLatin1(kCod1[m_rng.bounded(3u)]);
        const QString cod2 = QString::fromLatin1(kCod2[m_rng.bounded(3u)]);
        const QString cod5 = QString::fromLatin1(kCod5[m_rng.bounded(3u)]);
        c->codification = QStringList{cod1, cod2, cod3, cod4, cod5}.join(QChar(' ')).simplified();
        if (c->codification.isEmpty()) c->codification = QStringLiteral(" ");
        const QString date = format::displayDate(c->day);
        const bool isPrivate = nature == QStringLiteral("PRIVE");
        c->title = (isPrivate ? QStringLiteral("Tournoi privé ") : QStringLiteral("Compétition ")) +
                   nature + QChar(' ') + cod4 + QStringLiteral(" du ") + date;
        const quint32 kind = m_rng.bounded(10u);
        c->partyKind = isPrivate || kind < 4 ? QStringLiteral("C")
                       : kind < 7            ? QStringLiteral("D")
                                             : QStringLiteral("F");
        c->partiesLeft = isPrivate ? bounded(1, 4) : bounded(6, 20);
        m_masters->add({c->index, QString::number(m_season), type, c->title, nature,
                        c->codification, cod1, cod2, cod3, cod4, cod5,
                        QString::number(m_competitionSequence % 1000), date,
                        format::sortDate(c->day), QString::number(bounded(1, 5)), organiser.left(4),
                        organiser, organiserName.left(39), c->partyKind});
        ++report.competitions;
        return c;
    }

    // The next party row of a competition, with its invoice.
    qint64 competitionInvoice(std::unique_ptr<Competition>& current, const char* type,
                              const QString& nature) {
        if (!current || current->partiesLeft <= 0)
            current = newCompetition(QString::fromLatin1(type), nature);
        Competition& c = *current;
        const Party& party = c.partyKind == QStringLiteral("C")   ? club()
                             : c.partyKind == QStringLiteral("D") ? committee()
                                                                  : league();
        const QString index = nextIndex();
        const QString number = nextNumber();
        m_partyRows->add({index, c.index, number, c.partyKind});
        ++report.competitions;
        --c.partiesLeft;
        return invoice(number,
                       c.nature == QStringLiteral("PRIVE") ? c.nature : QStringLiteral("FD"), index,
                       c.title, c.nature, c.codification, party,
                       std::min(c.day.addDays(bounded(1, 25)), m_last));
    }

    // ---- What the statements derive from the invoices ------------------------

    void deriveFromInvoices() {
        // Numbers of the season's history: its year, then 000100 onwards.
        const QString first = QString::number(m_season) + QStringLiteral("000100");
        const QString last = QString::number(m_season) + QStringLiteral("999999");
        // Each invoice's lines from its model; older seasons' prices a little
        // lower, as they were.
        const QString number = QStringLiteral("CAST(e.ent_fact_no AS INTEGER)");
        const QString quantity =
            QStringLiteral("(m.m_least + (%1 * 7919 + m.m_line * 104729) % m.m_span)").arg(number);
        const QString price =
            QStringLiteral("(m.m_price * (100 - 2 * (? - %1 / 1000000)) / 100)").arg(number);
        m_store.exec(
            QStringLiteral(
                "INSERT INTO strfacture (f_num_facture, f_num_lig, f_index_compet, f_article, "
                "f_libelle, f_nature, f_qte, f_pu, f_montant, f_date_fact, f_tri_date, "
                "f_tiers_fact, f_fact_entite, f_tiers_clt, f_clt_entite) "
                "SELECT e.ent_fact_no, m.m_line_text, e.ent_c_index, m.m_article, "
                "CASE WHEN m.m_titled = 1 THEN m.m_text || e.ent_fact_competition ELSE m.m_text "
                "END, e.ent_nature, %2, %3, %2 * %3, e.ent_fact_date, e.ent_fact_tri, "
                "e.ent_tiers_fact, ' ', e.ent_tiers_fact, ' ' "
                "FROM strentete e JOIN %1 m ON m.m_kind = CASE WHEN e.ent_nature IN ('LIC', "
                "'DIV', 'LI', 'JORE', 'PRIVE') THEN e.ent_nature ELSE 'FD' END "
                "AND m.m_variant = %4 % m.m_variants "
                "WHERE e.ent_fact_type = 'F' AND e.ent_fact_no BETWEEN ? AND ?")
                .arg(kModelTable, quantity, price, number),
            {m_working, m_working, first, last});
        // A credit note takes back every line of its invoice.
        m_store.exec(
            QStringLiteral(
                "INSERT INTO strfacture (f_num_facture, f_num_lig, f_index_compet, f_article, "
                "f_libelle, f_nature, f_qte, f_pu, f_montant, f_date_fact, f_tri_date, "
                "f_tiers_fact, f_fact_entite, f_tiers_clt, f_clt_entite) "
                "SELECT c.ent_fact_no, f.f_num_lig, f.f_index_compet, f.f_article, f.f_libelle, "
                "f.f_nature, -f.f_qte, f.f_pu, -f.f_montant, c.ent_fact_date, c.ent_fact_tri, "
                "f.f_tiers_fact, ' ', f.f_tiers_clt, ' ' "
                "FROM strentete c JOIN strfacture f ON f.f_num_facture = c.ent_fact_origine "
                "WHERE c.ent_fact_type = 'A' AND c.ent_fact_no BETWEEN ? AND ?"),
            {first, last});
        // The competitions' party rows, each pointing at its invoice.
        m_store.exec(QStringLiteral(
                         "INSERT INTO strcompetition (c_index, index_reference, c_saison, c_type, "
                         "c_intitule, c_nature, c_codification, c_cod1, c_cod2, c_cod3, c_cod4, "
                         "c_cod5, c_numero, c_nb_lignes, c_date_finale, c_tri_finale, c_formule, "
                         "c_lr, c_dept, c_num_bowling, c_organisateur, c_nom_organisateur, "
                         "c_inscription, c_caution, c_arbitre, c_nb_equipe, "
                         "c_ligne_eliminatoire, c_ligne_finale, c_date_enreg, c_date_modif, "
                         "c_facture, c_num_facture, c_date_facture, c_tri_facture, c_edt, "
                         "c_edt_fact, c_nat_fact, c_fact_ligne, c_fact_engagement, "
                         "c_envoi_mail, c_add_tiers, c_transfert) "
                         "SELECT p.p_index, m.c_index, m.c_saison, m.c_type, m.c_intitule, "
                         "m.c_nature, m.c_codification, m.c_cod1, m.c_cod2, m.c_cod3, m.c_cod4, "
                         "m.c_cod5, m.c_numero, 0, m.c_date_finale, m.c_tri_finale, m.c_formule, "
                         "m.c_lr, m.c_dept, m.c_num_bowling, p.p_kind, "
                         "substr(e.ent_tiers_fact || ' - ' || e.ent_fact_lib, 1, 39), 0, 0, "
                         "m.c_arbitre, 1 + %2 % 12, 6, 8, m.c_date_enreg, m.c_date_modif, 'F', "
                         "e.ent_fact_no, e.ent_fact_date, e.ent_fact_tri, '', 'OUI', "
                         "m.c_nat_fact, 'O', 'O', 'N', 'N', '' "
                         "FROM %1 p JOIN strcompetition m ON m.c_index = p.p_master "
                         "JOIN strentete e ON e.ent_fact_no = p.p_invoice")
                         .arg(kPartyRowTable, number));
        m_store.exec(QStringLiteral("DELETE FROM %1").arg(kPartyRowTable));
        // Totals, and the party on whose behalf: the party invoiced.
        m_store.exec(
            QStringLiteral("UPDATE strentete SET ent_montant = (SELECT COALESCE(SUM(f.f_montant), "
                           "0) FROM strfacture f WHERE f.f_num_facture = strentete.ent_fact_no), "
                           "ent_tiers_clt = ent_tiers_fact, ent_clt_entite = ' ', "
                           "ent_clt_lib = ent_fact_lib, ent_clt_president = ent_fact_president, "
                           "ent_clt_ad1 = ent_fact_ad1, ent_clt_ad2 = ent_fact_ad2, "
                           "ent_clt_ad3 = '', ent_clt_ad4 = '', ent_clt_cp_ville = "
                           "ent_fact_cp_ville WHERE ent_fact_no BETWEEN ? AND ?"),
            {first, last});
    }

    // ---- Parties and reference data ------------------------------------------

    void loadParties() {
        for (const auto& r : m_store.select(QStringLiteral(
                 "SELECT club_code, club_nom, club_president, club_ad1, club_ad2, club_cp, "
                 "club_ville, club_mail1, club_dept FROM strclub ORDER BY club_code")))
            m_clubs.push_back({r.value(0).toString(), r.value(1).toString(), r.value(2).toString(),
                               r.value(3).toString(), r.value(4).toString(),
                               r.value(5).toString() + QChar(' ') + r.value(6).toString(),
                               r.value(7).toString(), r.value(8).toString()});
        for (const auto& r : m_store.select(QStringLiteral(
                 "SELECT de_no, de_lib, de_president, de_ad1, de_cp, de_ville, de_mail1 "
                 "FROM strdept ORDER BY de_no")))
            m_committees.push_back({QStringLiteral("CD") + r.value(0).toString(),
                                    QStringLiteral("Comité Départemental ") + r.value(1).toString(),
                                    r.value(2).toString(), r.value(3).toString(), QString(),
                                    r.value(4).toString() + QChar(' ') + r.value(5).toString(),
                                    r.value(6).toString(), r.value(0).toString()});
        for (const auto& r : m_store.select(QStringLiteral(
                 "SELECT re_code, re_lib, re_president, re_ad1, re_ad2, re_cp, re_ville, re_mail1 "
                 "FROM strregion ORDER BY re_code")))
            m_leagues.push_back({r.value(0).toString(), r.value(1).toString(),
                                 r.value(2).toString(), r.value(3).toString(),
                                 r.value(4).toString(),
                                 r.value(5).toString() + QChar(' ') + r.value(6).toString(),
                                 r.value(7).toString(), QString()});
    }

    // More clubs, so that invoices go to many parties as they do in a federation.
    void addClubs(int count) {
        const auto depts = m_store.select(QStringLiteral(
            "SELECT de_no, de_region, de_district, de_cp FROM strdept ORDER BY de_no"));
        if (depts.empty()) return;
        BulkInsert clubs(m_store, QStringLiteral("strclub"),
                         {{"club_code"},
                          {"club_num"},
                          {"club_nom"},
                          {"club_type", "'C'"},
                          {"club_region"},
                          {"club_lr"},
                          {"club_dept"},
                          {"club_district"},
                          {"club_president"},
                          {"club_ad1"},
                          {"club_ad2", "''"},
                          {"club_cp"},
                          {"club_ville"},
                          {"club_mail1"},
                          {"club_compta"},
                          {"club_date_enreg"}});
        for (int i = 0; i < count; ++i) {
            const auto& d = depts[static_cast<size_t>(i) % depts.size()];
            const QString dept = d.value(0).toString();
            const int num = 101 + i / static_cast<int>(depts.size());
            const QString code = QStringLiteral("CL") + dept.right(2) + format::zeroPad(num, 3);
            const QString town = QString::fromUtf8(kTowns[i % std::size(kTowns)]);
            clubs.add({code, format::zeroPad(num, 3),
                       QStringLiteral("%1 %2 %3")
                           .arg(QString::fromUtf8(kClubWords[i % std::size(kClubWords)]), town)
                           .arg(num),
                       d.value(1), d.value(1), dept, d.value(2),
                       QStringLiteral("Président du club %1").arg(code),
                       QStringLiteral("%1 rue du Bowling").arg(1 + i % 90), d.value(3), town,
                       QStringLiteral("contact.%1@clubs-bowling.example").arg(code.toLower()),
                       QStringLiteral("411") + dept + format::zeroPad(num, 3),
                       format::displayDate(m_today)});
        }
        clubs.flush();
        report.clubs = count;
    }

    // National accounts of the competition articles, by nature.
    void addTariffs() {
        for (const char* nature : kFederalNatures) {
            for (const auto& [article, account] :
                 {std::pair{"99999990", "706100000"}, std::pair{"99999992", "706300000"}})
                m_store.insert(QStringLiteral("strtarif"), {{"t_nature", nature},
                                                            {"t_article", article},
                                                            {"t_tri_deb", "20170901"},
                                                            {"t_tri_fin", "________"},
                                                            {"t_kvarn", account},
                                                            {"t_jkv", nature},
                                                            {"t_jg", "JG"}});
        }
    }

    Store& m_store;
    QDate m_today;
    int m_working;
    QString m_dataFolder;
    QRandomGenerator m_rng;
    std::unique_ptr<BulkInsert> m_headers, m_masters, m_partyRows;
    std::vector<Party> m_clubs, m_committees, m_leagues;
    std::vector<Pseudo> m_pseudo;
    std::unique_ptr<Competition> m_federal, m_private;
    int m_season = 0;
    QDate m_first, m_last;
    qint64 m_sequence = 0;
    int m_competitionSequence = 0;
};

}  // namespace

void generateHistory(store::Store& store, const QDate& today, qint64 lines, ScaleReport& report) {
    const int working = store::seasonOf(today);
    constexpr int kFirstHistorySeason = 2018;
    Generator g(store, today, working, store.dataFolder());
    {
        store::Transaction tx(store);
        g.prepare();
        tx.commit();
    }
    // Each season's share follows the days it has run.
    auto daysOf = [&today](int s) {
        return store::seasonStart(s).daysTo(std::min(store::seasonEnd(s), today)) + 1;
    };
    qint64 days = 0;
    for (int s = kFirstHistorySeason; s <= working; ++s) days += std::max<qint64>(0, daysOf(s));
    for (int s = kFirstHistorySeason; s <= working; ++s) {
        if (daysOf(s) <= 0) continue;
        store::Transaction tx(store);
        g.season(s, lines * daysOf(s) / std::max<qint64>(1, days));
        tx.commit();
        ++g.report.seasons;
    }
    g.finish();
    report = g.report;
}

}  // namespace orve::shell::scale
