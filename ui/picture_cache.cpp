#include "ui/picture_cache.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>

namespace
{

struct CachedPicture {
    QDateTime changed;
    qint64 size = 0;
    QPixmap picture;
};

QHash<QString, CachedPicture> &Cache()
{
    static QHash<QString, CachedPicture> cache;
    return cache;
}

} // namespace

QPixmap FreshPictureOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QPixmap::fromImage(QImage::fromData(file.readAll(), "BMP"));
}

QPixmap PictureOfFile(const QString &path)
{
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    CachedPicture &cached = Cache()[path];
    if (cached.changed != info.lastModified() || cached.size != info.size()) {
        cached = {info.lastModified(), info.size(), FreshPictureOfFile(path)};
    }
    return cached.picture;
}

void ResetPictureCache()
{
    Cache().clear();
}
