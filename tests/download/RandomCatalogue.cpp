#include "tests/download/RandomCatalogue.h"

#include <QSet>

namespace vx::test {

namespace {

constexpr int deepest = 5;

const QList<QByteArray> fields = {"type",           "name",         "public-name",  "release",
                                  "public-release", "status",       "url",          "base-url",
                                  "file-size",      "release-date", "platform",     "language",
                                  "readme",         "comment",      "release-notes"};

const QList<QByteArray> roots = {"softwareList", "softwareList", "package-set",
                                 "catalogue",    "package",      "file"};

const QList<QByteArray> texts = {"",
                                 " ",
                                 "en",
                                 "de",
                                 "en de, fr",
                                 "Mac32;Mac64",
                                 "Cam One",
                                 "4.2",
                                 "4.10b1",
                                 "STABLE",
                                 "12MB",
                                 "700kB",
                                 "2048",
                                 "2012-06-01",
                                 "2012-06-01 12:30:15",
                                 "http://host/",
                                 "fw.mpkg.zip",
                                 "a.tar.gz",
                                 "&lt;b&gt;&amp;",
                                 "\xc3\xa4\xc3\xb6"};

} // namespace

RandomCatalogue::RandomCatalogue(quint32 seed)
    : m_random(seed)
{}

int RandomCatalogue::below(int bound)
{
    return static_cast<int>(m_random() % static_cast<unsigned>(bound));
}

bool RandomCatalogue::oneIn(int chances)
{
    return below(chances) == 0;
}

QByteArray RandomCatalogue::anyOf(const QList<QByteArray>& list)
{
    return list.at(below(list.size()));
}

QByteArray RandomCatalogue::document()
{
    const QByteArray root = oneIn(4) ? anyOf(fields) : anyOf(roots);
    const QByteArray prologue = oneIn(3) ? "<?xml version=\"1.0\"?><!-- name -->" : "";
    return prologue + element(root, 0);
}

QByteArray RandomCatalogue::element(const QByteArray& name, int depth)
{
    return '<' + name + attributes() + '>' + children(depth) + "</" + name + '>';
}

QByteArray RandomCatalogue::attributes()
{
    QByteArray written;
    QSet<QByteArray> used;
    for (int i = below(3); i > 0; --i) {
        const QByteArray name = anyOf(fields);
        if (!used.contains(name)) {
            used.insert(name);
            written += ' ' + name + "=\"" + anyOf(texts) + '"';
        }
    }
    return written;
}

QByteArray RandomCatalogue::children(int depth)
{
    QByteArray written;
    const int least = depth == 0 ? 4 : 0;
    const int most = depth < deepest ? 8 - depth : 0;
    for (int i = least + below(most + 1); i > 0; --i) {
        written += child(depth + 1);
    }
    return written;
}

QByteArray RandomCatalogue::child(int depth)
{
    switch (below(10)) {
    case 0:
        return element("package-set", depth);
    case 1:
    case 2:
        return element("package", depth);
    case 3:
        return element("file", depth);
    case 4:
        return text();
    case 5:
        // A field with elements of its own, such as a URL and its language.
        return element(anyOf(fields), depth);
    default:
        const QByteArray field = anyOf(fields);
        return '<' + field + attributes() + '>' + text() + "</" + field + '>';
    }
}

QByteArray RandomCatalogue::text()
{
    switch (below(6)) {
    case 0:
        return "<![CDATA[" + anyOf({"en", "a<b", "12MB"}) + "]]>";
    case 1:
        return anyOf(texts) + "<!-- de -->" + anyOf(texts);
    case 2:
        return anyOf(texts) + "<unknown>" + anyOf(texts) + "</unknown>";
    default:
        return anyOf(texts);
    }
}

} // namespace vx::test
