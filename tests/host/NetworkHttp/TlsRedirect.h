#pragma once

#include "tests/host/NetworkHttp/CertificateAuthority.h"
#include "tests/host/NetworkHttp/Daemon.h"

namespace vx::test {

/**
 * nginx that sends everything it is asked for by http to its other port, which serves the files
 * below "www" by https: what some servers do with every address unless they are told otherwise.
 */
class TlsRedirect : public Nginx
{
public:
    /** @param status of the redirect. */
    explicit TlsRedirect(int status);

    /** Makes authority and certificate, which is to be called before start. */
    bool makeCertificates();

    /** The authority to trust. */
    CertificateAuthority& authority() { return m_authority; }

    /** Where https is. */
    quint16 tlsPort() const { return m_tlsPort; }

private:
    TlsRedirect(int status, quint16 tlsPort);

    CertificateAuthority m_authority;
    quint16 m_tlsPort;
};

} // namespace vx::test
