#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "invoicing/SelectionFilter.h"
#include "store/Store.h"

// A small federation of season 2021 whose transfer files are written out by
// hand in tests/accounting/data: a federal competition, licence and
// miscellaneous invoices, a credit note, an invoice already transferred, one
// of another season, a party without an account, an article that is gone and
// an eight-digit invoice number.
namespace orve::test {

// Users "gestu" (JKV) and "ligue06" (LR06), parties, articles, tariffs,
// competitions and invoices.
void addAccountingFixture(store::Store& store);

// Season 2022 for the statistics: competitions organised by leagues
// ("R06", "R11"), a committee ("DE", "D013"), an inter-region ("IR", "IR1")
// and an organiser of another kind ("X99"), with lines on the first and last
// days of the season and one the day after it.
void addStatisticsFixture(store::Store& store);

// An invoice header and its lines written as stored, amounts in cents; the
// lines carry the header's nature, competition and party.
struct FixtureLine {
    const char* article;
    const char* text;
    qint64 quantity;
    qint64 priceCents;
};
void addInvoice(store::Store& store, const QString& number, const QString& type,
                const QString& competition, const QString& nature, const QString& party,
                const QString& date, const QString& dueDate, const std::vector<FixtureLine>& lines,
                const QString& transferred = "N");

// The panel's condition for a season, all filters "Tous".
invoicing::SelectionCondition seasonSelection(const QString& season,
                                              const QString& month = QString());

// A file of tests/accounting/data, as bytes.
QByteArray expectedFile(const QString& name);
QByteArray fileBytes(const QString& path);

// ent_compta of a header.
QString transferMark(const store::Store& store, const QString& number);

}  // namespace orve::test
