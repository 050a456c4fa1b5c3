// Pictures between the handheld and picture files.
#pragma once

#include "cli/call.h"
#include "handheld/record_kinds.h"
#include "program/outcome.h"

#include <functional>

namespace hr::cli
{

/// `read` brings the picture, which is written to the file when it was read without a doubt.
Exit ReadPictureInto(const Call &call, const QString &fileName, const std::function<Result<Picture>()> &read);

/// The file is checked before the handheld is called; its picture is laid over `blank`, which has the right size.
Exit WritePictureFrom(const Call &call, const QString &fileName, const RecordId &id, Picture blank);

} // namespace hr::cli
