#pragma once

#include <QMap>
#include <QString>

#include "package/PackageInfo.h"

namespace vx::test {

// What the library makes of small catalogues, for the sentences of the pages about them.

/** Attributes of a package. */
using Fields = QMap<QString, QString>;

/** A sound package of the application, with @p changes. */
QString pkg(const Fields& changes = {});

/** Sound firmware for the camera "Dome-24", with @p changes. */
QString firmware(const Fields& changes = {});

/** A package with release notes of these attributes, and nothing else. */
QString withNotes(const QString& attributes);

/** The document around @p packages. */
QByteArray catalogue(const QString& packages);

/** What the parser reads from @p bytes, and from a document around @p packages. */
PackageInfoList readBytes(QByteArray bytes);
PackageInfoList read(const QString& packages);

/** What the application of @p version is offered of @p packages. */
PackageInfoList offers(const QString& packages, const QString& version = "5.2");

/** The same if its user wants beta versions. */
PackageInfoList offersBeta(const QString& packages, const QString& version = "5.2");

/** What it is offered if @p platform is its only one. */
PackageInfoList offersOn(const QString& platform, const QString& packages);

/** What the camera "Dome-24" with firmware 4.1 is offered. */
PackageInfoList cameraOffers(const QString& packages);

/** The bytes that a size of @p text means. */
quintptr sizeOf(const QString& text);

/** The comment that is read from @p markup. */
QString commentOf(const QString& markup);

/** Whether lint has a finding of @p rule in @p packages. */
bool lintFinds(const QString& rule, const QString& packages);

/** Whether lint finds that a package's file has @p bytes, and not the million that is announced. */
bool fileIsFound(qint64 bytes);

} // namespace vx::test
