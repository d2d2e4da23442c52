#pragma once

#include <QCommandLineParser>
#include <QList>
#include <QString>

#include "client/internal/OfferSelection.h"

namespace vx {

/** One installation in the field, or several that are alike. */
struct Installation
{
    /** What people call it; empty if it has no name. */
    QString label;
    OfferCriteria criteria;
    /** How many installations there are of this kind. */
    int count = 1;
};

using InstallationList = QList<Installation>;

/** The words of @p text, separated by spaces, commas or semicolons. */
QStringList splitWordList(const QString& text);

/** @p text of the form NAME=VERSION. @throws CommandFailure with @p code */
QPair<QString, VersionNumber> cameraFromText(const QString& text, int code);

/** What the client's constructor says of every installation: its platforms and file types. */
OfferCriteria defaultCriteria();

/** Adds the options that describe one installation: --application, --version, --camera, ... */
void declareInstallation(QCommandLineParser& parser);

/** The installation that the options describe. @throws CommandFailure with ExitUsage */
Installation installationFrom(const QCommandLineParser& parser);

/** Puts in place of what @p criteria says what the options say, as far as they are given. */
void replaceInstallation(OfferCriteria& criteria, const QCommandLineParser& parser);

/**
 * Reads a list of installations: comma-separated values (RFC 4180, UTF-8) with a header line. The
 * columns are found by their names: name, version, platforms, cameras and, if wanted, beta, types,
 * count and label. Words in a cell are separated by spaces or semicolons, cameras are NAME=VERSION.
 * Empty platforms and types are the client's own.
 *
 * @throws CommandFailure that names line and column: with ExitUsage for a word that means nothing,
 *     a doubled column, semicolons between the columns or no row at all, else with ExitUnreadable.
 */
InstallationList readInstallations(const QString& path);

} // namespace vx
