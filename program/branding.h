// The texts in which the two brandings of the tool differ. One table per branding (app/branding_vk.cpp,
// app/branding_al.cpp) is linked into each program.
#pragma once

#include "platform/rooms.h"

#include <QString>

namespace hr::program
{

struct Branding {
    QString code;        // "VK" or "AL"
    QString windowTitle; // also the front part of the title with the handheld's version
    QString lokDataMenuCaption;
    QString productLabel;           // caption of the options menu
    QString directInterfaceCaption; // option of interface kind 3 in the selection window
    QString warningLine;            // of the start-up warning
    QString toolTitle;              // question box of the switch-off time
    QString fktSymTitle;            // question box of the function symbol reset
    QString progInfoTitle;
    QString progInfoLine;
    QString saveDialogTitle; // file dialogs of backup and restore
    QString showDialogTitle; // file dialog of the backup viewer
    QString importTitle;     // window of the downloaded locos
    QString downloadText;    // progress text of the download's first step
    QString noStationText;
};

/// The branding that this program was linked with.
const Branding &TheBranding();

} // namespace hr::program
