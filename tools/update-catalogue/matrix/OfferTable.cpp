#include "tools/update-catalogue/matrix/OfferTable.h"

#include <algorithm>
#include <functional>
#include <thread>
#include <vector>

#include "base/ReleaseNumber.h"
#include "tools/update-catalogue/Selection.h"

namespace vx {

namespace {

constexpr QChar separator(0x1f);

QString applicationKey(const OfferCriteria& criteria)
{
    return QStringList{"a",
                       criteria.applicationName,
                       releaseText(criteria.versionNumber),
                       criteria.supportedPlatforms.join(' '),
                       criteria.supportedPackageTypes.join(' '),
                       criteria.checkForBeta ? "beta" : ""}
        .join(separator);
}

QString cameraKey(const QPair<QString, VersionNumber>& camera, const OfferCriteria& criteria)
{
    return QStringList{"c", camera.first, releaseText(camera.second),
                       criteria.checkForBeta ? "beta" : ""}
        .join(separator);
}

/** One search that is still to be made. */
struct Question
{
    Offer* answer;
    std::function<Selection()> ask;
};

void answerEach(std::vector<Question>& questions, size_t first, size_t step)
{
    for (size_t i = first; i < questions.size(); i += step) {
        const Selection selection = questions[i].ask();
        questions[i].answer->packages = selection.kept;
        questions[i].answer->release =
            selection.kept.isEmpty() ? QString() : selection.highestRelease;
    }
}

void answerAll(std::vector<Question>& questions)
{
    const size_t workers = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (size_t worker = 1; worker < workers; ++worker) {
        threads.emplace_back(answerEach, std::ref(questions), worker, workers);
    }
    answerEach(questions, 0, workers);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

OfferTable::OfferTable(const PackageInfoList& catalogue, const InstallationList& installations,
                       const QStringList& remarks)
    : m_catalogue(catalogue)
    , m_remarks(remarks)
{
    for (const Installation& installation : installations) {
        const OfferCriteria& criteria = installation.criteria;
        m_offers.insert(applicationKey(criteria), Offer());
        for (const auto& camera : criteria.currentCameraVersions) {
            m_offers.insert(cameraKey(camera, criteria), Offer());
        }
    }
    // From here on no place in the table moves, so that the threads can write to their own.
    std::vector<Question> questions;
    QHash<QString, bool> asked;
    const auto ask = [&](const QString& key, std::function<Selection()> question) {
        if (!asked.value(key)) {
            asked.insert(key, true);
            questions.push_back({&m_offers[key], std::move(question)});
        }
    };
    for (const Installation& installation : installations) {
        const OfferCriteria& criteria = installation.criteria;
        ask(applicationKey(criteria),
            [this, &criteria] { return selectForApplication(m_catalogue, criteria); });
        for (const auto& camera : criteria.currentCameraVersions) {
            ask(cameraKey(camera, criteria), [this, &camera, &criteria] {
                return selectForCamera(m_catalogue, camera, criteria);
            });
        }
    }
    answerAll(questions);
}

const Offer& OfferTable::application(const Installation& installation) const
{
    return *m_offers.constFind(applicationKey(installation.criteria));
}

const Offer& OfferTable::camera(const Installation& installation, int index) const
{
    const OfferCriteria& criteria = installation.criteria;
    return *m_offers.constFind(cameraKey(criteria.currentCameraVersions.at(index), criteria));
}

bool OfferTable::isEmpty(const Installation& installation) const
{
    for (int i = 0; i < installation.criteria.currentCameraVersions.size(); ++i) {
        if (!camera(installation, i).packages.isEmpty()) {
            return false;
        }
    }
    return application(installation).packages.isEmpty();
}

} // namespace vx
