// Rosters of JMRI (XML): a roster.xml, one loco file, or a folder of loco files.
//
// A loco's name is its id, or road name and number where it has none, in characters of the handheld. Its address is that of
// its <dcclocoaddress>, else dccAddress; locos without one from 1 to 9999 are left out. The function labels become symbols by
// konf\Funktionswoerter.txt; lockable="false" is momentary. Where a loco has labels, functions without one have no symbol; a
// label that nobody understands leaves the function as the handheld has it, and so does a loco without any labels. What only
// the handheld knows goes along in the attribute pairs "Handregler Symbol" and "Handregler MultiUni".
//
// A roster.xml of which a loco has neither address nor labels is completed from the loco file that it names: by the last part
// of that name, in the roster's folder or its folder "roster", never elsewhere.
#pragma once

#include "roster/function_words.h"
#include "roster/loco_csv.h"

namespace hr::roster
{

/// The locos of a file. What was left out, adapted or not understood stands in the notes.
LocoList ReadJmriRoster(const QString &fileName, const QByteArray &content, const FunctionWords &words);

/// The locos of a folder: of its roster.xml where there is one, else of all .xml files that hold a loco.
LocoList ReadJmriFolder(const QString &folder, const FunctionWords &words);

/// A roster.xml with all that the records hold of the locos (but blanks at the ends of names).
QByteArray JmriRosterOf(const std::vector<RosterLoco> &locos, const FunctionWords &words);

} // namespace hr::roster
