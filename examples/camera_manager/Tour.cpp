#include "examples/camera_manager/Tour.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTextStream>

#include "examples/camera_manager/TourWidgets.h"
#include "host/CoreQt/QtVersions.h"

namespace {

constexpr int lookEveryMs = 20;
constexpr int patienceMs = 20000;

void print(const QString& line)
{
    QTextStream out(stdout);
    vx::useUtf8(out);
    out << line << '\n';
}

} // namespace

TourStep::TourStep(const QString& what, const std::function<QWidget*()>& seen)
    : m_what(what)
    , m_seen(seen)
{}

TourStep& TourStep::picture(const QString& name)
{
    m_picture = name;
    return *this;
}

TourStep& TourStep::details(const std::function<QString()>& text)
{
    m_details = text;
    return *this;
}

TourStep& TourStep::then(const std::function<void()>& action)
{
    m_action = action;
    return *this;
}

Tour::Tour(const QString& folder)
    : m_folder(folder)
{
    m_timer.setInterval(lookEveryMs);
    connect(&m_timer, SIGNAL(timeout()), SLOT(look()));
}

TourStep& Tour::expect(const QString& what, const std::function<QWidget*()>& seen)
{
    m_steps.append(TourStep(what, seen));
    return m_steps.last();
}

void Tour::start()
{
    m_timer.start();
    m_waiting.start();
}

void Tour::look()
{
    const TourStep step = m_steps.at(m_current);
    if (QWidget* widget = step.m_seen()) {
        take(step, widget);
    } else if (m_waiting.elapsed() > patienceMs) {
        end(QStringLiteral("Did not happen: %1\nOn the screen: %2")
                .arg(step.m_what, describeScreen()),
            1);
    }
}

void Tour::take(const TourStep& step, QWidget* widget)
{
    ++m_current;
    if (!report(step, widget)) {
        end(QStringLiteral("Cannot save a picture in %1").arg(m_folder), 1);
        return;
    }
    if (step.m_action) {
        step.m_action();
    }
    m_waiting.restart();
    if (m_current == m_steps.size()) {
        end(QStringLiteral("All %1 steps happened. Pictures: %2").arg(m_current).arg(m_folder), 0);
    }
}

bool Tour::report(const TourStep& step, QWidget* widget)
{
    print(QStringLiteral("[%1/%2] %3").arg(m_current, 2).arg(m_steps.size()).arg(step.m_what));
    if (step.m_details) {
        print("        " + step.m_details());
    }
    if (step.m_picture.isEmpty()) {
        return true;
    }
    const QString file = save(step, widget);
    print("        " + file);
    return !file.isEmpty();
}

QString Tour::save(const TourStep& step, QWidget* widget)
{
    const QString name =
        QStringLiteral("%1-%2.png").arg(m_current, 2, 10, QLatin1Char('0')).arg(step.m_picture);
    const QString file = QDir(m_folder).filePath(name);
    return QDir().mkpath(m_folder) && widget->grab().save(file) ? file : QString();
}

void Tour::end(const QString& summary, int exitCode)
{
    m_timer.stop();
    print(summary);
    QApplication::exit(exitCode);
}
