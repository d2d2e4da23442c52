#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

/** A breakage that puts @p markup into a package. */
Breakage inPackage(const QString& what, const QString& markup)
{
    return {what, "not-well-formed", {}, Needs::Nothing, [markup](Planting& p) {
                p.catalogue.any().rawElements = markup;
            }};
}

/** A breakage that puts @p markup into the tag of a package. */
Breakage inTag(const QString& what, const QString& markup)
{
    return {what, "not-well-formed", {}, Needs::Nothing, [markup](Planting& p) {
                p.catalogue.any().rawAttributes = markup;
            }};
}

/** A breakage that replaces @p before in the text with @p after. */
Breakage inText(const QString& what, const QString& before, const QString& after)
{
    return {what, "not-well-formed", {}, Needs::Nothing, [before, after](Planting& p) {
                p.replaceInText(before, after);
            }};
}

/** A breakage of the bytes. */
Breakage inBytes(const QString& what, const std::function<void(QByteArray&)>& edit)
{
    return {
        what, "not-well-formed", {}, Needs::Nothing, [edit](Planting& p) { p.editBytes = edit; }};
}

const QString openData = QStringLiteral("<comment><![CDATA[new</comment>");

void openedInTheLast(Planting& p)
{
    p.editText = [](QString& text) { text.insert(text.lastIndexOf("</package>"), openData); };
}

void endedByTheNext(Planting& p)
{
    // The first set is that of an application, with two packages at least.
    QList<WrittenPackage>& packages = p.catalogue.root.sets.first().packages;
    packages[0].rawElements = openData;
    packages[1].fields.remove("comment");
    packages[1].rawElements = "<comment><![CDATA[old]]></comment>";
}

} // namespace

BreakageList markupBreakages()
{
    return {
        inPackage("a bare `&`", "<comment>Camera & Manager</comment>"),
        inPackage("a bare `<`", "<comment>less than < 5 s</comment>"),
        inPackage("an entity of HTML, `&nbsp;`", "<comment>5&nbsp;s</comment>"),
        inPackage("a field that is never closed", "<comment>new"),
        inPackage("a field closed by another name", "<comment>new</coment>"),
        inPackage("a field closed twice", "<comment>new</comment></comment>"),
        {"a CDATA section that never ends", "not-well-formed", {}, Needs::Nothing, openedInTheLast},
        {"a CDATA section that ends in the next one",
         "swallowed-package",
         {},
         Needs::Nothing,
         endedByTheNext},
        inPackage("a comment that never ends", "<!-- new"),
        inPackage("two hyphens in a comment", "<!-- new -- and old -->"),
        inPackage("a control character", QString("<comment>a") + QChar(8) + "b</comment>"),
        inTag("typographic quotes", QString::fromUtf8(" x=\u201cnew\u201d")),
        inTag("an attribute without quotes", " x=new"),
        inTag("a missing closing quote", " x=\"new"),
        inTag("an attribute without a value", " x"),
        inTag("an attribute twice", " x=\"1\" x=\"2\""),
        inText("a package that is never closed", "</package>", ""),
        inText("a set that is never closed", "</package-set>", ""),
        inText("a tag without its `>`", "</package>", "</package"),
        inText("a blank line before the declaration", "<?xml", "\n<?xml"),
        inText("an encoding that does not exist", "<?xml version=\"1.0\"",
               "<?xml version=\"1.0\" encoding=\"UTF-9\" standalone=\"no\""),
        inText("too many levels", "</package>",
               QString("<a>").repeated(1100) + QString("</a>").repeated(1100) + "</package>"),
        inBytes("a file that breaks off",
                [](QByteArray& bytes) { bytes.truncate(2 * bytes.size() / 3); }),
        inBytes("an empty file", [](QByteArray& bytes) { bytes.clear(); }),
        inBytes("a page of HTML in its place",
                [](QByteArray& bytes) { bytes = "<html><body>Sign in<br></body></html>"; }),
        inBytes("two documents in one file",
                [](QByteArray& bytes) { bytes += bytes.mid(bytes.indexOf('<', 5)); }),
        inBytes("a byte of another encoding",
                [](QByteArray& bytes) {
                    bytes = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- Gr\xfcn -->" +
                            bytes.mid(bytes.indexOf("?>") + 2);
                }),
    };
}

} // namespace vx::test
