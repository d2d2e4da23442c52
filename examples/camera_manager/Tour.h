#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

class QWidget;

/** One step of a tour: what must be seen, and what is done then. None of its functions may wait. */
class TourStep
{
public:
    TourStep(const QString& what, const std::function<QWidget*()>& seen);

    /** Saves a picture of the widget that is seen, under @p name with the step's number. */
    TourStep& picture(const QString& name);

    /** Adds what @p text returns to the report. */
    TourStep& details(const std::function<QString()>& text);

    /** What the user does next. A click that opens a message box does not return before the box is
        closed: post it, as TourWidgets.h does. */
    TourStep& then(const std::function<void()>& action);

private:
    friend class Tour;

    QString m_what;
    std::function<QWidget*()> m_seen;
    QString m_picture;
    std::function<QString()> m_details;
    std::function<void()> m_action;
};

/**
 * Uses an application as a person would, looks whether it does what it should, and reports.
 *
 * The steps are taken one after the other from the event loop, also from that of a message box. The
 * application ends with 0 after the last one, and with 1 if one is not seen within twenty seconds.
 */
class Tour : public QObject
{
    Q_OBJECT

public:
    /** @param folder where the pictures go; made if it is not there. */
    explicit Tour(const QString& folder);

    /**
     * Adds a step.
     *
     * @param what what the user sees, for the report.
     * @param seen returns the widget that shows it, or null while it is not there.
     */
    TourStep& expect(const QString& what, const std::function<QWidget*()>& seen);

    /** Begins with the first step as soon as the event loop runs. */
    void start();

private slots:
    void look();

private:
    void take(const TourStep& step, QWidget* widget);
    bool report(const TourStep& step, QWidget* widget);
    QString save(const TourStep& step, QWidget* widget);
    void end(const QString& summary, int exitCode);

    QString m_folder;
    QList<TourStep> m_steps;
    int m_current = 0;
    QTimer m_timer;
    QElapsedTimer m_waiting;
};
