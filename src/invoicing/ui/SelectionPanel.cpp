#include "invoicing/ui/SelectionPanel.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>

#include "app/ui/ScreenSupport.h"

namespace orve::invoicing {

namespace {

void fill(QComboBox* combo, const QStringList& items, const QString& current = QString()) {
    combo->clear();
    combo->addItems(items);
    const int i = current.isEmpty() ? 0 : combo->findText(current);
    combo->setCurrentIndex(i < 0 ? 0 : i);
    // The list opens as wide as its longest item, however narrow the box.
    combo->view()->setMinimumWidth(combo->view()->sizeHintForColumn(0) + 24);
}

}  // namespace

SelectionPanel::SelectionPanel(app::Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), m_dialogs(dialogs) {
    auto* grid = new QGridLayout(this);
    for (int i = 0; i < 10; ++i) {
        m_combos[i] = new QComboBox(this);
        m_combos[i]->setObjectName(QStringLiteral("Combo%1").arg(i + 1));
        // A long nature or organiser name must not widen the whole window.
        m_combos[i]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        m_combos[i]->setMinimumContentsLength(10);
        connect(m_combos[i], &QComboBox::currentIndexChanged, this, [this, i] {
            if (i == 3) leagueChanged();
            changed();
        });
    }
    auto line = [this](const QString& name) {
        auto* e = new QLineEdit(this);
        e->setObjectName(name);
        connect(e, &QLineEdit::editingFinished, this, &SelectionPanel::changed);
        return e;
    };
    m_name = line(QStringLiteral("txtnom_organisateur"));
    m_month = new QLineEdit(this);
    m_month->setObjectName(QStringLiteral("mskmois"));
    m_month->setInputMask(QStringLiteral("99/9999;_"));
    // A year typed with two digits is one of this century: 03/19 reads 03/2019.
    connect(m_month, &QLineEdit::editingFinished, this, [this] {
        static const QRegularExpression twoDigits(QStringLiteral("^(\\d{2})/(\\d{2})_*$"));
        const auto m = twoDigits.match(m_month->text().trimmed());
        if (m.hasMatch()) m_month->setText(m.captured(1) + QStringLiteral("/20") + m.captured(2));
        changed();
    });
    m_invoice = line(QStringLiteral("txtnofac"));
    m_competition = line(QStringLiteral("txtcnum"));
    m_competition->setText(kNoCompetition);
    m_rerun = new QRadioButton(this);
    m_rerun->setObjectName(QStringLiteral("Option1"));
    connect(m_rerun, &QRadioButton::clicked, this, [this] { emit filterChanged(); });

    auto label = [this](const QString& text) { return new QLabel(text, this); };
    grid->addWidget(label(QStringLiteral("Saison")), 0, 0);
    grid->addWidget(m_combos[0], 1, 0);
    grid->addWidget(label(QStringLiteral("Type")), 0, 1);
    grid->addWidget(m_combos[1], 1, 1);
    grid->addWidget(label(QStringLiteral("Nature")), 0, 2);
    grid->addWidget(m_combos[2], 1, 2);
    grid->addWidget(label(QStringLiteral("Organisateur")), 0, 3);
    grid->addWidget(m_combos[3], 1, 3);
    grid->addWidget(m_combos[4], 1, 4);
    grid->addWidget(label(QStringLiteral("Nom Organisateur")), 0, 5);
    grid->addWidget(m_name, 1, 5);
    grid->addWidget(label(QStringLiteral("Codification")), 2, 0);
    for (int i = 5; i < 10; ++i) grid->addWidget(m_combos[i], 3, i - 5);
    grid->addWidget(m_rerun, 3, 5);
    grid->addWidget(label(QStringLiteral("Mois de facturation :  ")), 4, 0);
    grid->addWidget(m_month, 4, 1);
    grid->addWidget(label(QStringLiteral("N° Facture  :  ")), 4, 2);
    grid->addWidget(m_invoice, 4, 3);
    grid->addWidget(label(QStringLiteral("N° Compétition  :  ")), 4, 4);
    grid->addWidget(m_competition, 4, 5);
}

void SelectionPanel::load(const store::Store& store, const QString& mode, int workingSeason) {
    m_store = &store;
    const SelectionLists lists = loadSelectionLists(store, mode, workingSeason);
    m_filling = true;
    fill(m_combos[0], lists.seasons, lists.defaultSeason);
    fill(m_combos[1], lists.types);
    fill(m_combos[2], lists.natures);
    fill(m_combos[3], lists.leagues);
    fill(m_combos[4], lists.departments);
    for (int i = 0; i < 5; ++i) fill(m_combos[5 + i], lists.codes[i]);
    m_name->clear();
    m_month->clear();
    m_invoice->clear();
    m_competition->setText(kNoCompetition);
    m_sortField.clear();
    m_sortDescending = false;
    m_filling = false;
}

SelectionState SelectionPanel::state() const {
    SelectionState s;
    s.season = m_combos[0]->currentText();
    s.type = m_combos[1]->currentText();
    s.nature = m_combos[2]->currentText();
    s.league = m_combos[3]->currentText();
    s.department = m_combos[4]->currentText();
    for (int i = 0; i < 5; ++i) s.codes[i] = m_combos[5 + i]->currentText();
    s.organiserName = m_name->text();
    // An untouched mask reads back as its separator alone.
    const QString month = m_month->text();
    s.month = month.trimmed() == QStringLiteral("/") ? kEmptyMonthMask : month;
    s.invoiceNumber = m_invoice->text();
    s.competitionIndex =
        m_competition->text().trimmed().isEmpty() ? kNoCompetition : m_competition->text();
    s.sortField = m_sortField;
    s.sortDescending = m_sortDescending;
    return s;
}

SelectionCondition SelectionPanel::condition() const { return buildSelectionCondition(state()); }

void SelectionPanel::sortBy(const QString& field) {
    SelectionState s = state();
    toggleSort(s, field);
    m_sortField = s.sortField;
    m_sortDescending = s.sortDescending;
    emit filterChanged();
}

void SelectionPanel::changed() {
    if (!m_filling) emit filterChanged();
}

void SelectionPanel::leagueChanged() {
    if (m_filling || !m_store) return;
    m_filling = true;
    // The department list stays as it was, and the operator learns why.
    app::guarded(m_dialogs,
                 [&] { fill(m_combos[4], loadDepartments(*m_store, m_combos[3]->currentText())); });
    m_filling = false;
}

}  // namespace orve::invoicing
