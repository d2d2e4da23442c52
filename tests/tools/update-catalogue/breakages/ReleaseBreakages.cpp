#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

Breakage field(const QString& what, const QString& rule, const QString& name, const QString& value)
{
    return {what, rule, {}, Needs::Nothing, [name, value](Planting& p) {
                p.set(p.catalogue.any(), name, value);
            }};
}

/** A breakage of a stable release that people read as 5.3. */
Breakage stable(const QString& what, const QString& release)
{
    return {what, "preliminary-stable", {}, Needs::Nothing, [release](Planting& p) {
                WrittenPackage& package = p.catalogue.any();
                p.set(package, "status", "STABLE");
                p.set(package, "release", release);
            }};
}

/** The package that stands in the same set behind a copy of @p package, with its own values. */
WrittenPackage& copied(Planting& p, WrittenPackage& package)
{
    WrittenSet& set = p.catalogue.setOf(package);
    WrittenPackage copy = package;
    copy.fields["url"].replace("-", "-copy-");
    set.packages.append(copy);
    return set.packages.last();
}

void otherSpelling(Planting& p)
{
    WrittenPackage& package = p.catalogue.any();
    const QString release = p.catalogue.value(package, "release");
    WrittenPackage& copy = copied(p, package);
    copy.fields["release"] = release == "5.9b1" ? "5.09b1" : release + ".0";
    copy.fields["file-size"] = "123456789";
}

void otherIdentity(Planting& p)
{
    copied(p, p.catalogue.firmware()).fields["language"] = "it";
}

void sameAddress(Planting& p, const QString& field, const QString& value)
{
    WrittenPackage& package = p.catalogue.firmware();
    const QString url = package.fields.value("url");
    WrittenPackage& copy = copied(p, package);
    copy.fields["url"] = url;
    copy.fields[field] = value;
    copy.fields["language"] = "it";
}

void sameApplicationTwice(Planting& p)
{
    copied(p, p.catalogue.application()).fields["file-size"] = "123456789";
}

void fileOfOtherRelease(Planting& p)
{
    while (true) {
        WrittenPackage& package = p.catalogue.application();
        const QString release = p.catalogue.value(package, "release");
        if (release != "5.1") {
            package.fields["url"].replace('-' + release, "-5.1-again");
            return;
        }
    }
}

} // namespace

BreakageList releaseBreakages()
{
    return {
        field("`stable` in small letters", "unknown-status", "status", "stable"),
        field("`Beta` with one capital", "unknown-status", "status", "Beta"),
        field("a status of one's own, `FINAL`", "unknown-status", "status", "FINAL"),
        field("a blank behind the status", "unknown-status", "status", "STABLE "),
        {"no status",
         "unknown-status",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("status");
             p.catalogue.any().fields.remove("status");
         }},
        field("a German date", "unreadable-date", "release-date", "20.11.2026"),
        field("a date with a `T`", "unreadable-date", "release-date", "2026-11-20T10:00:00"),
        field("a time without seconds", "unreadable-date", "release-date", "2026-11-20 10:00"),
        field("a month 13", "unreadable-date", "release-date", "2026-13-01"),
        field("a release in words", "unreadable-release", "release", "four"),
        field("a release with a `v`", "unreadable-release", "release", "v5.3"),
        {"no release",
         "unreadable-release",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("release");
             p.catalogue.any().fields.remove("release");
         }},
        field("a blank before the release", "blank-around", "release", " 5.3"),
        stable("a stable candidate, `5.3-rc1`", "5.3-rc1"),
        stable("a word behind the release, `5.3 final`", "5.3 final"),
        stable("a comma in the release, `5,3`", "5,3"),
        stable("two dots in the release, `5..3`", "5..3"),
        stable("a letter for a digit, `5.O`", "5.O"),
        stable("a dot behind the release, `5.3.`", "5.3."),
        {"the same version in another spelling",
         "release-spelling",
         {},
         Needs::Nothing,
         otherSpelling},
        {"a public release that says another number",
         "public-release-differs",
         {},
         Needs::Nothing,
         [](Planting& p) {
             WrittenPackage& package = p.catalogue.any();
             p.set(package, "release", "5.3.1");
             package.fields["public-release"] = "5.2";
         }},
        {"date and size of another package", "equal-identity", {}, Needs::Nothing, otherIdentity},
        {"one address with two sizes",
         "shared-address",
         {},
         Needs::Nothing,
         [](Planting& p) { sameAddress(p, "file-size", "123456789"); }},
        {"one address with two dates",
         "shared-address",
         {},
         Needs::Nothing,
         [](Planting& p) { sameAddress(p, "release-date", "2026-11-20"); }},
        {"the same package twice", "repeated-package", {}, Needs::Nothing, sameApplicationTwice},
        {"the file of another release", "address-of-other", {}, Needs::Nothing, fileOfOtherRelease},
    };
}

} // namespace vx::test
