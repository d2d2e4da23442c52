#pragma once

#include <QList>
#include <QPalette>
#include <QScopedPointer>
#include <QString>
#include <QTranslator>

#include <functional>

class QDialog;

namespace vx::screenshots {

/** One dialog in one state, as the client would have filled it. */
struct Scene
{
    /** Part of the file name, as in "settings-progress". */
    QString name;

    /** Makes the dialog, filled and not shown yet; the caller owns it. */
    std::function<QDialog*()> build;
};

/** The states of both dialogs that are worth looking at. */
QList<Scene> scenes();

/** The surroundings in which a scene is shown. */
struct Look
{
    /** "en", "de" or "fr"; "en" needs no translator. */
    QString language = QStringLiteral("en");

    /** Size of the application's font, in percent of the one the program started with. */
    int fontPercent = 100;

    /** Whether light text stands on a dark ground. */
    bool dark = false;

    /** Part of the file name, as in "de-150-dark". */
    QString name() const;
};

/** Every look that is worth looking at: each language in both font sizes, and one in the dark. */
QList<Look> looks();

/** Applies a look to the application while the object lives, and then its old one back. */
class AppliedLook
{
public:
    explicit AppliedLook(const Look& look);
    ~AppliedLook();
    AppliedLook(const AppliedLook&) = delete;
    AppliedLook& operator=(const AppliedLook&) = delete;

private:
    QTranslator m_translator;
    QTranslator m_trustTranslator;
    qreal m_previousPointSize;
    QPalette m_previousPalette;
};

} // namespace vx::screenshots
