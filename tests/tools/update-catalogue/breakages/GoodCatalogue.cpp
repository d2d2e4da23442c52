#include "tests/tools/update-catalogue/breakages/GoodCatalogue.h"

#include <QDateTime>

#include <algorithm>

namespace vx::test {

namespace {

void collect(WrittenSet& set, QList<WrittenPackage*>& packages)
{
    for (WrittenPackage& package : set.packages) {
        packages.append(&package);
    }
    for (WrittenSet& inner : set.sets) {
        collect(inner, packages);
    }
}

WrittenSet* findSet(WrittenSet& set, const WrittenPackage& package)
{
    for (const WrittenPackage& own : qAsConst(set.packages)) {
        if (&own == &package) {
            return &set;
        }
    }
    for (WrittenSet& inner : set.sets) {
        if (WrittenSet* found = findSet(inner, package)) {
            return found;
        }
    }
    return nullptr;
}

void pushInto(WrittenSet& set, const QString& field, QString inherited)
{
    inherited = set.fields.value(field, inherited);
    set.fields.remove(field);
    for (WrittenPackage& package : set.packages) {
        if (!package.fields.contains(field) && !inherited.isNull()) {
            package.fields.insert(field, inherited);
        }
    }
    for (WrittenSet& inner : set.sets) {
        pushInto(inner, field, inherited);
    }
}

bool findValue(const WrittenSet& set, const WrittenPackage& package, const QString& field,
               QString inherited, QString& value)
{
    inherited = set.fields.value(field, inherited);
    for (const WrittenPackage& own : set.packages) {
        if (&own == &package) {
            value = own.fields.value(field, inherited);
            return true;
        }
    }
    return std::any_of(set.sets.begin(), set.sets.end(), [&](const WrittenSet& inner) {
        return findValue(inner, package, field, inherited, value);
    });
}

} // namespace

GoodCatalogue::GoodCatalogue(QRandomGenerator& random)
    : m_random(random)
{
    root.tag = draw({"softwareList", "updates"});
    m_encoding = draw({"", "UTF-8", "UTF-8", "ISO-8859-1"});
    m_wholeAddresses = chance(20);
    if (!m_wholeAddresses) {
        root.fields["base-url"] = downloadServer;
    }
    addApplication("CameraManager");
    if (chance(40)) {
        addApplication("VideoArchive");
    }
    QStringList cameras{"Dome-24", "Mini-12", "Turret-9", "Bullet-7", "Panorama-3"};
    for (int i = 2 + random.bounded(3); i > 0; --i) {
        addCamera(cameras.takeAt(random.bounded(static_cast<int>(cameras.size()))));
    }
}

QString GoodCatalogue::draw(const QStringList& words)
{
    return words.at(m_random.bounded(static_cast<int>(words.size())));
}

QString GoodCatalogue::comment()
{
    return draw({QString(), QString(), "Better pictures at night.", "Faster & calmer.",
                 "<b>New</b>: a timeline<br/>of all cameras", "Gr\u00fc\u00dfe, \u00e9t\u00e9"});
}

QList<NotesEntry> GoodCatalogue::notes()
{
    QList<NotesEntry> list;
    const int kind = m_random.bounded(3);
    const QStringList languages = kind == 0   ? QStringList()
                                  : kind == 1 ? QStringList{"en"}
                                              : QStringList{"en", "de", "fr_FR"};
    for (const QString& language : languages) {
        list.append({"release-notes", language,
                     QString("http://www.example.com/notes/%1.html").arg(language)});
    }
    if (chance(20)) {
        list.append({"readme", "en", "https://www.example.com/readme.html"});
    }
    return list;
}

QMap<QString, QString> GoodCatalogue::fileFields(const QString& name, const QString& type)
{
    ++m_number;
    QMap<QString, QString> fields;
    fields["url"] =
        (m_wholeAddresses ? downloadServer : QString()) + QString("%1.%2").arg(name, type);
    const QDateTime date = QDateTime(QDate(2025, 1, 1), QTime(9, 0)).addDays(m_number);
    fields["release-date"] = date.toString(chance(50) ? "yyyy-MM-dd" : "yyyy-MM-dd hh:mm:ss");
    const int size = 200 + m_random.bounded(700);
    fields["file-size"] = chance(60)   ? QString::number(1000000 * size + m_number)
                          : chance(50) ? QString("%1MB").arg(size)
                                       : QString("%1kB").arg(1000 * size);
    const QString text = comment();
    if (!text.isEmpty()) {
        fields["comment"] = text;
    }
    return fields;
}

void GoodCatalogue::share(WrittenSet& set, const QString& field)
{
    for (const WrittenPackage& package : qAsConst(set.packages)) {
        if (package.fields.value(field) != set.packages.first().fields.value(field)) {
            return;
        }
    }
    set.fields[field] = set.packages.first().fields.value(field);
    for (WrittenPackage& package : set.packages) {
        package.fields.remove(field);
    }
}

void GoodCatalogue::addApplication(const QString& name)
{
    WrittenSet set;
    const bool perPlatform = chance(30);
    for (int minor = 1; minor <= 2 + m_random.bounded(3); ++minor) {
        const QString release = QString("5.%1").arg(minor);
        for (const QString& platform :
             perPlatform ? QStringList{"Mac32", "Mac64"} : QStringList{"Mac32 Mac64"}) {
            const QString file =
                QString("%1-%2%3").arg(name, release, perPlatform ? '-' + platform : QString());
            WrittenPackage package;
            package.isApplication = true;
            package.fields = fileFields(file, "mpkg.zip");
            package.fields["name"] = name;
            package.fields["release"] = release;
            package.fields["platform"] = platform;
            package.fields["status"] = "STABLE";
            package.fields["type"] = "Application";
            package.fields["public-release"] = release;
            package.notes = notes();
            set.packages.append(package);
        }
    }
    if (chance(30)) {
        WrittenPackage beta = set.packages.last();
        const QMap<QString, QString> file = fileFields(name + "-5.9b1", "mpkg.zip");
        for (auto field = file.begin(); field != file.end(); ++field) {
            beta.fields[field.key()] = *field;
        }
        beta.fields["release"] = "5.9b1";
        beta.fields["public-release"] = "5.9 preview";
        beta.fields["status"] = "BETA";
        set.packages.append(beta);
    }
    for (const QString& field : QStringList{"name", "platform", "status", "type"}) {
        if (chance(60)) {
            share(set, field);
        }
    }
    root.sets.append(set);
}

void GoodCatalogue::addFirmware(WrittenSet& set, const QString& camera, const QString& release)
{
    QStringList languages{"de en"};
    for (const QString& language : QStringList{"fr", "es"}) {
        if (chance(40)) {
            languages.append(language);
        }
    }
    for (const QString& language : languages) {
        WrittenPackage package;
        const QString file = QString("%1-%2-%3").arg(camera, release, language.left(2));
        package.fields = fileFields(file, "zip");
        package.fields["name"] = "Firmware " + camera;
        package.fields["release"] = release;
        package.fields["platform"] = camera;
        package.fields["status"] = "STABLE";
        package.fields["language"] = language;
        package.notes = notes();
        set.packages.append(package);
    }
}

void GoodCatalogue::addCamera(const QString& name)
{
    WrittenSet set;
    const bool nested = chance(40);
    for (int minor = 1; minor <= 1 + m_random.bounded(2); ++minor) {
        WrittenSet ofRelease;
        addFirmware(nested ? ofRelease : set, name, QString("4.%1").arg(minor));
        if (nested) {
            share(ofRelease, "release");
            share(ofRelease, "platform");
            set.sets.append(ofRelease);
        }
    }
    if (!nested) {
        for (const QString& field : QStringList{"name", "platform", "status"}) {
            if (chance(60)) {
                share(set, field);
            }
        }
    }
    root.sets.append(set);
}

QList<WrittenPackage*> GoodCatalogue::all()
{
    QList<WrittenPackage*> packages;
    collect(root, packages);
    return packages;
}

WrittenPackage& GoodCatalogue::any()
{
    const QList<WrittenPackage*> packages = all();
    return *packages.at(m_random.bounded(static_cast<int>(packages.size())));
}

WrittenPackage& GoodCatalogue::application()
{
    while (true) {
        WrittenPackage& package = any();
        if (package.isApplication) {
            return package;
        }
    }
}

WrittenPackage& GoodCatalogue::firmware()
{
    while (true) {
        WrittenPackage& package = any();
        if (!package.isApplication) {
            return package;
        }
    }
}

WrittenSet& GoodCatalogue::setOf(const WrittenPackage& package)
{
    return *findSet(root, package);
}

void GoodCatalogue::pushDown(const QString& field)
{
    pushInto(root, field, QString());
}

QString GoodCatalogue::value(const WrittenPackage& package, const QString& field)
{
    QString value;
    findValue(root, package, field, QString(), value);
    return value;
}

InstallationList GoodCatalogue::installations()
{
    Installation installation;
    installation.criteria = defaultCriteria();
    InstallationList list;
    for (const WrittenPackage* package : all()) {
        if (package->isApplication) {
            installation.criteria.applicationName = value(*package, "name");
            list.append(installation);
        } else {
            list.first().criteria.currentCameraVersions.append(
                {value(*package, "platform"), VersionNumber("4.0")});
        }
    }
    return list;
}

} // namespace vx::test
