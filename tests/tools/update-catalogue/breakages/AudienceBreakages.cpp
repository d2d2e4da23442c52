#include "tests/tools/update-catalogue/breakages/Breakages.h"

namespace vx::test {

namespace {

Breakage applicationPlatform(const QString& what, const QString& word)
{
    return {what, "platform-spelling", {}, Needs::Nothing, [word](Planting& p) {
                p.set(p.catalogue.application(), "platform", word);
            }};
}

/** The package of one camera, which gets another package for the platform @p platform. */
void addForPlatform(Planting& p, const std::function<QString(const QString&)>& platform)
{
    p.catalogue.pushDown("platform");
    WrittenPackage& package = p.catalogue.firmware();
    WrittenPackage other = package;
    other.fields["platform"] = platform(package.fields.value("platform"));
    other.fields["url"].replace("-", "-new-");
    other.fields["release"] = "4.7";
    other.fields["language"] = "de en";
    other.fields["file-size"] = "123456789";
    p.catalogue.setOf(package).packages.append(other);
}

Breakage cameraPlatform(const QString& what, const QString& rule,
                        const std::function<QString(const QString&)>& platform)
{
    return {
        what, rule, {}, Needs::Nothing, [platform](Planting& p) { addForPlatform(p, platform); }};
}

/** A breakage in which another package of the application is called what @p change makes of it. */
Breakage applicationName(const QString& what, const std::function<void(QString&)>& change)
{
    return {what, "name-spelling", {}, Needs::Nothing, [change](Planting& p) {
                p.catalogue.pushDown("name");
                change(p.catalogue.application().fields["name"]);
            }};
}

Breakage language(const QString& what, const QString& rule, const QString& words)
{
    return {what, rule, {}, Needs::Nothing, [words](Planting& p) {
                p.set(p.catalogue.firmware(), "language", words);
            }};
}

/** Gives every package for a camera the languages @p words. */
Breakage allLanguages(const QString& what, const QString& words)
{
    return {what, "hidden-from-english", {}, Needs::Nothing, [words](Planting& p) {
                p.catalogue.pushDown("language");
                for (WrittenPackage* package : p.catalogue.all()) {
                    if (!package->isApplication) {
                        package->fields["language"] = words;
                    }
                }
            }};
}

/** Replaces the name of a camera, wherever it stands, with what @p change makes of it. */
Breakage inField(const QString& what, const QString& rule,
                 const std::function<QString(const QString&)>& change)
{
    return {what, rule, {}, Needs::Installations, [change](Planting& p) {
                p.catalogue.pushDown("platform");
                const QString camera = p.catalogue.firmware().fields.value("platform");
                for (WrittenPackage* package : p.catalogue.all()) {
                    if (package->fields.value("platform") == camera) {
                        package->fields["platform"] = change(camera);
                    }
                }
            }};
}

void otherApplication(Planting& p)
{
    p.catalogue.pushDown("name");
    for (WrittenPackage* package : p.catalogue.all()) {
        if (package->fields.value("name") == "CameraManager") {
            package->fields["name"] = "CameraOverview";
        }
    }
}

void platformOfAll(Planting& p)
{
    p.catalogue.root.fields["platform"] = "Turret-5";
}

} // namespace

BreakageList audienceBreakages()
{
    return {
        {"no name",
         "no-name",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("name");
             p.catalogue.application().fields.remove("name");
         }},
        {"`public-name` alone",
         "no-name",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("name");
             WrittenPackage& package = p.catalogue.application();
             package.fields["public-name"] = package.fields.take("name");
         }},
        applicationName("a name in small letters", [](QString& name) { name = name.toLower(); }),
        applicationName("a name with a blank", [](QString& name) { name.insert(5, ' '); }),
        applicationName("a name with a letter missing", [](QString& name) { name.remove(3, 1); }),
        applicationName("a name with letters exchanged",
                        [](QString& name) { std::swap(name.data()[1], name.data()[2]); }),
        {"a blank behind the name",
         "blank-around",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("name");
             p.catalogue.application().fields["name"] += ' ';
         }},
        {"no platform",
         "no-platform",
         {},
         Needs::Nothing,
         [](Planting& p) {
             p.catalogue.pushDown("platform");
             p.catalogue.any().fields.remove("platform");
         }},
        applicationPlatform("a platform in small letters, `mac64`", "mac64"),
        applicationPlatform("a platform in capitals, `MAC64`", "MAC64"),
        applicationPlatform("a platform with a hyphen, `Mac-64`", "Mac-64"),
        applicationPlatform("letters of a platform exchanged, `Mca64`", "Mca64"),
        applicationPlatform("a letter of a platform too many, `Macc64`", "Macc64"),
        cameraPlatform("a camera in small letters", "platform-spelling",
                       [](const QString& camera) { return camera.toLower(); }),
        cameraPlatform("a camera without its hyphen", "platform-spelling",
                       [](const QString& camera) { return QString(camera).remove('-'); }),
        cameraPlatform("letters of a camera exchanged", "platform-spelling",
                       [](const QString& camera) {
                           return camera.left(1) + camera.mid(2, 1) + camera.mid(1, 1) +
                                  camera.mid(3);
                       }),
        cameraPlatform("the beginning of another camera's name", "platform-begins-other",
                       [](const QString& camera) { return camera.section('-', 0, 0); }),
        cameraPlatform("a longer name that begins with another's", "platform-begins-other",
                       [](const QString& camera) { return camera + "-Night"; }),
        cameraPlatform("a blank in a camera's name", "blank-in-platform",
                       [](const QString& camera) { return QString(camera).replace('-', ' '); }),
        {"a platform of the root that adds up", "words-add-up", {}, Needs::Nothing, platformOfAll},
        language("languages in capitals", "language-word", "DE EN"),
        language("a language in words", "language-word", "german english"),
        language("a language with its country", "language-word", "de_DE en_US"),
        allLanguages("firmware in English alone", "en"),
        allLanguages("firmware in German alone", "de"),
        inField("a camera that is not in the field", "platform-not-in-field",
                [](const QString& camera) { return "X" + camera; }),
        inField("a camera's number wrong", "platform-not-in-field",
                [](const QString& camera) { return camera.section('-', 0, 0) + "-48"; }),
        inField("a name that fits more cameras", "platform-too-wide",
                [](const QString& camera) { return camera.left(camera.size() - 1); }),
        {"an application that no package names",
         "application-without-package",
         {},
         Needs::Installations,
         otherApplication},
    };
}

} // namespace vx::test
