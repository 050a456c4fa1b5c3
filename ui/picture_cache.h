// Pictures of symbol files for grids and picture boxes, loaded once and kept by file name and time.
#pragma once

#include <QPixmap>

/// The picture of a file; null for an empty path and for files that are missing or damaged.
QPixmap PictureOfFile(const QString &path);

/// Loads a file anew, without the cache: for the preview files, which change under the same name within a second.
QPixmap FreshPictureOfFile(const QString &path);

void ResetPictureCache();
