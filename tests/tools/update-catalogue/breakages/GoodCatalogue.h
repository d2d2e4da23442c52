#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QRandomGenerator>
#include <QString>

#include "tools/update-catalogue/Installation.h"

namespace vx::test {

/** What the addresses in the catalogues begin with. */
inline const QString downloadServer = QStringLiteral("http://downloads.example.com/");

/** One entry of release notes or of a readme. */
struct NotesEntry
{
    QString field;
    QString language;
    QString url;
};

/** A package as it is written. Values stand as their texts; raw markup goes in as it is. */
struct WrittenPackage
{
    bool isApplication = false;
    QMap<QString, QString> fields;
    QList<NotesEntry> notes;
    QString tag = QStringLiteral("package");
    QString rawElements;
    QString rawAttributes;
};

/** A set with what its packages share. */
struct WrittenSet
{
    QString tag = QStringLiteral("package-set");
    QMap<QString, QString> fields;
    QList<NotesEntry> notes;
    QList<WrittenPackage> packages;
    QList<WrittenSet> sets;
    QString rawElements;
};

/**
 * A random catalogue in which nothing is wrong: applications and cameras, several releases, four
 * languages, inherited fields, every way in which a field can be written.
 */
class GoodCatalogue
{
public:
    explicit GoodCatalogue(QRandomGenerator& random);

    WrittenSet root;

    /** A random package of the application. */
    WrittenPackage& application();
    /** A random package for a camera. */
    WrittenPackage& firmware();
    /** A random package of either kind. */
    WrittenPackage& any();
    /** Every package, at any depth. */
    QList<WrittenPackage*> all();
    /** The set in which @p package stands. */
    WrittenSet& setOf(const WrittenPackage& package);

    /** Writes @p field at each package and nowhere above, with the value that it has there. */
    void pushDown(const QString& field);
    /** The value of @p field at @p package, its own or inherited. */
    QString value(const WrittenPackage& package, const QString& field);

    /** The document, in an encoding and a style drawn at random. */
    QString text();
    /** @p text in the encoding that it names. */
    QByteArray encoded(const QString& text) const;

    /** Installations that have these applications and cameras. */
    InstallationList installations();

    QRandomGenerator& random() { return m_random; }

private:
    void addApplication(const QString& name);
    void addCamera(const QString& name);
    void addFirmware(WrittenSet& set, const QString& camera, const QString& release);
    QMap<QString, QString> fileFields(const QString& name, const QString& type);
    QString comment();
    QList<NotesEntry> notes();
    void share(WrittenSet& set, const QString& field);

    QString written(const WrittenSet& set, int depth);
    QString written(const WrittenPackage& package, int depth);
    QString element(const QString& field, const QString& value) const;

    bool chance(int percent) { return m_random.bounded(100) < percent; }
    QString draw(const QStringList& words);

    QRandomGenerator& m_random;
    QString m_encoding;
    bool m_wholeAddresses = false;
    int m_number = 0;
};

} // namespace vx::test
