#include "tests/tools/update-catalogue/LintRun.h"

namespace vx::test {

QByteArray soundCatalogue()
{
    return "<?xml version=\"1.0\"?>\n"
           "<softwareList status=\"STABLE\" base-url=\"http://download.example.com/\">\n"
           "  <package name=\"Manager\" release=\"5.3\" platform=\"Mac64\">\n"
           "    <release-date>2026-11-20 10:00:00</release-date>\n"
           "    <file-size>1000</file-size>\n"
           "    <url>Manager.mpkg.zip</url>\n"
           "  </package>\n"
           "  <package name=\"Firmware\" release=\"4.2\" platform=\"CAM-1\" language=\"de en\">\n"
           "    <release-date>2026-11-20</release-date>\n"
           "    <file-size>2kB</file-size>\n"
           "    <url>firmware.bin</url>\n"
           "    <release-notes language=\"en\" url=\"http://www.example.com/notes\"/>\n"
           "  </package>\n"
           "</softwareList>\n";
}

LintOptions clientOptions()
{
    LintOptions options;
    options.platforms = QStringList{"Mac32", "Mac64", "MacPP"};
    options.listedTypes = QStringList{"mpkg", "dmg"};
    options.installableTypes = QStringList{"mpkg"};
    return options;
}

FindingList lint(const QByteArray& catalogue, const LintOptions& options)
{
    return lintCatalogue({"catalogue.xml", catalogue}, options);
}

QStringList rulesOf(const FindingList& findings)
{
    QStringList rules;
    for (const Finding& finding : findings) {
        rules.append(finding.rule);
    }
    rules.removeDuplicates();
    return rules;
}

} // namespace vx::test
