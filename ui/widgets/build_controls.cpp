#include "ui/widgets/build_controls.h"

#include "ui/widgets/picture_box.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPalette>
#include <QPushButton>
#include <QUndoStack>

namespace hr::ui
{

namespace
{

constexpr int TextRoom = 6; // beside a button's caption; the main window must fit a small screen

/// Enter presses the button that has the focus, in every window.
class EnterButton : public QPushButton
{
public:
    using QPushButton::QPushButton;

    [[nodiscard]] QSize sizeHint() const override { return QPushButton::sizeHint() + QSize(TextRoom, 0); }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            click();
        else
            QPushButton::keyPressEvent(event);
    }
};

} // namespace

QLabel *NamedLabel(const QString &name, const QString &caption, QWidget *parent)
{
    auto *label = new QLabel(caption, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton *NamedButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new EnterButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

QCheckBox *NamedCheck(const QString &name, const QString &caption, QWidget *parent)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    return box;
}

QFrame *NamedLine(const QString &name, QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setObjectName(name);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QLineEdit *NamedField(const QString &name, const QString &accessibleName, QWidget *parent)
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setAccessibleName(accessibleName);
    return field;
}

PictureBox *NamedPicture(const QString &name, const QString &accessibleName, int width, int height, QWidget *parent)
{
    auto *picture = new PictureBox(width, height, parent);
    picture->setObjectName(name);
    picture->setAccessibleName(accessibleName);
    return picture;
}

QAction *NamedAction(const QString &name, const QString &caption, const QKeySequence &key, QWidget *owner,
    const std::function<void()> &work)
{
    auto *action = new QAction(caption, owner);
    action->setObjectName(name);
    action->setShortcut(key);
    owner->addAction(action);
    QObject::connect(action, &QAction::triggered, owner, work);
    return action;
}

void AddUndoActions(
    QWidget *owner, const QUndoStack &steps, const std::function<void()> &undo, const std::function<void()> &redo)
{
    auto *back =
        NamedAction(QStringLiteral("UndoAction"), QStringLiteral("Rückgängig"), Qt::CTRL | Qt::Key_Z, owner, undo);
    auto *again =
        NamedAction(QStringLiteral("RedoAction"), QStringLiteral("Wiederholen"), Qt::CTRL | Qt::Key_Y, owner, redo);
    again->setShortcuts({again->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    back->setEnabled(steps.canUndo());
    again->setEnabled(steps.canRedo());
    QObject::connect(&steps, &QUndoStack::canUndoChanged, back, &QAction::setEnabled);
    QObject::connect(&steps, &QUndoStack::canRedoChanged, again, &QAction::setEnabled);
}

void FollowClipboard(QAction *paste)
{
    const auto follow = [paste] {
        const QMimeData *held = QGuiApplication::clipboard()->mimeData();
        paste->setEnabled(held != nullptr && held->hasText());
    };
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, paste, follow);
    follow();
}

void MarkField(QLineEdit *field, const QString &fault)
{
    constexpr QColor faultColour(255, 214, 214);
    QPalette palette;
    if (!fault.isEmpty()) {
        palette.setColor(QPalette::Base, faultColour);
        palette.setColor(QPalette::Text, Qt::black);
    }
    field->setPalette(palette);
    field->setToolTip(fault);
    field->setAccessibleDescription(fault);
}

QLabel *NamedDoubtLabel(const QString &name, QWidget *parent)
{
    auto *label = NamedLabel(name, QStringLiteral("nicht vollständig gelesen"), parent);
    label->hide();
    return label;
}

QLabel *NamedChangedLabel(const QString &name, QWidget *parent)
{
    auto *label = NamedLabel(name, QStringLiteral("geändert, nicht geschrieben"), parent);
    label->hide();
    return label;
}

QLabel *NamedRemark(const QString &name, QWidget *parent)
{
    auto *label = NamedLabel(name, QString(), parent);
    label->setMinimumHeight(label->fontMetrics().height());
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

void SameWidth(const QList<QPushButton *> &buttons)
{
    int width = 0;
    for (const QPushButton *button : buttons)
        width = qMax(width, button->sizeHint().width());
    for (QPushButton *button : buttons)
        button->setMinimumWidth(width);
}

void KeepPlace(QWidget *control)
{
    QSizePolicy policy = control->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control->setSizePolicy(policy);
}

} // namespace hr::ui
