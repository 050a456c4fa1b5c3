// Small helpers with which the windows build their controls: every control gets its agreed name.
#pragma once

#include <QString>

class PictureBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

QLabel *NamedLabel(const QString &name, const QString &caption, QWidget *parent);
QPushButton *NamedButton(const QString &name, const QString &caption, QWidget *parent);

/// A thin horizontal line.
QFrame *NamedLine(const QString &name, QWidget *parent);

/// A text field that screen readers announce by its label.
QLineEdit *NamedField(const QString &name, const QString &accessibleName, QWidget *parent);

/// A picture box of a fixed size in logical pixels: a framed white area that shows one picture.
PictureBox *NamedPicture(const QString &name, const QString &accessibleName, int width, int height, QWidget *parent);

/// Marks a field as wrong and names the fault to those who point at it or have it read aloud; an empty fault takes
/// the mark away.
void MarkField(QLineEdit *field, const QString &fault);

/// A line that says that what is shown was not read completely; hidden until it is needed.
QLabel *NamedDoubtLabel(const QString &name, QWidget *parent);
