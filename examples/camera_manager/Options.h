#pragma once

#include <QString>
#include <QStringList>

#include "client/SoftwareUpdateSettings.h"

/** What the command line asks for. */
struct Options
{
    /** Show the help and end. */
    bool help = false;
    /** Walk through the flow instead of waiting for a user. */
    bool tour = false;
    /** Where the tour puts its pictures. */
    QString outputFolder;
    /** The catalogue's address; empty for the server inside the application. */
    QString server;
    /** The version that the application claims to have. */
    QString version;
    /** The cameras with their firmware. */
    vx::SoftUpCurrentCameraVersions cameras;
    /** "en", "de" or "fr"; empty for the language of the system. */
    QString language;
    /** What is wrong with the command line, for the user; empty if nothing is. */
    QString problem;
};

/** Reads @p arguments, the program's name first. */
Options readOptions(const QStringList& arguments);

/** What is wrong with @p options if a tour is to be made of them; empty if nothing is. */
QString problemOfTour(const Options& options);

/** The help, which needs a QCoreApplication. */
QString helpText();

/** The arguments as they were given, before any QCoreApplication. */
QStringList rawArguments(int argc, char** argv);

/** Whether a window can be seen. */
bool hasDisplay();
