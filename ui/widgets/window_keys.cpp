#include "ui/widgets/window_keys.h"

#include "ui/widgets/build_controls.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QShortcut>

#include <algorithm>

namespace hr::ui
{

namespace
{

/// The letter or digit that a key event types; empty for every other key and for commands.
QString TypedCharacter(const QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return {};
    const auto *key = static_cast<const QKeyEvent *>(event);
    const bool command = (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    const bool character = !key->text().isEmpty() && key->text().front().isLetterOrNumber();
    return character && !command ? key->text() : QString();
}

/// Sends what is typed on a list to its search field; Down leads back from the field to the list.
class TypeIntoField : public QObject
{
public:
    TypeIntoField(QLineEdit *searchField, QAbstractItemView *list) : QObject(list), field(searchField), view(list)
    {
        list->installEventFilter(this);
        field->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == field)
            return goesDown(event);
        const QString typed = TypedCharacter(event);
        if (typed.isEmpty())
            return QObject::eventFilter(watched, event);
        field->setFocus();
        field->insert(typed);
        return true;
    }

private:
    bool goesDown(const QEvent *event)
    {
        const bool down =
            event->type() == QEvent::KeyPress && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Down;
        if (down)
            view->setFocus();
        return down;
    }

    QLineEdit *field;
    QAbstractItemView *view;
};

class MenuLetters : public QObject
{
public:
    explicit MenuLetters(QMenu *opened) : QObject(opened), menu(opened) { menu->installEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const QString typed = TypedCharacter(event);
        return typed.isEmpty() ? QObject::eventFilter(watched, event) : goTo(typed);
    }

private:
    bool goTo(const QString &letter)
    {
        QList<QAction *> fitting = menu->actions();
        fitting.removeIf([&letter](const QAction *item) {
            return !item->isVisible() || !item->isEnabled()
                || !item->text().trimmed().startsWith(letter, Qt::CaseInsensitive);
        });
        if (fitting.isEmpty())
            return true;
        menu->setActiveAction(fitting.at((fitting.indexOf(menu->activeAction()) + 1) % fitting.size()));
        if (fitting.size() == 1) {
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
            QCoreApplication::sendEvent(menu, &enter);
        }
        return true;
    }

    QMenu *menu;
};

} // namespace

void AltKey(QWidget *target, Qt::Key key)
{
    if (auto *button = qobject_cast<QAbstractButton *>(target)) {
        button->setShortcut(Qt::ALT | key);
        return;
    }
    auto *shortcut = new QShortcut(Qt::ALT | key, target);
    QObject::connect(
        shortcut, &QShortcut::activated, target, [target] { target->setFocus(Qt::ShortcutFocusReason); });
}

void AltKey(QMenu *menu, Qt::Key key)
{
    auto *bar = qobject_cast<QMenuBar *>(menu->parentWidget());
    new MenuLetters(menu);
    QObject::connect(new QShortcut(Qt::ALT | key, bar->window()), &QShortcut::activated, menu,
        [bar, menu] { bar->setActiveAction(menu->menuAction()); });
}

void TabToChosen(const QList<QRadioButton *> &group)
{
    const auto update = [group] {
        const auto chosen = std::ranges::find_if(group, &QRadioButton::isChecked);
        QRadioButton *const entered = chosen != group.end() ? *chosen : group.front();
        for (QRadioButton *option : group)
            option->setFocusPolicy(option == entered ? Qt::StrongFocus : Qt::ClickFocus);
    };
    for (QRadioButton *option : group)
        QObject::connect(option, &QRadioButton::toggled, option, update);
    update();
}

void TabInOrder(const QList<QWidget *> &controls)
{
    for (qsizetype i = 1; i < controls.size(); ++i)
        QWidget::setTabOrder(controls.at(i - 1), controls.at(i));
}

void SearchIn(QLineEdit *field, QAbstractItemView *list)
{
    new TypeIntoField(field, list);
    NamedAction(
        QStringLiteral("SuchenAction"), QStringLiteral("Suchen"), QKeySequence::Find, list->window(), [field] {
            field->setFocus(Qt::ShortcutFocusReason);
            field->selectAll();
        });
}

} // namespace hr::ui
