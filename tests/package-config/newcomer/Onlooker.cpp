// Looks at the screen of a program that knows nothing of it: Qt loads it into each application that
// is started with QT_QPA_GENERIC_PLUGINS=onlooker. It waits for the update-available dialog, prints
// its rows and ends the application; with exit code 3 if the dialog never opens.
#include <QApplication>
#include <QElapsedTimer>
#include <QGenericPlugin>
#include <QTableWidget>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int lookEveryMs = 20;
constexpr int patienceMs = 60000;
constexpr int sawNothing = 3;

QTableWidget* offeredPackages()
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->objectName() == "SoftwareUpdateAvailableGui") {
            return window->findChild<QTableWidget*>();
        }
    }
    return nullptr;
}

void printRows(const QTableWidget& table)
{
    QTextStream out(stdout);
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < table.columnCount(); ++column) {
            cells.append(table.item(row, column)->text());
        }
        out << "offered: " << cells.join(" | ") << '\n';
    }
}

class Onlooker : public QObject
{
    Q_OBJECT

public:
    Onlooker()
    {
        m_timer.setInterval(lookEveryMs);
        connect(&m_timer, SIGNAL(timeout()), SLOT(look()));
        m_timer.start();
        m_waiting.start();
    }

private slots:
    void look()
    {
        if (const QTableWidget* table = offeredPackages()) {
            printRows(*table);
            QApplication::exit(0);
        } else if (m_waiting.elapsed() > patienceMs) {
            QApplication::exit(sawNothing);
        }
    }

private:
    QTimer m_timer;
    QElapsedTimer m_waiting;
};

} // namespace

class OnlookerPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "onlooker.json")

public:
    QObject* create(const QString& /*key*/, const QString& /*options*/) override
    {
        return new Onlooker;
    }
};

#include "Onlooker.moc"
