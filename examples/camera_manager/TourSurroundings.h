#pragma once

#include <QString>
#include <QTemporaryDir>

/**
 * What a tour runs in: no display, settings and temporary files of its own, which are removed at
 * its end, and a locale, so that it looks the same everywhere.
 *
 * To be created before the QApplication and to be destroyed after it.
 */
class TourSurroundings
{
public:
    /** @param language "de", "fr" or "en"; an empty one is English. */
    explicit TourSurroundings(const QString& language);

private:
    QTemporaryDir m_folder;
};
