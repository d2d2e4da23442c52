#include "tools/server/ServedFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <algorithm>
#include <memory>

namespace vx {

namespace {

constexpr size_t pieceSize = 65536;

/** Fits the range into a file of @p size bytes. False if none of it lies in the file. */
bool clampRange(httplib::Range& range, qint64 size)
{
    if (range.first < 0) {
        range.second = std::min<ssize_t>(range.second, size);
        return range.second > 0;
    }
    if (range.second < 0 || range.second >= size) {
        range.second = size - 1;
    }
    return range.first <= range.second;
}

bool chooseRange(httplib::Ranges& ranges, qint64 size)
{
    if (ranges.size() > 1) {
        ranges.clear();
    }
    return ranges.empty() || clampRange(ranges.front(), size);
}

httplib::ContentProvider fileContent(const std::shared_ptr<QFile>& file)
{
    return [file](size_t offset, size_t length, httplib::DataSink& sink) {
        const bool found = file->seek(qint64(offset));
        const QByteArray piece =
            found ? file->read(qint64(std::min(length, pieceSize))) : QByteArray();
        return !piece.isEmpty() && sink.write(piece.constData(), size_t(piece.size()));
    };
}

} // namespace

QString fileBelow(const QString& folder, const QString& path)
{
    const QString root = QDir(folder).canonicalPath();
    const QFileInfo file(root + path);
    const QString found = file.canonicalFilePath();
    const bool inside = !root.isEmpty() && found.startsWith(root + QLatin1Char('/'));
    return inside && file.isFile() && file.isReadable() ? found : QString();
}

void writeFile(const QString& name, httplib::Request& request, httplib::Response& response)
{
    const auto file = std::make_shared<QFile>(name);
    if (!file->open(QIODevice::ReadOnly)) {
        response.status = 404;
        request.ranges.clear();
    } else if (!chooseRange(request.ranges, file->size())) {
        response.status = 416;
        response.set_header("Content-Range", "bytes */" + std::to_string(file->size()));
        request.ranges.clear();
    } else {
        const QString type =
            QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).name();
        response.status = request.ranges.empty() ? 200 : 206;
        response.set_header("Accept-Ranges", "bytes");
        if (file->size() > 0) {
            response.set_content_provider(size_t(file->size()), type.toStdString(),
                                          fileContent(file));
        }
    }
}

} // namespace vx
