#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <memory>

#include "tools/server/UpdateServer.h"
#include "tools/update-catalogue/Installation.h"

class QDialog;

namespace vx {

class SoftwareUpdateClient;

/**
 * A real client that checks a real server for one catalogue, with settings of its own, so that what
 * it shows is what the user of an installation would see.
 */
class RealOffer
{
public:
    /** Checks, and waits for the verdict. @throws CommandFailure if there is none. */
    RealOffer(const QByteArray& catalogue, const OfferCriteria& criteria);
    ~RealOffer();
    RealOffer(const RealOffer&) = delete;
    RealOffer& operator=(const RealOffer&) = delete;

    /** The update-available dialog, shown; null if nothing is offered. Owned by the client. */
    QDialog* dialog() const { return m_dialog; }

private:
    void waitForVerdict();

    QTemporaryDir m_settings;
    UpdateServer m_server;
    std::unique_ptr<SoftwareUpdateClient> m_client;
    QDialog* m_dialog = nullptr;
};

} // namespace vx
