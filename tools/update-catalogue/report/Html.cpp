#include "tools/update-catalogue/report/Html.h"

namespace vx {

QString htmlCells(const QStringList& cells)
{
    QString html;
    for (const QString& cell : cells) {
        html += "<td>" + cell.toHtmlEscaped() + "</td>";
    }
    return html;
}

QString htmlRow(const QString& cells, const QString& kind)
{
    return QString("<tr class=\"%1\">%2</tr>\n").arg(kind, cells);
}

QString htmlTable(const QString& caption, const QStringList& titles, const QString& rows)
{
    QString head;
    for (const QString& title : titles) {
        head += "<th scope=\"col\">" + title.toHtmlEscaped() + "</th>";
    }
    return QString("<table><caption>%1</caption><thead><tr>%2</tr></thead><tbody>\n%3"
                   "</tbody></table>\n")
        .arg(caption.toHtmlEscaped(), head, rows);
}

QString htmlSection(const QString& id, const QString& title, const QString& content)
{
    return QString("<section aria-labelledby=\"%1\"><h2 id=\"%1\">%2</h2>\n%3</section>\n")
        .arg(id, title.toHtmlEscaped(), content);
}

} // namespace vx
