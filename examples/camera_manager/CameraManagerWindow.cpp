#include "examples/camera_manager/CameraManagerWindow.h"

#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

QTableWidget* createCameraTable(const vx::SoftUpCurrentCameraVersions& cameras)
{
    auto* table = new QTableWidget(cameras.size(), 2);
    table->setHorizontalHeaderLabels(
        {CameraManagerWindow::tr("Camera"), CameraManagerWindow::tr("Firmware")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setFocusPolicy(Qt::NoFocus);
    for (int row = 0; row < cameras.size(); ++row) {
        const QString firmware = QString::fromStdString(cameras.at(row).second.toString());
        table->setItem(row, 0, new QTableWidgetItem(cameras.at(row).first));
        table->setItem(row, 1, new QTableWidgetItem(firmware));
    }
    return table;
}

} // namespace

CameraManagerWindow::CameraManagerWindow(const QString& version,
                                         const vx::SoftUpCurrentCameraVersions& cameras)
{
    setWindowTitle("Camera Manager");
    addMenus();
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    auto* heading = new QLabel(QStringLiteral("<h2>Camera Manager %1</h2>").arg(version));
    layout->addWidget(heading);
    layout->addWidget(createCameraTable(cameras));
    setCentralWidget(content);
    showMessage(tr("Help > Check for Updates... looks for something newer."));
    resize(440, 260);
}

void CameraManagerWindow::addMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    connect(file->addAction(tr("&Quit")), SIGNAL(triggered()), SLOT(close()));
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* check = help->addAction(tr("Check for &Updates..."));
    check->setObjectName("checkForUpdatesAction");
    connect(check, SIGNAL(triggered()), SIGNAL(checkForUpdates()));
}

void CameraManagerWindow::showMessage(const QString& text)
{
    statusBar()->showMessage(text);
}
