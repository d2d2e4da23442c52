// Replaces one host library at link time: the check must go through the proxy that only our own
// node database knows.
#include <QApplication>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include "client/SoftwareUpdateClient.h"
#include "host/Core/VersionNumber.h"

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);

    QTcpServer proxy;
    if (!proxy.listen(QHostAddress::LocalHost)) {
        return 1;
    }
    application.setProperty("proxyPort", proxy.serverPort());
    QObject::connect(&proxy, &QTcpServer::newConnection, [&proxy] {
        QTcpSocket* socket = proxy.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, [socket] {
            const bool asked = socket->readAll().startsWith("GET http://updates.example.com/");
            QApplication::exit(asked ? 0 : 3);
        });
    });

    vx::SoftwareUpdateClient client("Consumer", vx::VersionNumber("1.0"),
                                    "http://updates.example.com/catalogue.xml", nullptr);
    client.checkForUpdate();
    QTimer::singleShot(10000, [] { QApplication::exit(2); });
    return QApplication::exec();
}
