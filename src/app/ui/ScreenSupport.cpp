#include "app/ui/ScreenSupport.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QMainWindow>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>

#include "store/Seasons.h"

namespace orve::app {

namespace {

const char* const kEditingProperty = "orve_editing";

// Room kept for the title bar and borders the window system adds around a
// window it has not drawn yet: the largest of the usual desktops.
const QMargins kAssumedFrame(8, 38, 8, 8);

QScreen* screenOf(QWidget* window) {
    if (QScreen* s = window->screen()) return s;
    return QGuiApplication::primaryScreen();
}

// The frame the system draws around the window, as far as it is known.
QMargins frameOf(QWidget* window) {
    if (window->isVisible()) {
        const QRect frame = window->frameGeometry();
        const QRect inner = window->geometry();
        if (frame != inner)
            return QMargins(inner.left() - frame.left(), inner.top() - frame.top(),
                            frame.right() - inner.right(), frame.bottom() - inner.bottom());
    }
    return kAssumedFrame;
}

QSize roomFor(const QRect& area, const QMargins& frame) {
    return QSize(area.width() - frame.left() - frame.right(),
                 area.height() - frame.top() - frame.bottom());
}

// A row of the window's buttons (Valider, Annuler, Fermer...): nothing but
// buttons and blank space.
bool isButtonRow(QLayoutItem* item) {
    if (!item) return false;
    if (QWidget* w = item->widget()) {
        if (qobject_cast<QDialogButtonBox*>(w)) return true;
        return w->layout() && isButtonRow(w->layout());
    }
    QLayout* layout = item->layout();
    if (!layout) return false;
    bool anyButton = false;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* child = layout->itemAt(i);
        if (child->spacerItem()) continue;
        if (child->widget() && qobject_cast<QAbstractButton*>(child->widget())) {
            anyButton = true;
            continue;
        }
        return false;
    }
    return anyButton;
}

// A scroll area sized by its content as long as the room allows it.
class FittingScrollArea : public QScrollArea {
  public:
    using QScrollArea::QScrollArea;
    QSize sizeHint() const override {
        QSize s = widget() ? widget()->sizeHint() : QSize(100, 100);
        const int bar = verticalScrollBar()->sizeHint().width();
        return s + QSize(2 * frameWidth() + bar, 2 * frameWidth());
    }
    QSize minimumSizeHint() const override {
        // A few lines of the content and a scroll bar: the rest scrolls.
        const int line = fontMetrics().height();
        QSize s(12 * line, 5 * line);
        if (widget()) s.setWidth(std::min(widget()->minimumSizeHint().width(), 24 * line));
        return s +
               QSize(2 * frameWidth() + verticalScrollBar()->sizeHint().width(), 2 * frameWidth());
    }
};

// Asks before a window with a card being typed into is closed.
class CloseGuard : public QObject {
  public:
    CloseGuard(QWidget* window, Dialogs& dialogs) : QObject(window), m_dialogs(dialogs) {}

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* window = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Close || !window || !isEditing(window)) return false;
        if (!m_dialogs.ask(kCloseWhileEditing)) {
            event->ignore();
            return true;
        }
        setEditing(window, false);
        return false;
    }

  private:
    Dialogs& m_dialogs;
};

}  // namespace

void centreOnScreen(QWidget* window) {
    QScreen* screen = screenOf(window);
    if (!screen) return;
    const QRect area = screen->availableGeometry();
    const QSize size = window->frameGeometry().size();
    window->move(area.left() + (area.width() - size.width()) / 2,
                 area.top() + (area.height() - size.height()) / 2);
}

QScrollArea* newScrollArea(QWidget* content, QWidget* parent) {
    auto* scroll = new FittingScrollArea(parent);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    return scroll;
}

QScrollArea* scrollContent(QWidget* window) {
    if (auto* done = window->findChild<QScrollArea*>(QStringLiteral("defilement"),
                                                     Qt::FindDirectChildrenOnly))
        return done;
    QLayout* layout = window->layout();
    if (!layout || qobject_cast<QMainWindow*>(window)) return nullptr;
    QLayoutItem* buttons = nullptr;
    if (auto* box = qobject_cast<QBoxLayout*>(layout);
        box && box->direction() == QBoxLayout::TopToBottom && box->count() > 1 &&
        isButtonRow(box->itemAt(box->count() - 1)))
        buttons = box->takeAt(box->count() - 1);
    const QMargins margins = layout->contentsMargins();
    auto* content = new QWidget;
    content->setObjectName(window->objectName() + QStringLiteral("_contenu"));
    // Moves the layout and every widget it holds into the scrolled content.
    content->setLayout(layout);
    QScrollArea* scroll = newScrollArea(content, window);
    scroll->setObjectName(QStringLiteral("defilement"));
    auto* outer = new QVBoxLayout(window);
    outer->setContentsMargins(0, 0, 0, margins.bottom());
    outer->setSpacing(layout->spacing() >= 0 ? layout->spacing() : 6);
    outer->addWidget(scroll, 1);
    if (buttons) {
        if (QWidget* w = buttons->widget()) {
            w->setParent(window);
            outer->addWidget(w);
            delete buttons;
        } else if (QLayout* row = buttons->layout()) {
            row->setContentsMargins(margins.left(), 0, margins.right(), 0);
            outer->addLayout(row);
        }
    }
    return scroll;
}

void fitOnScreen(QWidget* window) {
    QScreen* screen = screenOf(window);
    if (!screen) return;
    const QRect area = screen->availableGeometry();
    const QMargins frame = frameOf(window);
    const QSize room = roomFor(area, frame);
    if (QLayout* l = window->layout()) l->activate();
    // What the window asks for: its own size when it set one, else its content's.
    QSize wanted = window->testAttribute(Qt::WA_Resized) ? window->size() : window->sizeHint();
    QSize minimum = window->minimumSizeHint().expandedTo(window->minimumSize());
    if (minimum.width() > room.width() || minimum.height() > room.height()) {
        if (scrollContent(window)) {
            if (QLayout* l = window->layout()) l->activate();
            minimum = window->minimumSizeHint();
        }
    }
    const QSize size = wanted.expandedTo(minimum).boundedTo(room);
    window->resize(size);
    window->move(
        area.left() + std::max(0, (area.width() - size.width() - frame.left() - frame.right()) / 2),
        area.top() +
            std::max(0, (area.height() - size.height() - frame.top() - frame.bottom()) / 2));
}

void keepOnScreen(QWidget* window) {
    const auto place = [](QWidget* w) {
        QScreen* screen = screenOf(w);
        if (!screen || !w->isVisible()) return;
        const QRect area = screen->availableGeometry();
        const QMargins frame = frameOf(w);
        QRect outer = w->geometry().marginsAdded(frame);
        if (area.contains(outer)) return;
        // Too big: the content shrinks (it scrolls); then it is put back inside.
        const QSize room = roomFor(area, frame);
        if (outer.width() > area.width() || outer.height() > area.height()) {
            w->resize(w->size().boundedTo(room));
            outer = w->geometry().marginsAdded(frame);
        }
        const int x = std::clamp(outer.left(), area.left(),
                                 std::max(area.left(), area.right() - outer.width() + 1));
        const int y = std::clamp(outer.top(), area.top(),
                                 std::max(area.top(), area.bottom() - outer.height() + 1));
        w->move(x, y);
    };
    place(window);
    // Under a window manager the frame is known once it has been drawn.
    QPointer<QWidget> later(window);
    QTimer::singleShot(0, window, [later, place] {
        if (later) place(later);
    });
}

void makeScreenWindow(QWidget* screen, const QString& name, const QString& title) {
    screen->setObjectName(name);
    screen->setWindowTitle(title);
    screen->setWindowFlag(Qt::Window, true);
    screen->setAttribute(Qt::WA_DeleteOnClose, true);
}

QStatusBar* statusBarOf(QWidget* anywhere) {
    QWidget* window = anywhere->window();
    if (auto* main = qobject_cast<QMainWindow*>(window)) return main->statusBar();
    if (auto* bar = window->findChild<QStatusBar*>(QStringLiteral("barre_etat"),
                                                   Qt::FindDirectChildrenOnly))
        return bar;
    auto* column = qobject_cast<QBoxLayout*>(window->layout());
    if (!column || column->direction() != QBoxLayout::TopToBottom) return nullptr;
    auto* bar = new QStatusBar(window);
    bar->setObjectName(QStringLiteral("barre_etat"));
    bar->setSizeGripEnabled(false);
    column->addWidget(bar);
    return bar;
}

void showStatus(QWidget* anywhere, const QString& text) {
    if (QStatusBar* bar = statusBarOf(anywhere)) bar->showMessage(text, 15000);
}

void tellSaved(QWidget* anywhere, const QString& key) {
    showStatus(anywhere, key.trimmed().isEmpty()
                             ? kRecordSaved
                             : kRecordSaved + QStringLiteral(" : ") + key.trimmed());
}

void setLocked(QLineEdit* box, bool locked) {
    box->setReadOnly(locked);
    box->setFocusPolicy(locked ? Qt::ClickFocus : Qt::StrongFocus);
    if (locked) {
        QPalette p = box->palette();
        p.setColor(QPalette::Base, p.color(QPalette::Window));
        box->setPalette(p);
    } else {
        box->setPalette(QPalette());
    }
}

void setEditing(QWidget* anywhere, bool editing) {
    anywhere->window()->setProperty(kEditingProperty, editing);
}

bool isEditing(const QWidget* window) {
    return window->window()->property(kEditingProperty).toBool();
}

void watchTyping(QWidget* area, const std::function<void()>& typed) {
    for (auto* box : area->findChildren<QLineEdit*>())
        QObject::connect(box, &QLineEdit::textEdited, area, typed);
    for (auto* button : area->findChildren<QAbstractButton*>())
        if (button->isCheckable()) QObject::connect(button, &QAbstractButton::clicked, area, typed);
    for (auto* list : area->findChildren<QComboBox*>())
        QObject::connect(list, &QComboBox::activated, area, typed);
}

void askBeforeClosing(QWidget* window, Dialogs& dialogs) {
    window->installEventFilter(new CloseGuard(window, dialogs));
}

void fillItems(QComboBox* combo, const ListItems& items) {
    combo->clear();
    combo->addItem(kChoose);
    for (const auto& item : items) combo->addItem(item.text());
}

void showItem(QComboBox* combo, const QString& code) {
    for (int i = 1; i < combo->count(); ++i) {
        if (itemCode(combo->itemText(i)).compare(code.trimmed(), Qt::CaseInsensitive) == 0) {
            combo->setCurrentIndex(i);
            return;
        }
    }
    combo->setCurrentIndex(0);
}

QComboBox* newSeasonChooser(int workingSeason, QWidget* parent) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(QStringLiteral("cbo_saison"));
    combo->addItems(store::seasonChoices(workingSeason));
    combo->setCurrentText(QString::number(workingSeason));
    return combo;
}

}  // namespace orve::app
