// Pictures between the handheld and picture files.
#pragma once

#include "cli/call.h"
#include "handheld/picture.h"
#include "program/outcome.h"

#include <functional>

/// Reading: `read` brings the picture, which is written to the file when it was read without a doubt.
/// Writing: the file is checked before the handheld is called; `write` takes its picture.
Exit MovePicture(const Call &call, const QString &fileName, bool writes, Picture blank,
    const std::function<Result<Picture>()> &read, const std::function<Outcome(const Picture &)> &write);
