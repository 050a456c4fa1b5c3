#include "ui/shown_record.h"

#include "handheld/loco_record.h"
#include "platform/text.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>

namespace
{

template <typename Control> const Control *MainWindowControl(const char *name)
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window->objectName() == u"VeskaWin")
            return window->findChild<Control *>(QLatin1String(name));
    }
    return nullptr;
}

} // namespace

ShownRecord::ShownRecord()
    : name(MainWindowControl<QLineEdit>("LoknameTxt"))
    , multiUni(MainWindowControl<QCheckBox>("MultiUniChk"))
    , nameBefore(name != nullptr ? name->text() : QString())
    , multiUniBefore(multiUni != nullptr && multiUni->isChecked())
{
}

ShownRecord::~ShownRecord()
{
    if (name != nullptr && name->text() != nameBefore)
        LokName = UpperLatin1(name->text());
    if (multiUni != nullptr && multiUni->isChecked() != multiUniBefore)
        MultiUni = multiUni->isChecked() ? 1 : 0;
}
