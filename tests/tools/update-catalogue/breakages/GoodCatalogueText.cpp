#include "tests/tools/update-catalogue/breakages/GoodCatalogue.h"

namespace vx::test {

namespace {

QString indentation(int depth)
{
    return '\n' + QString(2 * depth, ' ');
}

QString escaped(const QString& text)
{
    return QString(text).replace('&', "&amp;").replace('<', "&lt;").replace('"', "&quot;");
}

} // namespace

QString GoodCatalogue::element(const QString& field, const QString& value) const
{
    const bool asData = field == "comment" && m_number % 2 == 0 && !value.contains("]]>");
    return asData ? QString("<%1><![CDATA[%2]]></%1>").arg(field, value)
                  : QString("<%1>%2</%1>").arg(field, escaped(value));
}

QString GoodCatalogue::written(const WrittenPackage& package, int depth)
{
    QString attributes;
    QString elements;
    for (auto field = package.fields.begin(); field != package.fields.end(); ++field) {
        // A line end would be read as a blank in an attribute.
        if (chance(40) && !field->contains('\n')) {
            attributes += QString(" %1=\"%2\"").arg(field.key(), escaped(*field));
        } else {
            elements += indentation(depth + 1) + element(field.key(), *field);
        }
    }
    for (const NotesEntry& entry : package.notes) {
        elements +=
            indentation(depth + 1) + (chance(50) ? QString("<%1 language=\"%2\" url=\"%3\"/>")
                                                 : QString("<%1><language>%2</language>"
                                                           "<url>%3</url></%1>"))
                                         .arg(entry.field, entry.language, escaped(entry.url));
    }
    elements += package.rawElements;
    if (chance(15) && package.rawElements.isEmpty()) {
        elements = "<file>" + elements + "</file>";
    }
    return indentation(depth) +
           QString("<%1%2%3>%4%5</%1>")
               .arg(package.tag, attributes, package.rawAttributes, elements, indentation(depth));
}

QString GoodCatalogue::written(const WrittenSet& set, int depth)
{
    QString attributes;
    QString content;
    for (auto field = set.fields.begin(); field != set.fields.end(); ++field) {
        if (chance(60)) {
            attributes += QString(" %1=\"%2\"").arg(field.key(), escaped(*field));
        } else {
            content += indentation(depth + 1) + element(field.key(), *field);
        }
    }
    for (const NotesEntry& entry : set.notes) {
        content +=
            indentation(depth + 1) +
            QString("<%1 language=\"%2\" url=\"%3\"/>").arg(entry.field, entry.language, entry.url);
    }
    for (const WrittenPackage& package : set.packages) {
        content +=
            chance(10) ? indentation(depth + 1) + "<!-- kept for old installations -->" : QString();
        content += written(package, depth + 1);
    }
    for (const WrittenSet& inner : set.sets) {
        content += written(inner, depth + 1);
    }
    return indentation(depth) +
           QString("<%1%2>%3%4%5</%1>")
               .arg(set.tag, attributes, content, set.rawElements, indentation(depth));
}

QString GoodCatalogue::text()
{
    const QString declaration =
        m_encoding.isEmpty() ? QString("<?xml version=\"1.0\"?>")
                             : QString("<?xml version=\"1.0\" encoding=\"%1\"?>").arg(m_encoding);
    return declaration + written(root, 0) + '\n';
}

QByteArray GoodCatalogue::encoded(const QString& text) const
{
    return m_encoding == "ISO-8859-1" ? text.toLatin1() : text.toUtf8();
}

} // namespace vx::test
