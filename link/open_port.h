// Opening and closing the port, and bringing the interface behind it into LocoNet pass-through mode.
#pragma once

#include <QString>

/// True once a handheld has acknowledged and the link is in service. Set by the handheld search, cleared when the
/// port is closed or lost and when the handheld is sent back. Every command that talks to the handheld tests it.
extern bool HandreglerGefunden;

/// Answer of the selection window: 0 = still open, 1 = OK (try the new settings), -1 = Cancel (end the program).
extern int SelectionAnswer;

/// True while the program waits for SelectionAnswer; only then does Cancel end the program.
extern bool SelectionAwaited;

/// True from the loss of an open port (pulled adapter) to the next opening. The user has been told once.
extern bool PortLost;

/// Toggles the link. Open port: closes it. Otherwise sets the interface up as InterfaceType says; a failure shows
/// "ComPort konnte nicht geöffnet werden!" (kind 3) or "Zeichenübertragung nicht möglich!" (kind 1) and then the
/// selection window, until an attempt succeeds. Success writes konf\ComPort.inf. With kind 2 and with no kind
/// nothing is opened, which counts as success.
/// status: 0 = success, 1 = the program is ending.
void OpenPort(int &status);

/// Kind 3: 115200,n,8,1 without handshake. status 1 when the port cannot be opened.
void SetupDirectInterface(int &status);

/// Kind 1: break and speed command at 2400 baud, then two commands at 19200 baud, each answered by the prompt "]"
/// within 5 s. status 1 after a failed step: box "Zeichenübertragung nicht möglich!" / "Orvanto 1:", port closed.
void SetupOrvanto1Interface(int &status);

/// Sends a text one character at a time while CTS is on. status 1 when it took more than 5 s.
void SendRawText(const QString &text, int &status);

/// Closes the port, clears HandreglerGefunden and forgets half sent and half received messages.
void ClosePort();

/// Shows the selection window and waits for it. False when the program is to end.
bool AskForSelection();

/// The device vanished: clears the found flag and tells the user once. Installed as the port's hang-up handler.
void HandlePortLoss();

void ResetOpenPort();
