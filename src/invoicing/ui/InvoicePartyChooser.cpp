#include "invoicing/ui/InvoicePartyChooser.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "app/ui/ScreenSupport.h"
#include "reference/Visibility.h"

namespace orve::invoicing {

namespace {

QLineEdit* lineEdit(const QString& name, QWidget* parent, int width = 0) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    if (width > 0) e->setMaximumWidth(width);
    return e;
}

QComboBox* combo(const QString& name, QWidget* parent) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    c->setMinimumContentsLength(18);
    c->addItem(app::kChoose);
    return c;
}

}  // namespace

InvoicePartyChooser::InvoicePartyChooser(app::Session& session, app::Dialogs& dialogs,
                                         QWidget* parent)
    : QGroupBox(QStringLiteral("Adresse de facturation "), parent),
      m_session(session),
      m_dialogs(dialogs) {
    setObjectName(QStringLiteral("Frame8"));
    auto* grid = new QGridLayout(this);
    grid->setVerticalSpacing(2);
    m_leagues = combo(QStringLiteral("Combo11"), this);
    m_committees = combo(QStringLiteral("Combo12"), this);
    m_clubDept = lineEdit(QStringLiteral("txt_club_dept"), this, 40);
    m_clubs = combo(QStringLiteral("Combo13"), this);
    m_centreDept = lineEdit(QStringLiteral("txt_centre_dept"), this, 40);
    m_centres = combo(QStringLiteral("Combo14"), this);
    m_licenseeName = lineEdit(QStringLiteral("txt_nom_licence"), this, 90);
    m_licensees = combo(QStringLiteral("Combo15"), this);
    m_other = new QRadioButton(QStringLiteral("Autres - Adresse de tiers à saisir"), this);
    m_other->setObjectName(QStringLiteral("Option6"));
    m_other->setAutoExclusive(false);

    int row = 0;
    const auto add = [&](const QString& caption, QWidget* key, QWidget* list) {
        grid->addWidget(new QLabel(caption, this), row, 0);
        if (key) grid->addWidget(key, row, 1);
        grid->addWidget(list, row, key ? 2 : 1, 1, key ? 1 : 2);
        ++row;
    };
    add(QStringLiteral("Ligue Régionale"), nullptr, m_leagues);
    add(QStringLiteral("Département"), nullptr, m_committees);
    add(QStringLiteral("Club du département"), m_clubDept, m_clubs);
    add(QStringLiteral("Centre de bowling du département"), m_centreDept, m_centres);
    add(QStringLiteral("Un licencié (%)"), m_licenseeName, m_licensees);
    grid->addWidget(m_other, row++, 0, 1, 3);
    for (int i = 0; i < 7; ++i) {
        m_lines[i] = lineEdit(QStringLiteral("tiers_l%1").arg(i + 1), this);
        m_lines[i]->setReadOnly(true);
        grid->addWidget(m_lines[i], row++, 0, 1, 3);
    }
    m_mail1 = lineEdit(QStringLiteral("tiers_m1"), this);
    m_mail2 = lineEdit(QStringLiteral("tiers_m2"), this);
    for (auto* m : {m_mail1, m_mail2}) m->setReadOnly(true);
    grid->addWidget(new QLabel(QStringLiteral("mail 1"), this), row, 0);
    grid->addWidget(m_mail1, row++, 1, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("mail 2"), this), row, 0);
    grid->addWidget(m_mail2, row++, 1, 1, 2);
    grid->setRowStretch(row, 1);

    connect(m_leagues, &QComboBox::activated, this, [this] {
        choose(m_leagues, [this](const QString& item) {
            return leagueParty(m_session.store(), app::itemCode(item));
        });
    });
    connect(m_committees, &QComboBox::activated, this, [this] {
        choose(m_committees, [this](const QString& item) {
            return committeeParty(m_session.store(), app::itemCode(item), m_block, m_invoiceNumber);
        });
    });
    connect(m_clubs, &QComboBox::activated, this, [this] {
        choose(m_clubs, [this](const QString& item) {
            return clubParty(m_session.store(), nameFirstKey(item));
        });
    });
    connect(m_centres, &QComboBox::activated, this, [this] {
        choose(m_centres, [this](const QString& item) {
            return centreParty(m_session.store(), nameFirstKey(item));
        });
    });
    connect(m_licensees, &QComboBox::activated, this, [this] {
        choose(m_licensees, [this](const QString& item) {
            return licenseeParty(m_session.store(), nameFirstKey(item));
        });
    });
    connect(m_clubDept, &QLineEdit::editingFinished, this, [this] {
        app::guarded(m_dialogs, [&] {
            fillNameFirst(m_clubs, clubItems(m_session.store(), m_clubDept->text()));
        });
    });
    connect(m_centreDept, &QLineEdit::editingFinished, this, [this] {
        app::guarded(m_dialogs, [&] {
            fillNameFirst(m_centres, centreItems(m_session.store(), m_centreDept->text()));
        });
    });
    connect(m_licenseeName, &QLineEdit::editingFinished, this, [this] {
        app::guarded(m_dialogs, [&] {
            fillNameFirst(m_licensees, licenseeItems(m_session.store(), m_licenseeName->text()));
        });
    });
    connect(m_other, &QRadioButton::toggled, this, [this](bool on) {
        for (auto* l : m_lines) l->setReadOnly(!on);
        for (auto* m : {m_mail1, m_mail2}) m->setReadOnly(!on);
        if (!on) return;
        // A typed address starts blank: nothing of a party chosen before stays.
        showParty({});
        for (auto* c : {m_leagues, m_committees, m_clubs, m_centres, m_licensees})
            c->setCurrentIndex(0);
        m_lines[0]->setFocus();
        emit partyChosen(InvoiceParty{}, AddressBlock::Billing);
    });
}

void InvoicePartyChooser::load() {
    app::fillItems(m_leagues, leagueItems(m_session.store()));
    app::fillItems(m_committees, committeeItems(m_session.store()));
}

void InvoicePartyChooser::setTarget(AddressBlock block, const QString& invoiceNumber) {
    m_block = block;
    m_invoiceNumber = invoiceNumber;
}

bool InvoicePartyChooser::typing() const { return m_other->isChecked(); }

InvoiceParty InvoicePartyChooser::typedParty() const {
    QStringList lines;
    for (auto* l : m_lines) lines << l->text();
    return otherParty(lines, m_mail1->text(), m_mail2->text());
}

void InvoicePartyChooser::showParty(const InvoiceParty& p) {
    const QString texts[7] = {p.name,     p.president, p.address1,    p.address2,
                              p.address3, p.address4,  p.postcodeTown};
    for (int i = 0; i < 7; ++i) m_lines[i]->setText(texts[i]);
    m_mail1->setText(p.mail1);
    m_mail2->setText(p.mail2);
    // A long address or mail shows its beginning.
    for (int i = 0; i < 7; ++i) m_lines[i]->setCursorPosition(0);
    m_mail1->setCursorPosition(0);
    m_mail2->setCursorPosition(0);
}

void InvoicePartyChooser::clear() {
    showParty({});
    for (auto* c : {m_leagues, m_committees, m_clubs, m_centres, m_licensees})
        c->setCurrentIndex(0);
    m_other->setChecked(false);
}

void InvoicePartyChooser::choose(QComboBox* combo,
                                 const std::function<InvoiceParty(const QString&)>& make) {
    if (combo->currentIndex() <= 0) return;
    app::guarded(m_dialogs, [&] {
        const InvoiceParty party = make(combo->currentText());
        m_other->setChecked(false);
        if (m_block == AddressBlock::Billing) showParty(party);
        emit partyChosen(party, m_block);
    });
}

void InvoicePartyChooser::fillNameFirst(QComboBox* combo, const app::ListItems& items) {
    combo->clear();
    combo->addItem(app::kChoose);
    for (const auto& item : items) combo->addItem(nameFirstText(item));
}

}  // namespace orve::invoicing
