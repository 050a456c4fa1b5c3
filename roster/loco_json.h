// Locos as JSON, as the terminal program prints and takes them.
//
//   [{"adresse":3,"name":"E94","symbol":7,"multiuni":false,
//     "funktionen":[{"nr":0,"symbol":0,"tast":false}, ... up to nr 24]},
//    {"adresse":4,"leer":true}]
//
// When it is read only "adresse" is needed; what is missing stays as the record in the handheld has it. Empty records are
// passed over: nothing is deleted by a list.
#pragma once

#include "roster/loco_csv.h"

#include <QJsonArray>

namespace hr::roster
{

QJsonArray JsonOf(const std::vector<RosterLoco> &locos);

/// A fault names the element ("Lok Nr. 2 der Liste") and the key.
LocoList ReadLocoJson(const QByteArray &file);

} // namespace hr::roster
