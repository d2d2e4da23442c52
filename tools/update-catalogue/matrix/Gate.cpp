#include "tools/update-catalogue/matrix/Gate.h"

#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/Installation.h"

namespace vx {

void declareGate(QCommandLineParser& parser)
{
    parser.addOption(
        {"fail-on", "Exit with 1 only on these: lost, replaced, downgrade, nothing.", "WORDS"});
}

QSet<int> gateFrom(const QCommandLineParser& parser)
{
    const QStringList names{"lost", "replaced", "downgrade", "nothing"};
    QSet<int> gate;
    for (const QString& word : splitWordList(parser.value("fail-on"))) {
        const int alarm = names.indexOf(word);
        if (alarm < 0) {
            throw CommandFailure(
                ExitUsage,
                QString("--fail-on takes %1, and not \"%2\"").arg(names.join(", "), word));
        }
        gate.insert(alarm);
    }
    return gate;
}

} // namespace vx
