#include "host/FileFormatsXml/XmlUtils.h"

#include <QDomDocument>
#include <QIODevice>

#include <memory>

#include "host/CoreQt/ParseException.h"

namespace vx {

QDomDocument* XmlUtils::parseXml(QIODevice* device, QDomDocument* document)
{
    QDomDocument parsed;
    if (!parsed.setContent(device->readAll())) {
        throw ParseException(QStringLiteral("not well-formed"));
    }
    if (document == nullptr) {
        return new QDomDocument(parsed);
    }
    *document = parsed;
    return document;
}

} // namespace vx
