// Opening and closing the port, and bringing the interface behind it into LocoNet pass-through mode.
//
//   kind            port                     set-up
//   1 (Orvanto 1)   2400 then 19200,n,8,2    break, then three text commands, each answered by the prompt "]"
//   2 (48230)       never opened             none: only the choice is recorded
//   3 (direct)      115200,n,8,1             none
#pragma once

#include "link/link_state.h"
#include "program/outcome.h"

#include <QString>

namespace hr::link
{

/// Sets the interface up as InterfaceType says, and writes konf\ComPort.inf when it worked. With kind 2 and with no
/// kind nothing is opened, which counts as done. After a failure the user has seen "ComPort konnte nicht geöffnet werden!"
/// (NotOpened) or "Zeichenübertragung nicht möglich!" (a text step of kind 1), and the port is closed.
Outcome OpenLink();

/// The same without writing the settings.
Outcome SetUpLink();

/// The set-up of kind 3 and of kind 1, without a message for a port that cannot be opened (NotOpened); a failed text step of
/// kind 1 shows "Zeichenübertragung nicht möglich!" / "Orvanto 1:" (NoAnswer), a lost port nothing (PortLost).
Outcome SetupDirectInterface();
Outcome SetupOrvanto1Interface();

/// Sends a text one character at a time while CTS is on. NotSent when it took more than 5 s.
Outcome SendRawText(const QString &text);

/// Closes the port, clears HandreglerGefunden and forgets half sent and half received messages.
void ClosePort();

/// The device vanished: clears the found flag and tells the user once, unless a job will tell it.
void HandlePortLoss();

/// While one lives, the loss of the port is told by its owner at the end (one box, not two on top of each other).
class TellsPortLoss
{
public:
    TellsPortLoss();
    ~TellsPortLoss();
    TellsPortLoss(const TellsPortLoss &) = delete;
    TellsPortLoss &operator=(const TellsPortLoss &) = delete;
};

void ResetOpenLink();

} // namespace hr::link
