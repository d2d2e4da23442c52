#pragma once

#include "tests/client/InstallationFixture.h"
#include "tools/signing/SigningKey.h"

class QLabel;

namespace vx::test {

/** Seconds since 1970. */
qint64 now();

/** The file of a package, and what the catalogue says of it. */
struct OfferedFile
{
    QString name;
    QByteArray content;
    /** The digest, in place of the one that the content has; null for none. */
    QString digest;
};

/** An offered file with its true digest. */
OfferedFile offeredFile(const QString& name, const QByteArray& content);

/** SHA-256 in hexadecimal digits. */
QString digestOf(const QByteArray& content);

/**
 * A client of a host that requires signatures, before a server that anybody may answer for.
 *
 * Packages are offered as firmware of "M15", so that every file type is accepted and installable.
 */
class TrustFixture : public InstallationFixture
{
public:
    /** Requires signatures of publisher. */
    explicit TrustFixture(QWidget* parent = nullptr);
    /** Back to the default. */
    ~TrustFixture();

    /** The catalogue of @p files, without a seal; serves the files, too. */
    QByteArray catalogue(const QList<OfferedFile>& files);

    /** Serves @p bytes as the answer to a check, whatever they are. */
    void answer(const QByteArray& bytes);

    /** Serves the sealed catalogue of @p files, signed now, and opens the list that it offers. */
    void openSealedList(const QList<OfferedFile>& files);

    /** Checks with the settings dialog open, and gives what it then says. */
    QString checkInDialog();

    /** Waits for as many message boxes as @p count in all. */
    bool waitForBoxes(int count);

    const SigningKey publisher = SigningKey::generate();
    const SigningKey stranger = SigningKey::generate();
};

/** Lines of level 3 that tell of a refusal. */
QStringList refusalLines(const LogCapture& log);

/** All that is left of downloads in the temporary folder. */
QStringList leftOfDownloads();

} // namespace vx::test
