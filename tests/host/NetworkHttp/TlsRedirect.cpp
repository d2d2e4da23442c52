#include "tests/host/NetworkHttp/TlsRedirect.h"

namespace vx::test {

namespace {

/** Ends the server of the port that redirects, and begins the one that it leads to. */
QString serverWithRedirect(int status, quint16 tlsPort)
{
    return QString("; return %3 https://127.0.0.1:%4$request_uri; }\n"
                   "  server { listen 127.0.0.1:%4 ssl; ssl_certificate %2/certificate.pem;"
                   " ssl_certificate_key %2/key.pem")
        .replace("%3", QString::number(status))
        .replace("%4", QString::number(tlsPort));
}

} // namespace

TlsRedirect::TlsRedirect(int status)
    : TlsRedirect(status, freePort())
{}

TlsRedirect::TlsRedirect(int status, quint16 tlsPort)
    : Nginx(serverWithRedirect(status, tlsPort))
    , m_tlsPort(tlsPort)
{}

bool TlsRedirect::makeCertificates()
{
    return m_authority.make() && m_authority.issue({}, folder());
}

} // namespace vx::test
