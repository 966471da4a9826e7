#include "app/ui/ScenarioRunner.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSet>
#include <QSpinBox>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTextEdit>
#include <atomic>

#include "app/ui/DataGrid.h"
#include "store/Formats.h"

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

int columnIndex(QAbstractItemView* view, const QString& column) {
    if (auto* g = qobject_cast<DataGrid*>(view)) {
        const int c = g->columnOf(column);
        if (c >= 0) return c;
    }
    auto* model = view->model();
    for (int c = 0; c < model->columnCount(); ++c)
        if (model->headerData(c, Qt::Horizontal).toString() == column) return c;
    bool ok = false;
    const int n = column.toInt(&ok);
    if (ok && n >= 0 && n < model->columnCount()) return n;
    failWith(QStringLiteral("%1 has no column %2").arg(view->objectName(), column));
}

int rowIndex(QAbstractItemView* view, const QString& row) {
    bool ok = false;
    const int r = row.toInt(&ok);
    if (!ok || r < 0 || r >= view->model()->rowCount())
        failWith(QStringLiteral("%1 has no row %2 (%3 rows)")
                     .arg(view->objectName(), row)
                     .arg(view->model()->rowCount()));
    return r;
}

QString runSql(Session* session, const QString& file, const QString& query) {
    if (!session) failWith(QStringLiteral("no installation is open"));
    const auto f = store::fileByShortName(file);
    if (!f) failWith(QStringLiteral("unknown file %1").arg(file));
    static std::atomic<int> counter{0};
    const QString name = QStringLiteral("scenario-sql-%1").arg(++counter);
    QStringList rows;
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(session->store().path(*f));
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000"));
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            if (!q.exec(query)) {
                error = q.lastError().text();
            } else {
                while (q.next()) {
                    QStringList cols;
                    for (int i = 0; i < q.record().count(); ++i) cols << q.value(i).toString();
                    rows << cols.join('|');
                }
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!error.isEmpty()) failWith(QStringLiteral("sql failed: %1").arg(error));
    return rows.join(';');
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
                current += line[++i];
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
        const QStringList w = scenarioWords(line);
        const QString verb = w.value(0);
        auto need = [&](int n) {
            if (w.size() < n + 1)
                failWith(QStringLiteral("%1 needs %2 argument(s)").arg(verb).arg(n));
        };
        if (verb != QStringLiteral("expect-message") && !m_dialogs.shown().empty())
            failWith(QStringLiteral("unexpected message: %1").arg(m_dialogs.takeShown()));

        if (verb == QStringLiteral("today")) {
            need(1);
            const auto d = format::parseDisplayDate(w[1]);
            if (!d) failWith(QStringLiteral("not a date"));
            if (!m_session) failWith(QStringLiteral("no installation is open"));
            m_session->clock().setToday(*d);
        } else if (verb == QStringLiteral("login")) {
            need(1);
            setText(findControl(QStringLiteral("txt_login")), w[1]);
            setText(findControl(QStringLiteral("txt_pwd")), w.value(2));
            control<QAbstractButton>(QStringLiteral("Cmdok_login"), "button")->click();
        } else if (verb == QStringLiteral("menu")) {
            need(1);
            auto* action = control<QAction>(w[1], "menu item");
            if (!actionUsable(action)) failWith(QStringLiteral("%1 is greyed").arg(w[1]));
            action->trigger();
        } else if (verb == QStringLiteral("set")) {
            need(1);
            setText(findControl(w[1]), w.value(2));
        } else if (verb == QStringLiteral("click")) {
            need(1);
            QObject* o = findControl(w[1]);
            auto* widget = qobject_cast<QWidget*>(o);
            if (widget && !widget->isEnabled())
                failWith(QStringLiteral("%1 is disabled").arg(w[1]));
            if (widget && !widget->isVisible()) failWith(QStringLiteral("%1 is hidden").arg(w[1]));
            if (auto* b = qobject_cast<QAbstractButton*>(o)) {
                b->click();
            } else if (!QMetaObject::invokeMethod(o, "clicked")) {
                failWith(QStringLiteral("%1 cannot be clicked").arg(w[1]));
            }
        } else if (verb == QStringLiteral("pick")) {
            need(2);
            auto* view = grid(w[1]);
            const int row = rowIndex(view, w[2]);
            if (auto* g = qobject_cast<DataGrid*>(view)) {
                g->choose(row);
            } else {
                view->setCurrentIndex(view->model()->index(row, 0));
                emit view->clicked(view->model()->index(row, 0));
            }
        } else if (verb == QStringLiteral("edit")) {
            need(4);
            auto* view = grid(w[1]);
            const int row = rowIndex(view, w[2]);
            const int col = columnIndex(view, w[3]);
            if (auto* g = qobject_cast<DataGrid*>(view)) {
                g->editCell(row, col, w[4]);
            } else {
                view->model()->setData(view->model()->index(row, col), w[4]);
            }
        } else if (verb == QStringLiteral("answer")) {
            need(1);
            m_dialogs.queueAnswer(yesNo(w[1]));
        } else if (verb == QStringLiteral("choose")) {
            need(1);
            m_dialogs.queueChoice(w[1]);
        } else if (verb == QStringLiteral("expect-message")) {
            need(1);
            if (m_dialogs.shown().empty()) failWith(QStringLiteral("no message was shown"));
            const QString shown = m_dialogs.takeShown();
            if (shown != w[1]) failWith(QStringLiteral("message was \"%1\"").arg(shown));
        } else if (verb == QStringLiteral("expect")) {
            need(1);
            const QString text = textOf(findControl(w[1]));
            if (text != w.value(2)) failWith(QStringLiteral("text is \"%1\"").arg(text));
        } else if (verb == QStringLiteral("expect-cell")) {
            need(4);
            auto* view = grid(w[1]);
            const int row = rowIndex(view, w[2]);
            const int col = columnIndex(view, w[3]);
            const QString text = view->model()->index(row, col).data().toString();
            if (text != w[4]) failWith(QStringLiteral("cell is \"%1\"").arg(text));
        } else if (verb == QStringLiteral("expect-rows")) {
            need(2);
            QObject* o = findControl(w[1]);
            int rows = -1;
            if (auto* v = qobject_cast<QAbstractItemView*>(o)) rows = v->model()->rowCount();
            if (auto* c = qobject_cast<QComboBox*>(o)) rows = c->count();
            if (rows < 0) failWith(QStringLiteral("%1 has no rows").arg(w[1]));
            if (QString::number(rows) != w[2]) failWith(QStringLiteral("%1 rows").arg(rows));
        } else if (verb == QStringLiteral("expect-enabled")) {
            need(2);
            QObject* o = findControl(w[1]);
            bool enabled = false;
            if (auto* a = qobject_cast<QAction*>(o)) {
                enabled = actionUsable(a);
            } else if (auto* wd = qobject_cast<QWidget*>(o)) {
                enabled = wd->isEnabled();
            }
            if (enabled != yesNo(w[2]))
                failWith(QStringLiteral("enabled is %1").arg(enabled ? "yes" : "no"));
        } else if (verb == QStringLiteral("expect-visible")) {
            need(2);
            const bool visible = objectVisible(findControl(w[1]));
            if (visible != yesNo(w[2]))
                failWith(QStringLiteral("visible is %1").arg(visible ? "yes" : "no"));
        } else if (verb == QStringLiteral("expect-checked")) {
            need(2);
            auto* b = control<QAbstractButton>(w[1], "button");
            if (b->isChecked() != yesNo(w[2]))
                failWith(QStringLiteral("checked is %1").arg(b->isChecked() ? "yes" : "no"));
        } else if (verb == QStringLiteral("sql")) {
            const QString rest = line.mid(3).trimmed();
            const QString file = rest.section(' ', 0, 0);
            const int arrow = rest.indexOf(QStringLiteral("=>"));
            if (file.isEmpty() || arrow < 0) failWith(QStringLiteral("sql FILE QUERY => EXPECTED"));
            const QString query = rest.mid(file.size(), arrow - file.size()).trimmed();
            QString expected = rest.mid(arrow + 2).trimmed();
            if (expected.size() >= 2 && expected.startsWith('"') && expected.endsWith('"'))
                expected = expected.mid(1, expected.size() - 2);
            const QString got = runSql(m_session, file, query);
            if (got != expected) failWith(QStringLiteral("got \"%1\"").arg(got));
        } else if (verb == QStringLiteral("close")) {
            need(1);
            auto* widget = control<QWidget>(w[1], "window");
            widget->window()->close();
        } else {
            failWith(QStringLiteral("unknown statement"));
        }
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
