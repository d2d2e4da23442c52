#include "examples/camera_manager/DesktopStandIn.h"

#include <QDesktopServices>
#include <QFileInfo>

DesktopStandIn::DesktopStandIn()
{
    QDesktopServices::setUrlHandler("file", this, "open");
}

DesktopStandIn::~DesktopStandIn()
{
    QDesktopServices::unsetUrlHandler("file");
}

void DesktopStandIn::open(const QUrl& url)
{
    const QString path = url.toLocalFile();
    m_paths.append(path);
    emit opened(tr("The desktop would open %1").arg(QFileInfo(path).fileName()));
}
