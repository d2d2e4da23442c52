#include "tools/update-catalogue/signing/SignedView.h"

#include <QDateTime>

#include "tools/update-catalogue/signing/SealText.h"
#include "trust/internal/SealVerification.h"
#include "trust/internal/TrustTexts.h"

namespace vx {

SignedView::SignedView(const CatalogueSource& source, const ParsedCatalogue& catalogue,
                       const PublicKeys& keys, const SignedView* seenBefore)
    : m_name(source.name)
    , m_catalogue(catalogue)
    , m_isRequired(!keys.isEmpty())
{
    if (m_isRequired) {
        SealCircumstances circumstances{QDateTime::currentSecsSinceEpoch(), std::nullopt};
        if (seenBefore != nullptr && seenBefore->isAccepted()) {
            circumstances.newestAccepted = seenBefore->m_reading.seal.timestamp;
        }
        m_reading = judgeSealed(source.bytes, keys, circumstances);
    }
}

bool SignedView::isAccepted() const
{
    return !m_isRequired || m_reading.outcome == SealOutcome::Accepted;
}

QString SignedView::userText() const
{
    return refusalText(m_reading.outcome);
}

PackageInfoList SignedView::packages() const
{
    return isAccepted() ? m_catalogue.packages : PackageInfoList();
}

QString SignedView::remark(const PackageInfo& package) const
{
    if (!m_isRequired) {
        return QString();
    }
    switch (m_catalogue.digests.of(package.url).state) {
    case PackageDigest::Missing:
        return "not installed: no \"sha256\"";
    case PackageDigest::Malformed:
        return "not installed: bad \"sha256\"";
    case PackageDigest::Given:
        break;
    }
    return QString();
}

QStringList SignedView::remarks() const
{
    QStringList list;
    for (const PackageInfo& package : packages()) {
        list.append(remark(package));
    }
    return list;
}

void SignedView::printRefusal(Terminal& terminal) const
{
    if (!isAccepted()) {
        terminal.line(
            terminal.coloured(QString("%1: refused by a client that requires signatures. %2")
                                  .arg(m_name, refusalSentence(m_reading)),
                              Terminal::Red));
    }
}

void SignedView::addToJson(QJsonObject& object, const QString& key) const
{
    if (m_isRequired) {
        object.insert(key, QJsonObject{{"accepted", isAccepted()},
                                       {"refusal", refusalName(m_reading.outcome)},
                                       {"message", refusalSentence(m_reading)}});
    }
}

} // namespace vx
