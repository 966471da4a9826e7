#include "reference/PartyRecords.h"

#include "reference/Centres.h"
#include "reference/Clubs.h"
#include "reference/Committees.h"
#include "reference/Leagues.h"

namespace orve::reference {

namespace {

QString field(const store::Row& r, const QString& prefix, const char* suffix) {
    return r.value(prefix + QLatin1String(suffix)).toString().trimmed();
}

// Every party table names its columns prefix + "_ad1", "_cp", "_ville"…, and
// its mails mailPrefix + "_mail1", "_mail2".
PostalBlock blockOf(const store::Row& r, const QString& prefix, const char* nameColumn, int lines,
                    const QString& mailPrefix) {
    PostalBlock b;
    b.name = r.value(QLatin1String(nameColumn)).toString().trimmed();
    for (int i = 0; i < lines; ++i)
        b.lines[i] = r.value(prefix + QStringLiteral("_ad%1").arg(i + 1)).toString().trimmed();
    b.postcode = field(r, prefix, "_cp");
    b.town = field(r, prefix, "_ville");
    b.mail1 = field(r, mailPrefix, "_mail1");
    b.mail2 = field(r, mailPrefix, "_mail2");
    return b;
}

}  // namespace

QString PostalBlock::postcodeTown(const QString& separator) const {
    if (postcode.isEmpty()) return town;
    if (town.isEmpty()) return postcode;
    return postcode + separator + town;
}

std::optional<LeagueRecord> leagueRecord(const store::Store& store, const QString& code) {
    const auto r = leagues::find(store, code.trimmed());
    if (!r) return std::nullopt;
    const QString re = QStringLiteral("re");
    LeagueRecord l;
    l.code = field(*r, re, "_code");
    l.block = blockOf(*r, re, "re_lib", 4, re);
    l.presidentTitle = field(*r, re, "_president_int");
    l.president = field(*r, re, "_president");
    l.csrTitle = field(*r, re, "_csr_int");
    l.csrName = field(*r, re, "_csr_nom");
    l.billedAs = field(*r, re, "_fact");
    return l;
}

std::optional<CommitteeRecord> committeeRecord(const store::Store& store, const QString& number) {
    const auto r = committees::find(store, number.trimmed());
    if (!r) return std::nullopt;
    const QString de = QStringLiteral("de");
    CommitteeRecord c;
    c.number = field(*r, de, "_no");
    c.block = blockOf(*r, de, "de_lib", 4, de);
    c.presidentTitle = field(*r, de, "_president_int");
    c.president = field(*r, de, "_president");
    c.invoicedBy = field(*r, de, "_facturation");
    c.league = field(*r, de, "_region");
    return c;
}

std::optional<ClubRecord> clubRecord(const store::Store& store, const QString& code) {
    const auto r = clubs::find(store, code.trimmed());
    if (!r) return std::nullopt;
    const QString club = QStringLiteral("club");
    ClubRecord c;
    c.code = field(*r, club, "_code");
    c.block = blockOf(*r, club, "club_nom", 4, club);
    c.president = field(*r, club, "_president");
    return c;
}

std::optional<CentreRecord> centreRecord(const store::Store& store, const QString& account) {
    const auto r = centres::find(store, account.trimmed());
    if (!r) return std::nullopt;
    CentreRecord c;
    c.account = field(*r, QStringLiteral("b"), "_compte_tiers");
    // The invoicing address has no mails of its own: the centre's.
    const QString b = QStringLiteral("b");
    c.own = blockOf(*r, b, "b_nom", 3, b);
    c.invoicing = blockOf(*r, QStringLiteral("b_fac"), "b_fac_nom", 4, b);
    return c;
}

}  // namespace orve::reference
