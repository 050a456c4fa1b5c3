// The loco editor's name and check box stay usable during a long job that works with other loco records.
#pragma once

#include <QString>

class QCheckBox;
class QLineEdit;

/// Lives around a job and around the object that puts the shown record back after it: what the user changed in the main
/// window meanwhile then goes into the current record, so that the window still writes what it shows.
class ShownRecord
{
public:
    ShownRecord();
    ~ShownRecord();
    ShownRecord(const ShownRecord &) = delete;
    ShownRecord &operator=(const ShownRecord &) = delete;

private:
    const QLineEdit *name; // null without a main window
    const QCheckBox *multiUni;
    QString nameBefore;
    bool multiUniBefore;
};
