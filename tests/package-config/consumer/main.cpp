// Builds against the installed tree and performs one check against a server of its own.
#include <QApplication>
#include <QLabel>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include "client/SoftwareUpdateClient.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/Core/VersionNumber.h"

namespace {

const QByteArray catalogue = "<softwareList><package><name>other</name><release>9</release>"
                             "<status>STABLE</status></package></softwareList>";

QByteArray answer()
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(catalogue.size()) +
           "\r\nConnection: close\r\n\r\n" + catalogue;
}

void answerEveryRequest(QTcpServer& server)
{
    QObject::connect(&server, &QTcpServer::newConnection, [&server] {
        QTcpSocket* socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, [socket] {
            if (socket->readAll().contains("\r\n\r\n")) {
                socket->write(answer());
                socket->disconnectFromHost();
            }
        });
    });
}

QString notification()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* label = widget->findChild<QLabel*>("updateNotificationLabel")) {
            return label->text();
        }
    }
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost)) {
        return 1;
    }
    answerEveryRequest(server);

    QWidget window;
    vx::SoftwareUpdateClient client("Consumer", vx::VersionNumber("1.0"),
                                    QString("http://127.0.0.1:%1/").arg(server.serverPort()),
                                    &window);
    client.queryForUpdate();
    client.checkForUpdate();

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [] {
        if (notification() == "Congratulations! Your product is up-to-date!") {
            QApplication::exit(0);
        }
    });
    poll.start(20);
    QTimer::singleShot(10000, [] { QApplication::exit(2); });
    return QApplication::exec();
}
