#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

Breakage size(const QString& what, const QString& rule, const QString& text)
{
    return {what, rule, {}, Needs::Nothing, [text](Planting& p) {
                p.set(p.catalogue.any(), "file-size", text);
            }};
}

/** A breakage that gives the file of an application package the ending @p type. */
Breakage type(const QString& what, const QString& rule, const QString& type)
{
    return {what, rule, {}, Needs::Nothing, [type](Planting& p) {
                p.catalogue.application().fields["url"].replace(".mpkg.zip", type);
            }};
}

/** A breakage that adds @p bytes to the size. */
Breakage otherSize(const QString& what, int bytes)
{
    return {what, "size-mismatch", {}, Needs::Files, [bytes](Planting& p) {
                WrittenPackage& package = p.catalogue.any();
                package.fields["file-size"] = QString::number(100000000 + bytes);
            }};
}

void noSize(Planting& p)
{
    p.catalogue.any().fields.remove("file-size");
}

void sizeOfSet(Planting& p)
{
    WrittenSet& set = p.catalogue.setOf(p.catalogue.application());
    for (WrittenPackage& package : set.packages) {
        package.fields.remove("file-size");
    }
    set.fields["file-size"] = "734003200";
}

} // namespace

BreakageList fileBreakages()
{
    return {
        {"no size", "no-size", {}, Needs::Nothing, noSize},
        size("an empty size", "no-size", ""),
        size("a size of 0", "unreadable-size", "0"),
        size("a size with a comma, `1,5MB`", "unreadable-size", "1,5MB"),
        size("a size in GB", "unreadable-size", "2GB"),
        size("a size in MiB", "unreadable-size", "700MiB"),
        size("a size in M", "unreadable-size", "700M"),
        size("a size with dots between thousands", "unreadable-size", "734.003.200"),
        size("a size with blanks between thousands", "unreadable-size", "734 003 200"),
        size("a negative size", "unreadable-size", "-5"),
        size("a size in words", "unreadable-size", "large"),
        size("a size of `0.5MB`", "unreadable-size", "0.5MB"),
        size("a fraction, `1.9MB`", "lost-fraction", "1.9MB"),
        size("a fraction in small letters, `1.5kb`", "lost-fraction", "1.5kb"),
        size("bytes with the unit kB", "implausible-size", "734003200kB"),
        {"one size for a whole set", "inherited-from-far", {}, Needs::Nothing, sizeOfSet},
        otherSize("a size that is too large", 1),
        otherSize("a size that is too small", -1),
        {"a file that is missing",
         "size-mismatch",
         {},
         Needs::Files,
         [](Planting& p) { p.catalogue.any().fields["url"].replace('-', "--"); }},
        type("a file of capitals, `.MPKG.ZIP`", "capital-suffix", ".MPKG.ZIP"),
        type("half in capitals, `.mpkg.Zip`", "capital-suffix", ".mpkg.Zip"),
        type("an application as `.zip`", "unlisted-type", ".zip"),
        type("an application as `.exe`", "unlisted-type", ".exe"),
        type("letters exchanged, `.mpgk.zip`", "unlisted-type", ".mpgk.zip"),
        type("an application as `.dmg`", "not-installable", ".dmg"),
        {"a file without an ending",
         "suspicious-suffix",
         {},
         Needs::Nothing,
         [](Planting& p) {
             QString& url = p.catalogue.application().fields["url"];
             url = url.left(url.lastIndexOf('/') + 1) + "CameraManager";
         }},
        type("an ending of two letters", "suspicious-suffix", ".7z"),
        type("a query behind the file's name", "suspicious-suffix", ".mpkg.zip?token=1"),
    };
}

} // namespace vx::test
