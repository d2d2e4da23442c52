#include "tests/tools/update-catalogue/RandomCatalogue.h"

namespace vx::test {

namespace {

const QStringList names{"App", "Other", "app", ""};
const QStringList releases{"1.0", "1.00", "1.1", "2.0", "2", "2.0b1", "10.0", "0", "", "x"};
const QStringList statuses{"STABLE", "STABLE", "STABLE", "BETA", "beta", ""};
const QStringList platforms{"Mac64", "Mac",         "Mac32 CAM-1", "CAM-1",
                            "CAM-2", "CAM-1 CAM-2", "C",           ""};
const QStringList files{"a.mpkg.zip", "b.dmg", "c.zip", "d.bin", "e.MPKG", ""};
const QStringList sizes{"1", "1kB", "1024", "0", "x"};
const QStringList dates{"2026-01-01", "2026-01-02 10:00:00", "x"};
const QStringList languages{"de en", "en", "fr", ""};
const QStringList installed{"1.0", "1.1", "2.0", "0", "x", "9"};

QString draw(QRandomGenerator& random, const QStringList& words)
{
    return words.at(static_cast<int>(random.bounded(words.size())));
}

QString field(QRandomGenerator& random, const QString& name, const QStringList& values)
{
    const QString value = draw(random, values);
    return QString("<%1>%2</%1>").arg(name, value);
}

QString attribute(QRandomGenerator& random, const QString& name, const QStringList& values)
{
    return QString(" %1=\"%2\"").arg(name, draw(random, values));
}

bool chance(QRandomGenerator& random, int percent)
{
    return random.bounded(100) < percent;
}

QString package(QRandomGenerator& random)
{
    QString attributes;
    QString elements;
    const auto add = [&](const char* name, const QStringList& values, int percent) {
        if (!chance(random, percent)) {
            return;
        }
        if (chance(random, 50)) {
            attributes += attribute(random, name, values);
        } else {
            elements += field(random, name, values);
        }
    };
    add("name", names, 60);
    add("public-name", names, 20);
    add("release", releases, 90);
    add("public-release", releases, 20);
    add("status", statuses, 40);
    add("platform", platforms, 60);
    add("file-size", sizes, 80);
    add("release-date", dates, 80);
    add("language", languages, 60);
    add("url", files, 90);
    if (chance(random, 20)) {
        elements = "<file>" + elements + "</file>";
    }
    return "<package" + attributes + ">" + elements + "</package>";
}

QString set(QRandomGenerator& random, const QString& tag, int depth)
{
    QString text = "<" + tag;
    if (chance(random, 50)) {
        text += attribute(random, "status", statuses);
    }
    if (chance(random, 40)) {
        text += attribute(random, "platform", platforms);
    }
    if (chance(random, 40)) {
        text += attribute(random, "name", names);
    }
    text += " base-url=\"http://h.example.com/\">";
    for (int i = random.bounded(5); i > 0; --i) {
        text += package(random);
    }
    for (int i = depth > 0 ? random.bounded(3) : 0; i > 0; --i) {
        text += set(random, "package-set", depth - 1);
    }
    return text + "</" + tag + ">";
}

} // namespace

QByteArray randomCatalogue(QRandomGenerator& random)
{
    return set(random, "softwareList", 2).toUtf8();
}

OfferCriteria randomInstallation(QRandomGenerator& random)
{
    OfferCriteria criteria = defaultCriteria();
    criteria.applicationName = chance(random, 90) ? "App" : "Other";
    criteria.versionNumber = VersionNumber(draw(random, installed).toStdString());
    for (int i = random.bounded(4); i > 0; --i) {
        const QString name = draw(random, {"CAM-1", "CAM-2", "CAM"});
        criteria.currentCameraVersions.append(
            {name, VersionNumber(draw(random, installed).toStdString())});
    }
    criteria.checkForBeta = chance(random, 30);
    return criteria;
}

} // namespace vx::test
