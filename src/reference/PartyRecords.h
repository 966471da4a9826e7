#pragma once

#include <QString>
#include <array>
#include <optional>

#include "store/Store.h"

namespace orve::reference {

// A party's postal block as its table keeps it, each field trimmed. Every way
// of invoicing a league, committee, club or centre starts from this one
// reading of its table, then lays the block out as its own document wants.
struct PostalBlock {
    QString name;
    std::array<QString, 4> lines;
    QString postcode;
    QString town;
    QString mail1, mail2;
    // Postcode and town joined by the caller's separator; either alone when
    // the other is blank.
    QString postcodeTown(const QString& separator) const;
};

struct LeagueRecord {
    QString code;  // re_code
    PostalBlock block;
    QString presidentTitle, president;  // re_president_int, re_president
    QString csrTitle, csrName;          // re_csr_int, re_csr_nom
    QString billedAs;                   // re_fact: "LR" (its president) or "CSR"
};

struct CommitteeRecord {
    QString number;  // de_no, "013"
    PostalBlock block;
    QString presidentTitle, president;  // de_president_int, de_president
    QString invoicedBy;                 // de_facturation: "CDnnn", "LR" or a league code
    QString league;                     // de_region
};

struct ClubRecord {
    QString code;  // club_code
    PostalBlock block;
    QString president;
};

struct CentreRecord {
    QString account;        // b_compte_tiers
    PostalBlock own;        // b_nom, b_ad1..b_ad3, b_cp, b_ville
    PostalBlock invoicing;  // b_fac_nom, b_fac_ad1..4, b_fac_cp, b_fac_ville
};

std::optional<LeagueRecord> leagueRecord(const store::Store& store, const QString& code);
// By number as typed: "13" and "013" are one committee.
std::optional<CommitteeRecord> committeeRecord(const store::Store& store, const QString& number);
std::optional<ClubRecord> clubRecord(const store::Store& store, const QString& code);
std::optional<CentreRecord> centreRecord(const store::Store& store, const QString& account);

}  // namespace orve::reference
