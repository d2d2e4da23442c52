#pragma once

#include <QFile>

namespace vx {

/**
 * The file that a package is downloaded into. Its name may come from a catalogue.
 *
 * A name that cannot be opened leaves the file closed, and the download then ends as one that came
 * out short.
 */
class DownloadFile : public QFile
{
public:
    explicit DownloadFile(const QString& fileName);

    QString fileName() const override { return m_fileName; }

    /**
     * Opens the file for writing, empty. Refused are a name with control characters, a link in the
     * place of the file, and what is no file to write to. Nothing is put into Qt's log.
     */
    void openEmpty();

private:
    QString m_fileName;
};

/**
 * Closes @p file.
 *
 * @return its bytes on disk; 0 if it was not open, whatever else is found under its name.
 */
quint64 closeAndMeasure(QFile& file);

} // namespace vx
