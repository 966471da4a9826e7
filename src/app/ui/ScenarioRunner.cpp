#include "app/ui/ScenarioRunner.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSet>
#include <QSpinBox>
#include <QSqlRecord>
#include <QStatusBar>
#include <QTextEdit>

#include "app/ui/DataGrid.h"
#include "store/Formats.h"
#include "store/Refusal.h"

namespace orve::app {

namespace {

struct Failure {
    QString reason;
};

[[noreturn]] void failWith(const QString& reason) { throw Failure{reason}; }

void settle() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

bool objectVisible(QObject* o) {
    if (auto* w = qobject_cast<QWidget*>(o)) return w->isVisible();
    if (auto* a = qobject_cast<QAction*>(o)) return a->isVisible();
    return false;
}

// "NAME", or "WINDOW.NAME" to take NAME inside one window only (the menu's
// Frame1 and a screen's Frame1 are two controls of the same name).
QObject* findControl(const QString& qualified) {
    const QString window = qualified.contains('.') ? qualified.section('.', 0, 0) : QString();
    const QString name = window.isEmpty() ? qualified : qualified.section('.', 1);
    QSet<QObject*> found;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (!window.isEmpty() && top->objectName() != window) continue;
        if (top->objectName() == name) found.insert(top);
        for (QObject* o : top->findChildren<QObject*>(name)) found.insert(o);
    }
    if (found.isEmpty()) failWith(QStringLiteral("no control named %1").arg(qualified));
    if (found.size() == 1) return *found.begin();
    QList<QObject*> visible;
    for (QObject* o : found)
        if (objectVisible(o)) visible << o;
    if (visible.size() == 1) return visible.first();
    failWith(QStringLiteral("%1 controls named %2 (%3 visible)")
                 .arg(found.size())
                 .arg(name)
                 .arg(visible.size()));
}

template <typename T>
T* control(const QString& name, const char* kind) {
    QObject* o = findControl(name);
    if (auto* t = qobject_cast<T*>(o)) return t;
    failWith(QStringLiteral("%1 is not a %2").arg(name, QString::fromLatin1(kind)));
}

bool yesNo(const QString& word) {
    if (word == QStringLiteral("yes")) return true;
    if (word == QStringLiteral("no")) return false;
    failWith(QStringLiteral("expected yes or no, got %1").arg(word));
}

// An action is usable when it and every menu above it are enabled.
bool actionUsable(QAction* action) {
    if (!action->isEnabled() || !action->isVisible()) return false;
    for (QObject* p = action->parent(); p; p = p->parent()) {
        if (auto* menu = qobject_cast<QMenu*>(p)) {
            if (!menu->menuAction()->isEnabled()) return false;
        }
    }
    return true;
}

QString textOf(QObject* o) {
    if (auto* w = qobject_cast<QWidget*>(o); w && w->isWindow() && !qobject_cast<QMenu*>(w))
        return w->windowTitle();
    if (auto* e = qobject_cast<QLineEdit*>(o)) return e->text();
    if (auto* b = qobject_cast<QStatusBar*>(o)) return b->currentMessage();
    if (auto* e = qobject_cast<QTextEdit*>(o)) return e->toPlainText();
    if (auto* e = qobject_cast<QPlainTextEdit*>(o)) return e->toPlainText();
    if (auto* c = qobject_cast<QComboBox*>(o)) return c->currentText();
    if (auto* l = qobject_cast<QLabel*>(o)) return l->text();
    if (auto* b = qobject_cast<QAbstractButton*>(o)) return b->text();
    if (auto* g = qobject_cast<QGroupBox*>(o)) return g->title();
    if (auto* a = qobject_cast<QAction*>(o)) return a->text();
    if (auto* s = qobject_cast<QSpinBox*>(o)) return QString::number(s->value());
    if (auto* m = qobject_cast<QMenu*>(o)) return m->title();
    failWith(QStringLiteral("%1 has no text").arg(o->objectName()));
}

void setText(QObject* o, const QString& text) {
    auto* w = qobject_cast<QWidget*>(o);
    if (w && !w->isEnabled()) failWith(QStringLiteral("%1 is disabled").arg(o->objectName()));
    if (auto* e = qobject_cast<QLineEdit*>(o)) {
        if (e->isReadOnly()) failWith(QStringLiteral("%1 is read-only").arg(o->objectName()));
        e->setText(text);
        emit e->textEdited(e->text());
        emit e->editingFinished();
        return;
    }
    if (auto* e = qobject_cast<QTextEdit*>(o)) return e->setPlainText(text);
    if (auto* e = qobject_cast<QPlainTextEdit*>(o)) return e->setPlainText(text);
    if (auto* s = qobject_cast<QSpinBox*>(o)) return s->setValue(text.toInt());
    if (auto* c = qobject_cast<QComboBox*>(o)) {
        int index = c->findText(text, Qt::MatchExactly);
        if (index < 0) index = c->findText(text, Qt::MatchStartsWith);
        if (index < 0) {
            if (!c->isEditable())
                failWith(QStringLiteral("%1 has no item %2").arg(o->objectName(), text));
            c->setEditText(text);
            emit c->editTextChanged(text);
            return;
        }
        c->setCurrentIndex(index);
        emit c->activated(index);
        emit c->textActivated(c->itemText(index));
        return;
    }
    failWith(QStringLiteral("cannot type into %1").arg(o->objectName()));
}

QAbstractItemView* grid(const QString& name) { return control<QAbstractItemView>(name, "grid"); }

// A grid reads its rows as it scrolls; a scenario sees what scrolling down would show.
void fetchRowsTo(QAbstractItemModel* model, int row) {
    while ((row < 0 || row >= model->rowCount()) && model->canFetchMore({})) model->fetchMore({});
}

int columnIndex(QAbstractItemView* view, const QString& column) {
    auto* model = view->model();
    int shown = model->columnCount();
    if (auto* g = qobject_cast<DataGrid*>(view)) {
        const int c = g->columnOf(column);
        if (c >= 0) return c;
        // The sections a card maps are not the grid's columns.
        shown = g->storeModel()->shownColumnCount();
    } else {
        for (int c = 0; c < model->columnCount(); ++c)
            if (model->headerData(c, Qt::Horizontal).toString() == column) return c;
    }
    bool ok = false;
    const int n = column.toInt(&ok);
    if (ok && n >= 0 && n < shown) return n;
    failWith(QStringLiteral("%1 has no column %2").arg(view->objectName(), column));
}

int rowIndex(QAbstractItemView* view, const QString& row) {
    bool ok = false;
    const int r = row.toInt(&ok);
    if (ok) fetchRowsTo(view->model(), r);
    if (!ok || r < 0 || r >= view->model()->rowCount())
        failWith(QStringLiteral("%1 has no row %2 (%3 rows)")
                     .arg(view->objectName(), row)
                     .arg(view->model()->rowCount()));
    return r;
}

// Through the program's own store, so a scenario checks the same data on
// SQLite files and on a shared server; the file name picks the scratch store.
QString runSql(Session* session, const QString& file, const QString& query) {
    if (!session) failWith(QStringLiteral("no installation is open"));
    const auto f = store::fileByShortName(file);
    if (!f) failWith(QStringLiteral("unknown file %1").arg(file));
    const store::Store& store =
        *f == store::File::Tri ? session->store().scratch() : session->store();
    QStringList rows;
    try {
        for (const auto& row : store.select(query)) {
            QStringList cols;
            for (int i = 0; i < row.count(); ++i) cols << row.value(i).toString();
            rows << cols.join('|');
        }
    } catch (const std::exception& e) {
        failWith(QStringLiteral("sql failed: %1").arg(describeError(e)));
    }
    return rows.join(';');
}

// One statement of a scenario: its words, and what it acts on.
struct Statement {
    const QString& line;
    const QStringList& words;
    ScriptedDialogs& dialogs;
    Session* session;
    // The statement's nth word (the verb is word 0); empty when missing.
    QString word(int n) const { return words.value(n); }
};

void today(const Statement& s) {
    const auto d = format::parseDisplayDate(s.word(1));
    if (!d) failWith(QStringLiteral("not a date"));
    if (!s.session) failWith(QStringLiteral("no installation is open"));
    s.session->clock().setToday(*d);
}

void login(const Statement& s) {
    setText(findControl(QStringLiteral("txt_login")), s.word(1));
    setText(findControl(QStringLiteral("txt_pwd")), s.word(2));
    control<QAbstractButton>(QStringLiteral("Cmdok_login"), "button")->click();
}

void menu(const Statement& s) {
    auto* action = control<QAction>(s.word(1), "menu item");
    if (!actionUsable(action)) failWith(QStringLiteral("%1 is greyed").arg(s.word(1)));
    action->trigger();
}

void set(const Statement& s) { setText(findControl(s.word(1)), s.word(2)); }

void click(const Statement& s) {
    QObject* o = findControl(s.word(1));
    auto* widget = qobject_cast<QWidget*>(o);
    if (widget && !widget->isEnabled()) failWith(QStringLiteral("%1 is disabled").arg(s.word(1)));
    if (widget && !widget->isVisible()) failWith(QStringLiteral("%1 is hidden").arg(s.word(1)));
    if (auto* b = qobject_cast<QAbstractButton*>(o)) {
        b->click();
    } else if (!QMetaObject::invokeMethod(o, "clicked")) {
        failWith(QStringLiteral("%1 cannot be clicked").arg(s.word(1)));
    }
}

void pick(const Statement& s) {
    auto* view = grid(s.word(1));
    const int row = rowIndex(view, s.word(2));
    if (auto* g = qobject_cast<DataGrid*>(view)) return g->choose(row);
    const QModelIndex index = view->model()->index(row, 0);
    view->setCurrentIndex(index);
    emit view->clicked(index);
}

void edit(const Statement& s) {
    auto* view = grid(s.word(1));
    const int row = rowIndex(view, s.word(2));
    const int column = columnIndex(view, s.word(3));
    if (auto* g = qobject_cast<DataGrid*>(view)) return g->editCell(row, column, s.word(4));
    view->model()->setData(view->model()->index(row, column), s.word(4));
}

void answer(const Statement& s) { s.dialogs.queueAnswer(yesNo(s.word(1))); }

void choose(const Statement& s) { s.dialogs.queueChoice(s.word(1)); }

void expectMessage(const Statement& s) {
    if (s.dialogs.shown().empty()) failWith(QStringLiteral("no message was shown"));
    const QString shown = s.dialogs.takeShown();
    if (shown != s.word(1)) failWith(QStringLiteral("message was \"%1\"").arg(shown));
}

// A message whose end the scenario cannot know (a folder of the installation).
void expectMessageStart(const Statement& s) {
    if (s.dialogs.shown().empty()) failWith(QStringLiteral("no message was shown"));
    const QString shown = s.dialogs.takeShown();
    if (!shown.startsWith(s.word(1))) failWith(QStringLiteral("message was \"%1\"").arg(shown));
}

// A file the program made; a relative path is taken from the scenario's folder.
void expectFile(const Statement& s) {
    const QFileInfo file(s.word(1));
    if (!file.isFile()) failWith(QStringLiteral("no file %1").arg(file.absoluteFilePath()));
    if (file.size() == 0) failWith(QStringLiteral("%1 is empty").arg(file.absoluteFilePath()));
}

void expectText(const Statement& s) {
    const QString text = textOf(findControl(s.word(1)));
    if (text != s.word(2)) failWith(QStringLiteral("text is \"%1\"").arg(text));
}

void expectCell(const Statement& s) {
    auto* view = grid(s.word(1));
    const int row = rowIndex(view, s.word(2));
    const int column = columnIndex(view, s.word(3));
    // What the operator reads, amounts formatted.
    const QString text = view->model()->index(row, column).data(Qt::DisplayRole).toString();
    if (text != s.word(4)) failWith(QStringLiteral("cell is \"%1\"").arg(text));
}

void expectRows(const Statement& s) {
    QObject* o = findControl(s.word(1));
    int rows = -1;
    if (auto* v = qobject_cast<QAbstractItemView*>(o)) {
        fetchRowsTo(v->model(), -1);
        rows = v->model()->rowCount();
    }
    if (auto* c = qobject_cast<QComboBox*>(o)) rows = c->count();
    if (rows < 0) failWith(QStringLiteral("%1 has no rows").arg(s.word(1)));
    if (QString::number(rows) != s.word(2)) failWith(QStringLiteral("%1 rows").arg(rows));
}

void expectEnabled(const Statement& s) {
    QObject* o = findControl(s.word(1));
    bool enabled = false;
    if (auto* a = qobject_cast<QAction*>(o)) {
        enabled = actionUsable(a);
    } else if (auto* w = qobject_cast<QWidget*>(o)) {
        enabled = w->isEnabled();
    }
    if (enabled != yesNo(s.word(2)))
        failWith(QStringLiteral("enabled is %1").arg(enabled ? "yes" : "no"));
}

void expectVisible(const Statement& s) {
    const bool visible = objectVisible(findControl(s.word(1)));
    if (visible != yesNo(s.word(2)))
        failWith(QStringLiteral("visible is %1").arg(visible ? "yes" : "no"));
}

void expectChecked(const Statement& s) {
    auto* b = control<QAbstractButton>(s.word(1), "button");
    if (b->isChecked() != yesNo(s.word(2)))
        failWith(QStringLiteral("checked is %1").arg(b->isChecked() ? "yes" : "no"));
}

// "sql FILE QUERY => EXPECTED": the query is taken from the line as written,
// quotes and all, not from its words.
void sql(const Statement& s) {
    const QString rest = s.line.mid(3).trimmed();
    const QString file = rest.section(' ', 0, 0);
    const int arrow = rest.indexOf(QStringLiteral("=>"));
    if (file.isEmpty() || arrow < 0) failWith(QStringLiteral("sql FILE QUERY => EXPECTED"));
    const QString query = rest.mid(file.size(), arrow - file.size()).trimmed();
    QString expected = rest.mid(arrow + 2).trimmed();
    if (expected.size() >= 2 && expected.startsWith('"') && expected.endsWith('"'))
        expected = expected.mid(1, expected.size() - 2);
    const QString got = runSql(s.session, file, query);
    if (got != expected) failWith(QStringLiteral("got \"%1\"").arg(got));
}

void close(const Statement& s) { control<QWidget>(s.word(1), "window")->window()->close(); }

struct Verb {
    int arguments;  // the fewest words after the verb
    void (*run)(const Statement&);
    // Only a statement that reads messages may follow one that showed a message.
    bool readsMessages = false;
};

const QHash<QString, Verb>& verbs() {
    static const QHash<QString, Verb> table{
        {QStringLiteral("today"), {1, today}},
        {QStringLiteral("login"), {1, login}},
        {QStringLiteral("menu"), {1, menu}},
        {QStringLiteral("set"), {1, set}},
        {QStringLiteral("click"), {1, click}},
        {QStringLiteral("pick"), {2, pick}},
        {QStringLiteral("edit"), {4, edit}},
        {QStringLiteral("answer"), {1, answer}},
        {QStringLiteral("choose"), {1, choose}},
        {QStringLiteral("expect-message"), {1, expectMessage, true}},
        {QStringLiteral("expect-message-start"), {1, expectMessageStart, true}},
        {QStringLiteral("expect-file"), {1, expectFile}},
        {QStringLiteral("expect"), {1, expectText}},
        {QStringLiteral("expect-cell"), {4, expectCell}},
        {QStringLiteral("expect-rows"), {2, expectRows}},
        {QStringLiteral("expect-enabled"), {2, expectEnabled}},
        {QStringLiteral("expect-visible"), {2, expectVisible}},
        {QStringLiteral("expect-checked"), {2, expectChecked}},
        {QStringLiteral("sql"), {0, sql}},
        {QStringLiteral("close"), {1, close}},
    };
    return table;
}

}  // namespace

QStringList scenarioWords(const QString& line) {
    QStringList words;
    QString current;
    bool inQuotes = false;
    bool hasWord = false;
    for (int i = 0; i < line.size(); ++i) {
        const QChar ch = line[i];
        if (inQuotes) {
            if (ch == '\\' && i + 1 < line.size()) {
                // \n is a line break, as messages with a second line have.
                const QChar next = line[++i];
                current += next == 'n' ? QChar('\n') : next;
            } else if (ch == '"') {
                inQuotes = false;
            } else {
                current += ch;
            }
        } else if (ch == '"') {
            inQuotes = true;
            hasWord = true;
        } else if (ch.isSpace()) {
            if (hasWord) words << current;
            current.clear();
            hasWord = false;
        } else {
            current += ch;
            hasWord = true;
        }
    }
    if (hasWord) words << current;
    return words;
}

ScenarioRunner::ScenarioRunner(ScriptedDialogs& dialogs, Session* session)
    : m_dialogs(dialogs), m_session(session) {}

QString ScenarioRunner::run(const QString& script) {
    const QStringList lines = script.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        const QString reason = runStatement(line);
        if (!reason.isEmpty())
            return QStringLiteral("line %1: %2: %3").arg(i + 1).arg(line, reason);
    }
    if (!m_dialogs.shown().empty())
        return QStringLiteral("end: unexpected message: %1").arg(m_dialogs.shown().front());
    if (m_dialogs.answersPending()) return QStringLiteral("end: an answer was never asked for");
    return {};
}

QString ScenarioRunner::runStatement(const QString& line) {
    try {
        const QStringList words = scenarioWords(line);
        const QString name = words.value(0);
        const auto found = verbs().constFind(name);
        const Verb* verb = found == verbs().constEnd() ? nullptr : &found.value();
        if (!(verb && verb->readsMessages) && !m_dialogs.shown().empty())
            failWith(QStringLiteral("unexpected message: %1").arg(m_dialogs.takeShown()));
        if (!verb) failWith(QStringLiteral("unknown statement"));
        if (words.size() < verb->arguments + 1)
            failWith(QStringLiteral("%1 needs %2 argument(s)").arg(name).arg(verb->arguments));
        verb->run({line, words, m_dialogs, m_session});
        settle();
        if (!m_dialogs.failure().isEmpty()) {
            const QString f = m_dialogs.failure();
            m_dialogs.clearFailure();
            failWith(f);
        }
        return {};
    } catch (const Failure& f) {
        return f.reason;
    } catch (const std::exception& e) {
        return QStringLiteral("error: %1").arg(QString::fromUtf8(e.what()));
    }
}

}  // namespace orve::app
