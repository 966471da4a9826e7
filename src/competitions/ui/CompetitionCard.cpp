#include "competitions/ui/CompetitionCard.h"

#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>
#include <tuple>

#include "app/ui/ScreenSupport.h"
#include "store/Formats.h"

namespace orve::competitions {

namespace {

const QString kYes = QStringLiteral("O");
const QString kNo = QStringLiteral("N");

QLineEdit* box(QWidget* parent, const char* name, int width, bool readOnly = false) {
    auto* b = new QLineEdit(parent);
    b->setObjectName(QString::fromLatin1(name));
    if (width > 0) b->setMaximumWidth(width);
    b->setReadOnly(readOnly);
    return b;
}

QLabel* label(QWidget* parent, const QString& text, const char* name = nullptr) {
    auto* l = new QLabel(text, parent);
    if (name) l->setObjectName(QString::fromLatin1(name));
    return l;
}

// A frame of two option buttons, named name_0 and name_1, and its mirror box.
QGroupBox* optionFrame(QWidget* parent, const char* frameName, const QString& title,
                       const QString& name, const QStringList& captions,
                       std::array<QRadioButton*, 2>& buttons, QLineEdit* mirror) {
    auto* frame = new QGroupBox(title, parent);
    frame->setObjectName(QString::fromLatin1(frameName));
    auto* layout = new QGridLayout(frame);
    layout->setContentsMargins(6, 2, 6, 2);
    for (int i = 0; i < 2; ++i) {
        buttons[i] = new QRadioButton(captions[i], frame);
        buttons[i]->setObjectName(name + QLatin1Char('_') + QString::number(i));
        layout->addWidget(buttons[i], 0, i);
    }
    mirror->setParent(frame);
    layout->addWidget(mirror, 0, 2);
    layout->setColumnStretch(3, 1);
    return frame;
}

// A code kept on a competition stays shown even when its list no longer has it.
void showCode(QComboBox* box, const QString& code) {
    const QString wanted = code.trimmed().isEmpty() ? QStringLiteral(" ") : code.trimmed();
    int at = box->findText(wanted);
    if (at < 0) {
        box->addItem(wanted);
        at = box->count() - 1;
    }
    box->setCurrentIndex(at);
}

}  // namespace

CompetitionCard::CompetitionCard(QWidget* parent)
    : QGroupBox(QStringLiteral("FICHE D'UNE COMPETITION A FACTURER"), parent) {
    setObjectName(QStringLiteral("Frame1"));
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(6, 4, 6, 4);
    columns->addLayout(buildForm(), 3);
    auto* options = new QVBoxLayout;
    options->setSpacing(2);
    columns->addLayout(options, 2);
    buildOptions(columns, options);
    connectControls();
    clear();
}

// Key, season, type, nature, title, composition, date and codifications.
QGridLayout* CompetitionCard::buildForm() {
    auto* form = new QGridLayout;
    form->setHorizontalSpacing(6);
    form->setVerticalSpacing(4);
    // The key is made at the first validation; it is never typed.
    m_index = box(this, "txt_index", 90, true);
    m_season = box(this, "txt_saison", 60);
    m_type = box(this, "txt_type", 40, true);
    m_type->setText(kFederalType);
    m_natures = new QComboBox(this);
    m_natures->setObjectName(QStringLiteral("Combo11"));
    m_natures->setMinimumWidth(200);
    m_nature = box(this, "txt_naturec", 70, true);
    m_title = box(this, "txt_intitule", 0);
    m_compositions = new QComboBox(this);
    m_compositions->setObjectName(QStringLiteral("Combo12"));
    m_compositions->addItems({app::kChoose, QStringLiteral("1 - Individuel"),
                              QStringLiteral("2 - Doublette"), QStringLiteral("3 - Triplette"),
                              QStringLiteral("4 - Quadrette"), QStringLiteral("5 - Equipe de 5")});
    m_composition = box(this, "txt_formule", 40, true);
    m_date = box(this, "Mskdate", 90);
    m_date->setInputMask(QStringLiteral("99/99/9999;_"));
    m_sortKey = box(this, "txt_tri_finale", 80, true);

    auto* key = new QHBoxLayout;
    key->addWidget(m_index);
    key->addWidget(label(this, QStringLiteral("Saison :")));
    key->addWidget(m_season);
    key->addWidget(label(this, QStringLiteral("Type :")));
    key->addWidget(m_type);
    key->addStretch(1);
    form->addWidget(label(this, QStringLiteral("  Référence :"), "Label10"), 0, 0, Qt::AlignRight);
    form->addLayout(key, 0, 1);
    auto* nature = new QHBoxLayout;
    nature->addWidget(m_natures, 1);
    nature->addWidget(m_nature);
    form->addWidget(label(this, QStringLiteral("        Nature :")), 1, 0, Qt::AlignRight);
    form->addLayout(nature, 1, 1);
    form->addWidget(label(this, QStringLiteral("Désignation :")), 2, 0, Qt::AlignRight);
    form->addWidget(m_title, 2, 1);
    auto* composition = new QHBoxLayout;
    composition->addWidget(m_compositions, 1);
    composition->addWidget(m_composition);
    form->addWidget(label(this, QStringLiteral("Composition  :")), 3, 0, Qt::AlignRight);
    form->addLayout(composition, 3, 1);
    auto* date = new QHBoxLayout;
    date->addWidget(m_date);
    date->addWidget(m_sortKey);
    date->addStretch(1);
    form->addWidget(label(this, QStringLiteral("Date de la compétition :")), 4, 0, Qt::AlignRight);
    form->addLayout(date, 4, 1);
    auto* codes = new QHBoxLayout;
    for (int i = 0; i < 5; ++i) {
        m_codes[i] = new QComboBox(this);
        m_codes[i]->setObjectName(QStringLiteral("cbo_cod%1").arg(i + 1));
        m_codes[i]->setMinimumWidth(64);
        m_codes[i]->setToolTip(QStringLiteral("Codification %1").arg(i + 1));
        codes->addWidget(m_codes[i]);
    }
    codes->addStretch(1);
    form->addWidget(label(this, QStringLiteral("Codifications :")), 5, 0, Qt::AlignRight);
    form->addLayout(codes, 5, 1);
    form->setColumnStretch(1, 1);
    form->setRowStretch(6, 1);

    return form;
}

// The three yes/no frames, the line counts beside the last two.
void CompetitionCard::buildOptions(QHBoxLayout* columns, QVBoxLayout* options) {
    m_billedKindText = box(this, "txt_nat_fact", 30, true);
    m_entryText = box(this, "txt_fact_engagement", 30, true);
    m_linesText = box(this, "txt_fact_ligne", 30, true);
    options->addWidget(optionFrame(
        this, "Frame2", QStringLiteral("Facturation à effectuer :"), QStringLiteral("Option3"),
        {QStringLiteral("aux clubs"), QStringLiteral("aux comités départementaux")}, m_billedKind,
        m_billedKindText));
    options->addWidget(optionFrame(
        this, "Frame7", QStringLiteral("Facturation engagement :"), QStringLiteral("Option4"),
        {QStringLiteral("Oui"), QStringLiteral("Non")}, m_entry, m_entryText));
    auto* lines = optionFrame(this, "Frame8", QStringLiteral("Facturation lignage"),
                              QStringLiteral("Option5"),
                              {QStringLiteral("Oui"), QStringLiteral("Non")}, m_lines, m_linesText);
    auto* linesLayout = static_cast<QGridLayout*>(lines->layout());
    m_eliminatoryLines = box(lines, "txt_ligne_eliminatoire", 50);
    m_finalLines = box(lines, "txt_ligne_finale", 50);
    linesLayout->addWidget(
        label(lines, QStringLiteral("Eliminatoires  :    Nombre de lignes par joueur "), "Label9"),
        1, 0, 1, 2);
    linesLayout->addWidget(m_eliminatoryLines, 1, 2);
    linesLayout->addWidget(
        label(lines, QStringLiteral("Finales            :    Nombre de lignes par joueur  "),
              "Label12"),
        2, 0, 1, 2);
    linesLayout->addWidget(m_finalLines, 2, 2);
    options->addStretch(1);
    // The line counts beside the two yes/no choices, so the card stays low.
    auto* linesColumn = new QVBoxLayout;
    linesColumn->addWidget(lines);
    linesColumn->addStretch(1);
    columns->addLayout(linesColumn, 3);
}

void CompetitionCard::connectControls() {
    connect(m_natures, &QComboBox::activated, this, &CompetitionCard::chooseNature);
    connect(m_compositions, &QComboBox::activated, this, &CompetitionCard::chooseComposition);
    connect(m_date, &QLineEdit::textChanged, this, &CompetitionCard::dateChanged);
    const std::pair<std::array<QRadioButton*, 2>*, std::pair<QLineEdit*, QStringList>> mirrors[] = {
        {&m_billedKind, {m_billedKindText, {kClubs, kCommittees}}},
        {&m_entry, {m_entryText, {kYes, kNo}}},
        {&m_lines, {m_linesText, {kYes, kNo}}}};
    for (const auto& [buttons, mirror] : mirrors) {
        for (int i = 0; i < 2; ++i) {
            QLineEdit* text = mirror.first;
            const QString value = mirror.second[i];
            connect((*buttons)[i], &QRadioButton::clicked, text,
                    [text, value] { text->setText(value); });
        }
    }
    // What the operator changes must be validated again; choosing what the
    // card already holds changes nothing.
    const auto changed = [this] {
        if (modified()) emit edited();
    };
    for (QLineEdit* b : {m_season, m_title, m_date, m_eliminatoryLines, m_finalLines})
        connect(b, &QLineEdit::textEdited, this, changed);
    for (QComboBox* c : {m_natures, m_compositions})
        connect(c, &QComboBox::activated, this, changed);
    for (QComboBox* c : m_codes) connect(c, &QComboBox::activated, this, changed);
    for (const auto* buttons : {&m_billedKind, &m_entry, &m_lines})
        for (QRadioButton* b : *buttons) connect(b, &QRadioButton::clicked, this, changed);
    for (QLineEdit* count : {m_eliminatoryLines, m_finalLines}) {
        count->installEventFilter(this);
        connect(count, &QLineEdit::editingFinished, this,
                [count] { count->setText(lineCountText(count->text())); });
    }
}

void CompetitionCard::setNatures(const app::ListItems& natures) {
    app::fillItems(m_natures, natures);
}

void CompetitionCard::setCodifications(const std::array<QStringList, 5>& values) {
    for (int i = 0; i < 5; ++i) {
        const QString shown = m_codes[i]->currentText();
        m_codes[i]->clear();
        m_codes[i]->addItem(QStringLiteral(" "));
        m_codes[i]->addItems(values[i]);
        showCode(m_codes[i], shown);
    }
}

bool CompetitionCard::eventFilter(QObject* watched, QEvent* event) {
    // A line count is typed over, not into.
    if (event->type() == QEvent::FocusIn) {
        if (auto* count = qobject_cast<QLineEdit*>(watched))
            QTimer::singleShot(0, count, [count] { count->selectAll(); });
    }
    return QGroupBox::eventFilter(watched, event);
}

bool CompetitionCard::modified() const {
    if (m_new) return true;
    const CompetitionRecord now = record();
    const auto fields = [](const CompetitionRecord& r) {
        return std::make_tuple(r.season, r.title, r.composition, r.nature, r.billedKind,
                               r.billEntry, r.billLines, r.eliminatoryLines, r.finalLines,
                               competitionSortKey(r.date), r.codes);
    };
    return fields(now) != fields(m_shown);
}

void CompetitionCard::chooseNature() { m_nature->setText(app::itemCode(m_natures->currentText())); }

void CompetitionCard::chooseComposition() {
    // "1 - Individuel" is kept as "1"; "Choisir" as "0".
    m_composition->setText(m_compositions->currentIndex() <= 0
                               ? QStringLiteral("0")
                               : m_compositions->currentText().section('-', 0, 0).trimmed());
}

void CompetitionCard::dateChanged() {
    const QString key = competitionSortKey(m_date->displayText());
    if (!key.isEmpty()) m_sortKey->setText(key);
}

void CompetitionCard::showOptions() {
    m_billedKind[m_billedKindText->text() == kCommittees ? 1 : 0]->setChecked(true);
    m_entry[m_entryText->text() == kNo ? 1 : 0]->setChecked(true);
    m_lines[m_linesText->text() == kNo ? 1 : 0]->setChecked(true);
}

void CompetitionCard::showRecord(const CompetitionRecord& record) {
    m_index->setText(record.index);
    m_season->setText(record.season);
    m_type->setText(record.type.isEmpty() ? kFederalType : record.type);
    app::showItem(m_natures, record.nature);
    m_nature->setText(record.nature);
    m_title->setText(record.title);
    m_compositions->setCurrentIndex(0);
    for (int i = 1; i < m_compositions->count(); ++i)
        if (m_compositions->itemText(i).section('-', 0, 0).trimmed() == record.composition)
            m_compositions->setCurrentIndex(i);
    m_composition->setText(record.composition);
    m_sortKey->setText(competitionSortKey(record.date));
    m_date->setText(record.date);
    m_billedKindText->setText(record.billedKind);
    m_entryText->setText(record.billEntry ? kYes : kNo);
    m_linesText->setText(record.billLines ? kYes : kNo);
    m_eliminatoryLines->setText(record.eliminatoryLines);
    m_finalLines->setText(record.finalLines);
    for (int i = 0; i < 5; ++i) showCode(m_codes[i], record.codes[i]);
    showOptions();
    m_shown = this->record();
    m_new = false;
}

void CompetitionCard::startNew(const QString& season) {
    CompetitionRecord fresh;
    fresh.season = season;
    showRecord(fresh);
    m_date->setText(QString());
    m_sortKey->clear();
    m_new = true;
}

void CompetitionCard::clear() {
    startNew(QString());
    m_shown = record();
    m_new = false;
}

CompetitionRecord CompetitionCard::record() const {
    CompetitionRecord r;
    r.index = m_index->text().trimmed();
    r.season = m_season->text().trimmed();
    r.type = m_type->text();
    r.title = m_title->text();
    r.composition = m_composition->text();
    r.nature = m_nature->text();
    r.billedKind = m_billedKindText->text();
    r.billEntry = m_entryText->text() == kYes;
    r.billLines = m_linesText->text() == kYes;
    r.eliminatoryLines = lineCountText(m_eliminatoryLines->text());
    r.finalLines = lineCountText(m_finalLines->text());
    r.date = m_date->displayText();
    for (int i = 0; i < 5; ++i) r.codes[i] = m_codes[i]->currentText().trimmed();
    return r;
}

QString CompetitionCard::index() const { return m_index->text().trimmed(); }

QString CompetitionCard::nature() const { return m_nature->text(); }

void CompetitionCard::setSeasonEditable(bool editable) { m_season->setReadOnly(!editable); }

}  // namespace orve::competitions
