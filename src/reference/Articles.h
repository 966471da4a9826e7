#pragma once

#include <QString>
#include <optional>

#include "reference/ReferenceCodes.h"
#include "reference/Visibility.h"
#include "store/Condition.h"
#include "store/Money.h"

namespace orve::reference {

// Invoiceable articles and their price per season.
namespace articles {

// Codes from here up are reserved (line price, entry fee, ...): they are listed
// but never take part in the numbering of ordinary articles.
inline const QString kFirstReservedCode = QStringLiteral("99999990");
// The seasons a tariff may be entered for.
inline constexpr int kFirstSeason = 2018;
inline constexpr int kLastSeason = 2030;

store::Query listing();
store::Rows list(store::Store& store);
std::optional<store::Row> find(store::Store& store, const QString& code);

// The natures a user may give an article: every user the miscellaneous and
// licence invoicing, the national level also the others.
ListItems natureItems(const Viewer& viewer);
// How a stored article's nature is shown (the card's own wording).
QString natureDisplay(const QString& nature);

// The next ordinary article code: the highest below the reserved ones plus
// one, "00000001" for the first article.
QString nextCode(store::Store& store);

// The account check: a number is padded with "0" on the left to nine
// characters; anything else is kept and gets a message (which does not block).
struct AccountCheck {
    QString text;
    QString message;  // empty when the account is numeric
};
AccountCheck checkAccount(const QString& text);

struct ArticleEdit {
    QString label;
    QString nature;
    QString account;
    QString analytic;
};
// Creates an article under the next code and returns it.
QString add(store::Store& store, const ArticleEdit& edit);
void save(store::Store& store, const QString& code, const ArticleEdit& edit);

// Prices of an article for its nature, by season.
store::Query tariffListing(const QString& article, const QString& nature);
store::Rows tariffs(store::Store& store, const QString& article, const QString& nature);
struct TariffEdit {
    QString article;
    QString nature;
    QString season;  // as typed
    QString price;   // as typed, "12,50"
};
// Adds a season's price (refused when the season already has one) or changes it.
void saveTariff(store::Store& store, const TariffEdit& edit, bool adding);

}  // namespace articles
}  // namespace orve::reference
