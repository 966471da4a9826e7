#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <vector>

#include "store/Store.h"

// The rows of a scale history as the generator writes them: the statements
// that write many at once, the models of invoice lines, the columns of the
// tables written, and the parties and competitions decided. Shared by the
// generator's files only.
namespace orve::shell::scale {

using store::Store;
using Values = std::vector<QVariant>;

// A column written by the generator: bound ("?") or a constant of the program.
struct Column {
    const char* name;
    const char* constant = nullptr;
};

// Rows written several to a statement. Qt's SQLite driver looks each value's
// name up by number, which costs more per value as statements grow: a few
// dozen values each is best.
class BulkInsert {
  public:
    BulkInsert(Store& store, const QString& table, const std::vector<Column>& columns)
        : m_store(store) {
        QStringList names;
        QStringList values;
        for (const Column& c : columns) {
            names << QString::fromLatin1(c.name);
            values << (c.constant ? QString::fromUtf8(c.constant) : QStringLiteral("?"));
            if (!c.constant) ++m_bound;
        }
        m_prefix = QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(table, names.join(QChar(',')));
        m_row = QStringLiteral("(") + values.join(QChar(',')) + QStringLiteral(")");
        m_perStatement = std::max(1, kValuesPerStatement / std::max(1, m_bound));
    }

    void add(Values values) {
        for (auto& v : values) m_params.push_back(std::move(v));
        if (++m_rows == m_perStatement) flush();
    }

    void flush() {
        if (m_rows == 0) return;
        if (m_rows != m_perStatement || m_fullStatement.isEmpty()) {
            QStringList rows;
            for (int i = 0; i < m_rows; ++i) rows << m_row;
            const QString sql = m_prefix + rows.join(QChar(','));
            if (m_rows == m_perStatement) m_fullStatement = sql;
            m_store.exec(sql, m_params);
        } else {
            m_store.exec(m_fullStatement, m_params);
        }
        m_params.clear();
        m_rows = 0;
    }

  private:
    static constexpr int kValuesPerStatement = 60;
    Store& m_store;
    QString m_prefix;
    QString m_row;
    QString m_fullStatement;
    int m_bound = 0;
    int m_perStatement = 1;
    store::Params m_params;
    int m_rows = 0;
};

// ---- Models of invoice lines -------------------------------------------------

struct ModelLine {
    const char* article;
    const char* text;
    bool titled;  // the competition's title follows the text
    int least, most;
    qint64 priceCents;  // working season's price
};
using Model = std::vector<ModelLine>;
struct InvoiceKind {
    const char* kind;
    std::vector<Model> variants;  // an invoice takes variant (number mod count)
};

// The models of one invoice kind ("LIC", "FD", …); the last kind for an
// unknown one.
Model regionalDay(int teams);
const std::vector<InvoiceKind>& invoiceKinds();
const InvoiceKind& invoiceKind(const QString& kind);

// The federal natures share the "FD" models.
inline constexpr const char* kFederalNatures[] = {"CDCND", "CDCNH", "CHAF", "DBEXC", "DBHON"};

// ---- Tables ------------------------------------------------------------------

extern const std::vector<Column> kHeaderColumns;

// Bound, in this order: c_index, c_saison, c_type, c_intitule, c_nature,
// c_codification, c_cod1..c_cod5, c_numero, c_date_finale, c_tri_finale,
// c_formule, c_lr, c_organisateur, c_nom_organisateur, c_nat_fact.
std::vector<Column> masterColumns(const QByteArray& quotedToday);

// Work tables of the generation, on its own connection and gone with it.
inline const QString kModelTable = QStringLiteral("orve_modele_ligne");
inline const QString kPartyRowTable = QStringLiteral("orve_ligne_partie");

struct Party {
    QString account;
    QString name;
    QString president;
    QString address1, address2;
    QString postcodeTown;
    QString mail;
    QString dept;
};

struct Competition {
    QString index;
    QString title;
    QString nature;
    QString codification;
    QDate day;
    int partiesLeft = 0;
    QString partyKind;  // "C" clubs, "D" committees, "F" leagues
};

struct Pseudo {
    QString index;
    QString title;
    QString nature;
};

inline constexpr const char* kTowns[] = {"Marseille", "Toulon", "Nice",     "Paris",
                                         "Boulogne",  "Dijon",  "Bordeaux", "Nantes",
                                         "Angers",    "Lyon",   "Aix",      "Aubagne"};
inline constexpr const char* kClubWords[] = {"Bowling Club",        "Strike Club",
                                             "Les Quilles de",      "Spare Team",
                                             "Association bowling", "Boule et Quilles"};

}  // namespace orve::shell::scale
