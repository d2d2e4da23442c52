#pragma once

#include <QCommandLineParser>
#include <QJsonObject>
#include <QStringList>

#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/Terminal.h"
#include "tools/update-catalogue/signing/Keys.h"
#include "trust/internal/Seal.h"

namespace vx {

/** A catalogue as a client sees it that requires signatures; without keys as any other does. */
class SignedView
{
public:
    /**
     * @param keys what the client trusts; none for a client that requires nothing.
     * @param seenBefore what it was offered from the same address before, or null.
     */
    SignedView(const CatalogueSource& source, const ParsedCatalogue& catalogue,
               const PublicKeys& keys, const SignedView* seenBefore = nullptr);

    /** Whether there are keys. */
    bool isRequired() const { return m_isRequired; }

    /** Whether the client looks at the packages at all. */
    bool isAccepted() const;

    /** What its user reads of a catalogue that is refused, in English. */
    QString userText() const;

    /** The packages that it looks at: those of the catalogue, or none. */
    PackageInfoList packages() const;

    /** Why it would refuse to install @p package, in a few words; empty if it would not. */
    QString remark(const PackageInfo& package) const;

    /** The remarks on all its packages, by place. */
    QStringList remarks() const;

    /** Says why the catalogue is refused, if it is. */
    void printRefusal(Terminal& terminal) const;

    /** Adds what is known of the signature to @p object, if one is required. */
    void addToJson(QJsonObject& object, const QString& key = "signature") const;

private:
    QString m_name;
    ParsedCatalogue m_catalogue;
    bool m_isRequired;
    SealReading m_reading;
};

} // namespace vx
