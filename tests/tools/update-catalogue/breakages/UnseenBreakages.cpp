#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

Breakage unseen(const QString& what, const QString& whyNot,
                const std::function<void(Planting&)>& plant)
{
    return {what, QString(), whyNot, Needs::Nothing, plant};
}

} // namespace

BreakageList unseenBreakages()
{
    return {
        unseen("a server's name that is misspelt", "only the network knows it: `--check-urls`",
               [](Planting& p) {
                   p.catalogue.any().fields["base-url"] = "http://downlaods.example.com/";
                   for (WrittenPackage* package : p.catalogue.all()) {
                       package->fields["url"] = package->fields.value("url").section('/', -1);
                   }
                   p.catalogue.root.fields["base-url"] = "http://downlaods.example.com/";
               }),
        unseen("a file's name that is misspelt",
               "only the server knows it: `--check-urls`, `--files`",
               [](Planting& p) {
                   QString& url = p.catalogue.any().fields["url"];
                   url.insert(url.lastIndexOf('/') + 2, 'x');
               }),
        unseen("digits of a size exchanged", "only the file knows it: `--check-urls`, `--files`",
               [](Planting& p) { p.catalogue.any().fields["file-size"] = "374003200"; }),
        unseen("a size without its unit, `700`",
               "only the file knows it: `--check-urls`, `--files`",
               [](Planting& p) { p.catalogue.any().fields["file-size"] = "700"; }),
        unseen("a year that is wrong", "any date may be meant",
               [](Planting& p) { p.catalogue.any().fields["release-date"] = "2062-11-20"; }),
        unseen("a beta version marked `STABLE`", "any release may be meant",
               [](Planting& p) {
                   WrittenPackage& package = p.catalogue.application();
                   const QString release = p.catalogue.value(package, "release");
                   package.fields["url"].replace('-' + release, "-5.8");
                   package.fields["release"] = "5.8";
                   package.fields["public-release"] = "5.8";
                   p.set(package, "status", "STABLE");
               }),
        unseen("a stable version marked `BETA`",
               "any release may be meant; `diff` shows who lost it",
               [](Planting& p) { p.set(p.catalogue.application(), "status", "BETA"); }),
        unseen("a package that was left out", "what is not there may be meant; `diff` shows it",
               [](Planting& p) {
                   WrittenSet& set = p.catalogue.setOf(p.catalogue.application());
                   set.packages.removeFirst();
               }),
        unseen("the comment of another package", "any text may be meant",
               [](Planting& p) { p.catalogue.any().fields["comment"] = "Sharper at noon."; }),
        unseen("release notes of another version", "any address may be meant",
               [](Planting& p) {
                   p.catalogue.any().notes = {
                       {"release-notes", "en", "http://www.example.com/notes/old.html"}};
               }),
        unseen("a tag of HTML in a comment that is never closed",
               "the dialog closes it; `preview` shows it",
               [](Planting& p) { p.catalogue.any().fields["comment"] = "<b>New"; }),
        unseen("a camera's name that is misspelt alone", "any camera may exist: `--installations`",
               [](Planting& p) {
                   p.catalogue.pushDown("platform");
                   const QString camera = p.catalogue.firmware().fields.value("platform");
                   for (WrittenPackage* package : p.catalogue.all()) {
                       if (package->fields.value("platform") == camera) {
                           package->fields["platform"] = "Outdoor-" + camera.section('-', 1);
                       }
                   }
               }),
    };
}

} // namespace vx::test
