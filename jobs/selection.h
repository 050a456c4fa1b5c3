// What a backup is to contain, and the file that keeps the choice between runs, konf\Sicherung.txt.
//
// The file holds one line "key:value" each, in this order, Latin-1, ended by CR LF:
//   LokDaten: LokSymbole: LokFktSymbole: MagSymbole:   flag, blank, number list: "LokDaten:1 1-5,8"
//   FSdaten: MagSymZuord: MagListe: LokSuche:          flag 0 or 1
//   LokSucheAdrStart: LokSucheAdrStop:                 loco addresses 1..9999
//   AlleLokSym: AlleFktSym: AlleMagSym:                flag 0 or 1
// Unknown lines are ignored; missing and wrong values are the defaults: nothing chosen, empty lists, 1 and 9999.
#pragma once

#include "handheld/record_kinds.h"

#include <QByteArray>
#include <QString>

#include <array>

namespace hr::jobs
{

/// A kind whose numbers the user lists, or all of them.
struct NumberChoice {
    bool wanted = false;
    bool all = false; // the three symbol kinds only
    QString list;     // for example "1-5,8"; used when not all are wanted
};

/// Index of the numbered kinds.
enum NumberedKind { LokDatenList, LokSymbolList, FktSymbolList, MagSymbolList, NumberedKindCount };

struct BackupSelection {
    std::array<NumberChoice, NumberedKindCount> numbered;
    bool fsDaten = false;
    bool magSymZuord = false;
    bool magListe = false;
    bool lokSuche = false; // look for loco records at all addresses from start to stop
    int lokSucheStart = FirstLoco;
    int lokSucheStop = LastLoco;
};

/// The row of a numbered kind (of its first half) in the table of record kinds.
const KindRow &RowOfChoice(NumberedKind kind);

/// All numbers of a choice as a list text.
QString WantedNumbers(const BackupSelection &selection, NumberedKind kind);

/// What is wrong with a numbered kind's list or with the search addresses, German without a full stop; empty when
/// they are right or not wanted.
QString ListFault(const BackupSelection &selection, NumberedKind kind);
QString SearchFault(const BackupSelection &selection);

/// True when nothing at all is wanted.
bool NothingWanted(const BackupSelection &selection);

/// About how long a backup of a valid selection takes. A search is estimated with no loco found; each takes half a
/// second longer.
double EstimatedSeconds(const BackupSelection &selection);

/// "Dauer: ca. 12 Minuten".
QString DurationText(double seconds);

/// All that a handheld holds: the locos by a search over all addresses.
BackupSelection EverythingSelected();

BackupSelection ParseSelection(const QByteArray &content);
QByteArray SelectionText(const BackupSelection &selection);

/// Reads konf\Sicherung.txt; the defaults when there is none.
BackupSelection ReadSelection();

/// What the next backup begins with: the kept selection, or everything where there is none, since the first backup should
/// miss nothing.
BackupSelection ProposedSelection();

/// Writes konf\Sicherung.txt. When the folder cannot be written, a "Fehler!" box says so once in a run, and
/// the selection holds until the program ends.
void WriteSelection(const BackupSelection &selection);

void ResetSelection();

} // namespace hr::jobs
