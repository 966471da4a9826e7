#include "reference/ui/RecordScreen.h"

#include <QComboBox>
#include <QFont>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemDelegate>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/ui/ScreenSupport.h"

namespace orve::reference {

namespace {

// The card only shows the row: its boxes keep their own keys (Tab, Escape,
// Enter), and nothing typed goes back into the grid's rows.
class ShowingDelegate : public QItemDelegate {
  public:
    using QItemDelegate::QItemDelegate;

  protected:
    bool eventFilter(QObject*, QEvent*) override { return false; }
};

}  // namespace

RecordScreen::RecordScreen(app::Session& session, app::Dialogs& dialogs, QWidget* parent,
                           const QString& name, const QString& title, const QString& cardTitle,
                           const QString& validateName, const QString& cancelName)
    : QWidget(parent), m_session(session), m_dialogs(dialogs) {
    app::makeScreenWindow(this, name, title);
    m_main = new QVBoxLayout(this);
    m_grid = new app::DataGrid(QStringLiteral("DBGrid1"), this);
    m_grid->setMinimumHeight(160);
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_main->addWidget(m_grid, 1);
    m_mapper = new QDataWidgetMapper(this);
    m_mapper->setSubmitPolicy(QDataWidgetMapper::ManualSubmit);
    m_mapper->setItemDelegate(new ShowingDelegate(m_mapper));
    m_mapper->setModel(m_grid->storeModel());
    m_card = new QGroupBox(cardTitle, this);
    m_card->setObjectName(QStringLiteral("Frame1"));
    QFont bold = m_card->font();
    bold.setBold(true);
    m_card->setFont(bold);
    auto* cardLayout = new QVBoxLayout(m_card);
    // The boxes scroll on a short screen; Valider and Annuler stay below them.
    m_formArea = new QWidget;
    m_formArea->setObjectName(QStringLiteral("Frame1_champs"));
    m_form = new QGridLayout(m_formArea);
    m_form->setContentsMargins(0, 0, 0, 0);
    m_form->setColumnStretch(1, 1);
    m_form->setHorizontalSpacing(8);
    QScrollArea* scroll = app::newScrollArea(m_formArea, m_card);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);
    m_formArea->setAutoFillBackground(false);
    cardLayout->addWidget(scroll, 1);
    m_buttons = new QHBoxLayout;
    cardLayout->addLayout(m_buttons);
    m_main->addWidget(m_card);
    m_validate = new QPushButton(QStringLiteral("Valider"), m_card);
    m_validate->setObjectName(validateName);
    m_cancel = new QPushButton(QStringLiteral("Annuler"), m_card);
    m_cancel->setObjectName(cancelName);
    connect(m_grid, &app::DataGrid::rowChosen, this, &RecordScreen::chooseRow);
    connect(m_grid, &app::DataGrid::loadFailed, this,
            [this](const QString& message) { m_dialogs.fail(message); });
    connect(m_validate, &QPushButton::clicked, this, &RecordScreen::validate);
    connect(m_cancel, &QPushButton::clicked, this, &RecordScreen::cancel);
}

void RecordScreen::start() {
    // Mapped once the grid has its columns, so that each box finds its field.
    for (const auto& [box, column] : m_shown)
        m_mapper->addMapping(box, m_grid->storeModel()->section(column));
    m_buttons->addStretch(1);
    m_buttons->addWidget(m_validate);
    m_buttons->addWidget(m_cancel);
    // Below everything a window added: where "Fiche enregistrée" is read.
    app::statusBarOf(this);
    // Tab goes from the list to the window's own buttons, down the card, then
    // to Valider and Annuler.
    std::vector<QWidget*> order{m_grid};
    order.insert(order.end(), m_extraButtons.begin(), m_extraButtons.end());
    for (QWidget* w : m_formArea->findChildren<QWidget*>())
        if ((w->focusPolicy() & Qt::TabFocus) && w->window() == this &&
            !qobject_cast<QComboBox*>(w->parentWidget()))
            order.push_back(w);
    order.push_back(m_validate);
    order.push_back(m_cancel);
    for (size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
    // Captions and boxes of the card are plain; only its title is bold.
    for (QWidget* w : m_card->findChildren<QWidget*>()) {
        QFont f = w->font();
        f.setBold(false);
        w->setFont(f);
    }
    // What the operator types, ticks or picks on the card (not what is shown
    // when a row is chosen) makes the card one being edited.
    app::watchTyping(m_formArea, [this] { setCardEdited(true); });
    cancel();
}

void RecordScreen::setCardEdited(bool edited) {
    app::setEditing(this, edited && !m_card->isHidden());
}

void RecordScreen::startAdding() {
    m_adding = true;
    m_key.clear();
    m_grid->clearChoice();
    setCardEdited(false);
}

void RecordScreen::chooseRow(int row) {
    const store::Row record = m_grid->record(row);
    const QString key = record.value(m_grid->fieldOf(0)).toString();
    run([&] {
        m_adding = false;
        m_key = key;
        m_mapper->setCurrentIndex(row);
        showRecord(record);
        showStarts();
        m_card->show();
        setCardEdited(false);
    });
}

void RecordScreen::validate() {
    m_savedKey.clear();
    if (!run([&] { saveRecord(); })) return;
    const QString saved = m_savedKey.isEmpty() ? m_key : m_savedKey;
    cancel();
    app::tellSaved(this, saved);
}

void RecordScreen::cancel() {
    m_card->hide();
    setCardEdited(false);
    m_adding = false;
    m_key.clear();
    run([&] { showListing(); });
    afterCancel();
}

void RecordScreen::showListing() {
    if (m_grid->storeModel()->hasQuery())
        m_grid->reload();
    else
        m_grid->setQuery(store(), listing());
}

void RecordScreen::showStarts() {
    // A long value shows its beginning, not its end, like a name or a mail.
    for (QLineEdit* box : findChildren<QLineEdit*>()) box->setCursorPosition(0);
}

void RecordScreen::setGridCaption(const QString& caption) {
    if (!m_gridCaption) {
        m_gridCaption = new QLabel(this);
        m_gridCaption->setObjectName(m_grid->objectName() + QStringLiteral("_caption"));
        m_gridCaption->setAlignment(Qt::AlignCenter);
        QFont f = m_gridCaption->font();
        f.setBold(true);
        m_gridCaption->setFont(f);
        m_main->insertWidget(0, m_gridCaption);
    }
    m_gridCaption->setText(caption);
}

QLineEdit* RecordScreen::textBox(const QString& name, int width) {
    auto* box = new QLineEdit(m_card);
    box->setObjectName(name);
    if (width > 0) box->setFixedWidth(width);
    return box;
}

QLineEdit* RecordScreen::boundBox(const QString& name, const QString& column, int width) {
    QLineEdit* box = shows(textBox(name, width), column);
    m_bound.emplace_back(box, column);
    return box;
}

QLineEdit* RecordScreen::shows(QLineEdit* box, const QString& column) {
    m_shown.emplace_back(box, column);
    return box;
}

QLineEdit* RecordScreen::readOnlyBox(const QString& name, int width) {
    QLineEdit* box = textBox(name, width);
    app::setLocked(box, true);
    box->setFocusPolicy(Qt::NoFocus);
    return box;
}

void RecordScreen::addRow(const QString& label, std::initializer_list<QWidget*> controls,
                          int column) {
    const int row = m_nextRow[column]++;
    // A card in two halves shares the width; a card in one takes it all.
    if (column == 1) m_form->setColumnStretch(3, 1);
    if (!label.isEmpty()) {
        auto* caption = new QLabel(label, m_card);
        caption->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_form->addWidget(caption, row, column * 2);
    }
    auto* line = new QHBoxLayout;
    line->setSpacing(6);
    for (QWidget* w : controls) line->addWidget(w, w->maximumWidth() < QWIDGETSIZE_MAX ? 0 : 1);
    bool anyStretch = false;
    for (QWidget* w : controls) anyStretch |= w->maximumWidth() >= QWIDGETSIZE_MAX;
    if (!anyStretch) line->addStretch(1);
    m_form->addLayout(line, row, column * 2 + 1);
}

std::vector<QRadioButton*> RecordScreen::optionGroup(const QString& name,
                                                     const QStringList& captions,
                                                     QWidget* container) {
    auto* layout = container->layout() ? container->layout() : new QHBoxLayout(container);
    std::vector<QRadioButton*> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto* b = new QRadioButton(captions[i], container);
        b->setObjectName(QStringLiteral("%1_%2").arg(name).arg(i));
        layout->addWidget(b);
        buttons.push_back(b);
    }
    // Choices sit side by side, not spread across the card.
    if (!qobject_cast<QGroupBox*>(container))
        container->setMaximumWidth(container->sizeHint().width() + 24);
    return buttons;
}

QPushButton* RecordScreen::button(const QString& name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    m_extraButtons.push_back(b);
    return b;
}

Card RecordScreen::readBound() const {
    Card card;
    for (const auto& [box, column] : m_bound) card.insert(column, box->text());
    return card;
}

void RecordScreen::clearBound() {
    for (auto& [box, column] : m_bound) box->clear();
}

}  // namespace orve::reference
