#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

/** A breakage that puts @p markup into a package. */
Breakage inPackage(const QString& what, const QString& rule, const QString& markup)
{
    return {what, rule, {}, Needs::Nothing, [markup](Planting& p) {
                p.catalogue.any().rawElements = markup;
            }};
}

/** A breakage that puts @p markup into a set. */
Breakage inSet(const QString& what, const QString& rule, const QString& markup)
{
    return {what, rule, {}, Needs::Nothing, [markup](Planting& p) {
                p.catalogue.setOf(p.catalogue.any()).rawElements = markup;
            }};
}

/** A breakage that gives @p field the name @p wrong. */
Breakage misspelt(const QString& field, const QString& wrong)
{
    return {QString("`%1` written as `%2`").arg(field, wrong),
            "unknown-element",
            {},
            Needs::Nothing,
            [field, wrong](Planting& p) {
                p.catalogue.pushDown(field);
                WrittenPackage& package = p.catalogue.any();
                package.rawElements = QString("<%1>%2</%1>").arg(wrong, package.fields.take(field));
            }};
}

/** A breakage that gives a package the element name @p wrong. */
Breakage packageAs(const QString& wrong)
{
    return {QString("`package` written as `%1`").arg(wrong),
            "unknown-element",
            {},
            Needs::Nothing,
            [wrong](Planting& p) { p.catalogue.any().tag = wrong; }};
}

void emptyCatalogue(Planting& p)
{
    p.catalogue.root.sets.clear();
}

void commentOut(Planting& p)
{
    p.editText = [](QString& text) {
        text.remove("<!-- kept for old installations -->");
        const int start = text.indexOf("<package-set");
        const int end = text.lastIndexOf("</package-set>") + 14;
        text.insert(end, "-->");
        text.insert(start, "<!--");
    };
}

void packageAsRoot(Planting& p)
{
    p.editBytes = [](QByteArray& bytes) {
        bytes = "<package name=\"CameraManager\" release=\"5.3\" platform=\"Mac64\"/>";
    };
}

void misspeltSet(Planting& p)
{
    p.catalogue.root.sets.first().tag = "packageset";
}

void valueTwice(Planting& p)
{
    WrittenPackage& package = p.catalogue.any();
    p.catalogue.pushDown("release");
    package.fields.remove("release");
    package.rawElements = "<release>5.1.1</release><release>5.1.2</release>";
}

void elementAndAttribute(Planting& p)
{
    WrittenPackage& package = p.catalogue.any();
    p.catalogue.pushDown("release");
    package.fields.remove("release");
    package.rawElements = "<file/><release>5.1.1</release>";
    package.rawAttributes = " release=\"5.1.2\"";
}

} // namespace

BreakageList structureBreakages()
{
    const QString other = "<package name=\"Other\" release=\"1.0\" platform=\"Mac64\"/>";
    const auto plain = [](const char* what, const char* rule, void (*plant)(Planting&)) {
        return Breakage{what, rule, {}, Needs::Nothing, plant};
    };
    return {
        plain("a catalogue without packages", "no-package", emptyCatalogue),
        plain("everything in an XML comment", "no-package", commentOut),
        plain("a `package` as the outermost element", "no-package", packageAsRoot),
        misspelt("release", "relase"),
        misspelt("release", "Release"),
        misspelt("file-size", "fileSize"),
        misspelt("file-size", "size"),
        misspelt("url", "cm:url"),
        packageAs("pakage"),
        packageAs("Package"),
        plain("`package-set` written as `packageset`", "unknown-element", misspeltSet),
        inPackage("an element that nobody knows", "unknown-element", "<priority>1</priority>"),
        {"an attribute that is misspelt",
         "unknown-attribute",
         {},
         Needs::Nothing,
         [](Planting& p) { p.catalogue.any().rawAttributes = " staus=\"BETA\""; }},
        {"an attribute in capitals",
         "unknown-attribute",
         {},
         Needs::Nothing,
         [](Planting& p) { p.catalogue.any().rawAttributes = " Public-Name=\"x\""; }},
        inPackage("a package in a package", "unvisited", other),
        inPackage("a set in a package", "unvisited", "<package-set>" + other + "</package-set>"),
        inSet("a package in an unknown group", "unvisited", "<group>" + other + "</group>"),
        inPackage("a package in a text", "unvisited", "<public-name>" + other + "</public-name>"),
        inPackage("a second file", "further-file", "<file/><file><url>other.mpkg.zip</url></file>"),
        plain("a field twice", "repeated-field", valueTwice),
        plain("an element and an attribute that differ", "repeated-field", elementAndAttribute),
        inPackage("HTML in a comment that is not escaped", "markup-in-text",
                  "<comment>Much <b>better</b></comment>"),
        inPackage("a line break in a name", "markup-in-text",
                  "<public-name>Camera<br/>Manager</public-name>"),
        inPackage("a value without its element", "stray-text", "734003200"),
        inSet("a note to oneself in a set", "stray-text", "to be tested"),
        {"letters of another encoding",
         "wrong-encoding",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.any().fields["comment"] = QString::fromUtf8("Gr\u00c3\u00bc\u00dfe");
         }},
        {"a name that is escaped twice",
         "escaped-twice",
         {},
         Needs::Nothing,
         [](Planting& p) { p.catalogue.any().fields["public-name"] = "Camera &amp; Manager"; }},
        {"an address that is escaped twice",
         "escaped-twice",
         {},
         Needs::Nothing,
         [](Planting& p) { p.catalogue.any().fields["url"].insert(0, "a&amp;b/"); }},
        {"tags of a comment that are escaped twice",
         "escaped-twice",
         {},
         Needs::Nothing,
         [](Planting& p) { p.catalogue.any().fields["comment"] = "&lt;b&gt;new&lt;/b&gt;"; }},
        {"an empty element that hides",
         "hidden-by-empty",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.root.fields["comment"] = "News";
             p.catalogue.any().fields["comment"] = "";
         }},
    };
}

} // namespace vx::test
