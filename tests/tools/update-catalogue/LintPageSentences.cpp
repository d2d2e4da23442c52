#include "tests/tools/update-catalogue/LintPageSentences.h"

#include "base/ReleaseNumber.h"
#include "client/internal/ForeignLanguageRows.h"
#include "client/internal/PackageTable.h"
#include "tests/tools/update-catalogue/CatalogueFacts.h"
#include "tests/tools/update-catalogue/LintRun.h"

namespace vx::test {

namespace {

/** Release notes for English as they are read from @p packages. */
QString notesOf(const QString& packages)
{
    return read(packages).first().relNotes.value("en").toString();
}

QString notes(const QString& url)
{
    return QString("<release-notes language='en' url='%1'/>").arg(url);
}

/** Whether lint has a finding of @p rule, given that "Dome-24" and "CameraManager" are in use. */
bool fieldFinds(const QString& rule, const QString& packages)
{
    Installation installation;
    installation.criteria = defaultCriteria();
    installation.criteria.applicationName = "CameraManager";
    installation.criteria.currentCameraVersions.append({"Dome-24", VersionNumber("4.1")});
    LintOptions options = clientOptions();
    options.installations.append(installation);
    return rulesOf(lint(catalogue(packages), options)).contains(rule);
}

QString sharing(const QString& attributes)
{
    return QString("<package-set %1>%2%3</package-set>")
        .arg(attributes, pkg({{"file-size", "1"}}).remove("file-size=\"1\""),
             pkg({{"file-size", "1"}, {"release", "5.4"}}).remove("file-size=\"1\""));
}

bool isHiddenFromEnglish(const QString& languages)
{
    const QString packages = firmware({{"language", languages}}) + firmware({{"file-size", "2"}});
    return foreignLanguageRows(cameraOffers(packages), "en") == QList<int>{0};
}

bool isTooDeep(int levels)
{
    return readBytes(QByteArray("<package-set>").repeated(levels) + "<package/>" +
                     QByteArray("</package-set>").repeated(levels))
        .isEmpty();
}

} // namespace

const QList<LintSentence>& lintSentences()
{
    static const QList<LintSentence> list{
        {"not-well-formed",
         R"~(The document is no XML, or larger, deeper or more entangled than a client reads. Everybody reads "No update available!".)~",
         [] {
             return readBytes("<a><package></a>").isEmpty() && isTooDeep(1000) && !isTooDeep(900) &&
                    lintFinds("not-well-formed", "<package>");
         }},
        {"no-package", R"~(There is no package where one is read.)~",
         [] { return read("<package-set/>").isEmpty(); }},
        {"unknown-element", R"~(Nobody reads this element.)~",
         [] { return read("<package><relase>5</relase></package>").first().release.isEmpty(); }},
        {"unknown-attribute", R"~(Nobody reads this attribute.)~",
         [] { return read("<package relase='5'/>").first().release.isEmpty(); }},
        {"unvisited",
         R"~(A `package` or `package-set` inside a `package`, a `file` or an unknown element.)~",
         [] {
             return read("<package><package/><package-set><package/></package-set></package>")
                            .size() == 1 &&
                    read("<package><file><package/></file></package>").size() == 1 &&
                    read("<group><package/></group>").isEmpty();
         }},
        {"further-file", R"~(A second `file` in a package is never read.)~",
         [] { return read("<package><file/><file name='b'/></package>").first().name.isEmpty(); }},
        {"repeated-field",
         R"~(A field stands twice at one level with different texts: the first element counts, and an element counts before an attribute.)~",
         [] {
             return read("<package name='c'><name>a</name><name>b</name></package>").first().name ==
                    "a";
         }},
        {"markup-in-text",
         R"~(An element inside `comment` or another text: its tags are dropped, the text in it is kept.)~",
         [] { return commentOf("a <b>b</b> c") == "a b c"; }},
        {"stray-text",
         R"~(Text between elements, or in an entry of release notes. Nobody reads it.)~",
         [] {
             return read("<package>x<name>a</name>y</package>").first().name == "a" &&
                    notesOf("<package><release-notes url='a'>b</release-notes></package>") == "a";
         }},
        {"blank-around",
         R"~(White space at the beginning or end of `name`, `release`, `base-url` or `url`. It belongs to the value, and what is compared is another text.)~",
         [] {
             return read("<package><name> a</name><release>5 </release><base-url> b</base-url>"
                         "<url>c </url></package>")
                            .first()
                            .release == "5 " &&
                    offers(pkg({{"name", "CameraManager "}})).isEmpty() &&
                    lintFinds("blank-around", pkg({{"release", " 5.3"}})) &&
                    lintFinds("blank-around", pkg({{"url", "http://h.example.com/a.mpkg "}})) &&
                    lintFinds("blank-around", pkg({{"base-url", " http://h.example.com/"}}));
         }},
        {"wrong-encoding",
         R"~(Letters such as `Ã¼`: the file was written in another encoding than its first line says.)~",
         [] {
             return lintFinds("wrong-encoding", pkg({{"comment", QString::fromUtf8("fÃ¼r")}}));
         }},
        {"escaped-twice",
         R"~(An entity that is left over in a text, or a tag that a comment shows as text.)~",
         [] {
             return commentOf("&amp;lt;b&amp;gt;") == "&lt;b&gt;" &&
                    lintFinds("escaped-twice", pkg({{"name", "a &amp;amp; b"}}));
         }},
        {"swallowed-package",
         R"~(A text with packages in it: the `]]>` of its `CDATA` section is missing, and all to the next one is text.)~",
         [] {
             return read("<package><comment><![CDATA[a</comment></package>"
                         "<package><comment><![CDATA[b]]></comment></package>")
                        .size() == 1;
         }},
        {"no-size", R"~(No `file-size`. The download never ends.)~",
         [] { return read("<package/>").first().fileSize == 0; }},
        {"unreadable-size",
         R"~(A size that reads as 0: a comma, dots between thousands, an unknown unit such as GB, a fraction below one unit. The download never ends.)~",
         [] {
             return sizeOf("1,5MB") == 0 && sizeOf("734.003.200") == 0 && sizeOf("2GB") == 0 &&
                    sizeOf("0.9MB") == 0;
         }},
        {"lost-fraction",
         R"~(The fraction of a unit is cut off, so that a truncated download passes as complete.)~",
         [] { return sizeOf("1.9MB") == 1048576 && sizeOf("1.5kB") == 1024; }},
        {"implausible-size", R"~(More than 64 GiB.)~",
         [] {
             return lintFinds("implausible-size", pkg({{"file-size", "68719476737"}})) &&
                    !lintFinds("implausible-size", pkg({{"file-size", "68719476736"}}));
         }},
        {"size-mismatch",
         R"~(The size is not that of the file, or the file is not there. Only with `--files` or `--check-urls`.)~",
         [] { return fileIsFound(999999) && fileIsFound(1000001) && !fileIsFound(1000000); }},
        {"no-address", R"~(No host or no file name in the address.)~",
         [] {
             return read(pkg({{"url", "a.mpkg"}})).first().url.host().isEmpty() &&
                    lintFinds("no-address", pkg({{"url", "a.mpkg"}})) &&
                    lintFinds("no-address", pkg({{"url", "http://h.example.com/"}}));
         }},
        {"absolute-under-base",
         R"~(`url` is a whole address, and a `base-url` is put in front of it.)~",
         [] {
             return read(pkg({{"base-url", "http://a.example.com/"}})).first().url.toString() ==
                    "http://a.example.com/http://h.example.com/a.mpkg.zip";
         }},
        {"base-without-slash",
         R"~(`base-url` runs into `url`: it ends neither in `/` nor in one of `-_.=`.)~",
         [] {
             const Fields runsIn{{"base-url", "http://a.example.com/b"}, {"url", "c.mpkg"}};
             const Fields goesOn{{"base-url", "http://a.example.com/b-"}, {"url", "c.mpkg"}};
             return read(pkg(runsIn)).first().url.toString() == "http://a.example.com/bc.mpkg" &&
                    lintFinds("base-without-slash", pkg(runsIn)) &&
                    !lintFinds("base-without-slash", pkg(goesOn));
         }},
        {"doubled-slash",
         R"~(`//` in the path of the address. Many servers do not find that file.)~",
         [] {
             return lintFinds("doubled-slash", pkg({{"url", "http://h.example.com//a.mpkg"}}));
         }},
        {"odd-address", R"~(A backslash, a `#`, or a user and password in the address.)~",
         [] {
             return lintFinds("odd-address", pkg({{"url", "http://h.example.com/a\\b.mpkg"}})) &&
                    lintFinds("odd-address", pkg({{"url", "http://h.example.com/a#b.mpkg"}})) &&
                    lintFinds("odd-address", pkg({{"url", "http://u:p@h.example.com/a.mpkg"}}));
         }},
        {"local-address", R"~(`localhost` or another name of each installation's own machine.)~",
         [] {
             return lintFinds("local-address", pkg({{"url", "http://localhost/a.mpkg"}})) &&
                    lintFinds("local-address", pkg({{"url", "http://127.0.0.1/a.mpkg"}}));
         }},
        {"ignored-scheme", R"~(Packages are fetched by HTTP whatever the scheme says.)~",
         [] {
             return lintFinds("ignored-scheme", pkg({{"url", "https://h.example.com/a.mpkg"}}));
         }},
        {"ignored-port", R"~(Packages are fetched from port 80 whatever the address says.)~",
         [] {
             return lintFinds("ignored-port", pkg({{"url", "http://h.example.com:8080/a.mpkg"}}));
         }},
        {"suspicious-suffix",
         R"~(The file type, which is what follows the last dot of the whole address, has fewer than 3 or more than 7 characters, or holds a query.)~",
         [] {
             const QString address = "http://h.example.com/a.";
             return read(pkg({{"url", address + "b/c"}})).first().packageType == "b/c" &&
                    lintFinds("suspicious-suffix", firmware({{"url", address + "bc"}})) &&
                    !lintFinds("suspicious-suffix", firmware({{"url", address + "bcd"}})) &&
                    !lintFinds("suspicious-suffix", firmware({{"url", address + "bcdefgh"}})) &&
                    lintFinds("suspicious-suffix", firmware({{"url", address + "bcdefghi"}})) &&
                    lintFinds("suspicious-suffix", firmware({{"url", address + "bin?v"}}));
         }},
        {"capital-suffix", R"~(The type is known in small letters only.)~",
         [] {
             return offers(pkg({{"url", "http://h.example.com/a.DMG"}})).isEmpty() &&
                    offers(pkg({{"url", "http://h.example.com/a.dmg"}})).size() == 1;
         }},
        {"unlisted-type", R"~(The application does not list packages of this type.)~",
         [] {
             return offers(pkg({{"url", "http://h.example.com/a.zip"}})).isEmpty();
         }},
        {"not-installable", R"~(Users can download the package and must install it by hand.)~",
         [] {
             const QString image = pkg({{"url", "http://h.example.com/a.dmg"}});
             return offers(image).size() == 1 && lintFinds("not-installable", image);
         }},
        {"unknown-status",
         R"~(Neither `STABLE` nor `BETA`. Only users who want beta versions are offered the package.)~",
         [] {
             return offers(pkg({{"status", "Stable"}})).isEmpty() &&
                    offersBeta(pkg({{"status", "Stable"}})).size() == 1;
         }},
        {"unreadable-date",
         R"~(Neither `yyyy-MM-dd hh:mm:ss` nor `yyyy-MM-dd`. Users see no date.)~",
         [] {
             const PackageInfo package = read(pkg({{"release-date", "20.11.2026"}})).first();
             return !package.date.isValid() && !packageComment(package).contains("Published");
         }},
        {"unreadable-release", R"~(No version number, so that every installed version is newer.)~",
         [] {
             return offers(pkg({{"release", "new"}}), "0").isEmpty();
         }},
        {"preliminary-stable",
         R"~(A `STABLE` release with something behind its numbers, such as `5.3-rc1`, `5,3`, `5..3` or `5.O`. It is lower than those numbers, and never offered to those who have them.)~",
         [] {
             return releaseNumber("5.3-rc1") < releaseNumber("5.3") &&
                    releaseNumber("5,3") < releaseNumber("5") &&
                    releaseNumber("5..3") < releaseNumber("5") &&
                    releaseNumber("5.O") < releaseNumber("5") &&
                    offers(pkg({{"release", "5.3-rc1"}}), "5.3").isEmpty();
         }},
        {"release-spelling",
         R"~(The same version as another package's, spelt differently. The one that stands first pushes the other out.)~",
         [] {
             const PackageInfoList offered =
                 offers(pkg({{"release", "6.00"}}) + pkg({{"release", "6.0"}}));
             return offered.size() == 1 && offered.first().release == "6.00";
         }},
        {"public-release-differs", R"~(`public-release` says another number than `release`.)~",
         [] {
             return lintFinds("public-release-differs", pkg({{"public-release", "5.4"}}));
         }},
        {"equal-identity",
         R"~(Date and size of another package: as firmware only the first of them is offered, and the update history takes both for one.)~",
         [] {
             const QString twins = firmware() + firmware({{"name", "x"}});
             return cameraOffers(twins).size() == 1 &&
                    read(twins).at(0).stringID() == read(twins).at(1).stringID();
         }},
        {"shared-address", R"~(Two packages with one address and different sizes or dates.)~",
         [] {
             return lintFinds("shared-address", pkg() + pkg({{"file-size", "2"}})) &&
                    lintFinds("shared-address", pkg() + pkg({{"release-date", "2026-11-20"}}));
         }},
        {"repeated-package",
         R"~(A package of the application twice: equal in name, release, status, type and languages, for a platform that both name. Users see two rows that they can't tell apart.)~",
         [] {
             const PackageInfoList rows = offers(pkg() + pkg());
             return rows.size() == 2 && packageTableRow(rows.at(0)) == packageTableRow(rows.at(1));
         }},
        {"address-of-other",
         R"~(The file's name holds the release of another package of this name, and not this one.)~",
         [] {
             const auto of = [](const QString& release, const QString& file) {
                 return pkg({{"release", release}, {"url", "http://h.example.com/" + file}});
             };
             return lintFinds("address-of-other", of("5.3", "CameraManager-5.3.mpkg") +
                                                      of("5.4", "CameraManager-5.3.mpkg"));
         }},
        {"hidden-by-empty",
         R"~(An empty value ends the search and hides the one that would be inherited.)~",
         [] {
             return read("<package-set comment='a'><package comment=''/></package-set>")
                 .first()
                 .comment.isEmpty();
         }},
        {"inherited-from-far",
         R"~(`url` or `file-size` comes from a set that several packages share.)~",
         [] {
             return read(sharing("file-size='7'")).at(1).fileSize == 7 &&
                    lintFinds("inherited-from-far", sharing("file-size='7'"));
         }},
        {"words-add-up",
         R"~(The words of the levels around are added to these, and cannot be taken away.)~",
         [] {
             return read("<package-set platform='a'><package platform='b'/></package-set>")
                        .first()
                        .platforms == QStringSet({"a", "b"});
         }},
        {"no-name", R"~(A package of the application without a `name`.)~",
         [] {
             return offers(pkg({{"name", ""}})).isEmpty();
         }},
        {"name-spelling",
         R"~(The application's packages have two names that differ in case, blanks, punctuation or a slip of the finger.)~",
         [] {
             return lintFinds("name-spelling", pkg() + pkg({{"name", "Camera Manager"}})) &&
                    lintFinds("name-spelling", pkg() + pkg({{"name", "CameraManger"}}));
         }},
        {"no-platform", R"~(Offered to nobody.)~",
         [] {
             return offers(pkg({{"platform", ""}})).isEmpty() &&
                    cameraOffers(firmware({{"platform", ""}})).isEmpty();
         }},
        {"platform-spelling",
         R"~(A platform that differs from one of the application, or from a commoner one of the catalogue, in case, punctuation or a slip of the finger.)~",
         [] {
             return offers(pkg({{"platform", "mac64"}})).isEmpty() &&
                    lintFinds("platform-spelling", pkg({{"platform", "mac64"}})) &&
                    lintFinds("platform-spelling",
                              firmware() + firmware({{"release", "4.3"}}) +
                                  firmware({{"release", "4.4"}, {"platform", "Dome24"}}));
         }},
        {"platform-begins-other",
         R"~(A camera that another one begins with, as `Dome` and `Dome-24`: each is offered what is for the other.)~",
         [] {
             return cameraOffers(firmware({{"platform", "Dome"}})).size() == 1 &&
                    cameraOffers(firmware({{"platform", "Dome-24-HD"}})).size() == 1;
         }},
        {"blank-in-platform", R"~(`Dome 24` is two words, `Dome` and `24`.)~",
         [] {
             return read(firmware({{"platform", "Dome 24"}})).first().platforms ==
                    QStringSet({"Dome", "24"});
         }},
        {"language-word",
         R"~(Firmware in a language that no system has, such as `DE`, `german` or `de_DE`.)~",
         [] {
             return lintFinds("language-word", firmware({{"language", "DE"}})) &&
                    lintFinds("language-word", firmware({{"language", "german"}})) &&
                    lintFinds("language-word", firmware({{"language", "de_DE"}}));
         }},
        {"hidden-from-english",
         R"~(English users see a row of firmware only if its languages hold both `de` and `en`, as soon as another row does. No package of this release for this camera has both.)~",
         [] {
             return isHiddenFromEnglish("en") && isHiddenFromEnglish("de") &&
                    !isHiddenFromEnglish("de en");
         }},
        {"notes-without-en", R"~(The button opens the English release notes, and there are none.)~",
         [] {
             return lintFinds("notes-without-en",
                              withNotes("language='de' url='http://a.example/'"));
         }},
        {"notes-language",
         R"~(An entry under a language that nobody looks up: a name such as `english`, or, without a language of its own, the whole list of words around it.)~",
         [] {
             return read("<package language='de en'><release-notes url='a'/></package>")
                            .first()
                            .relNotes.firstKey() == "de en" &&
                    read(withNotes("language='english' url='a'")).first().relNotes.firstKey() ==
                        "english";
         }},
        {"notes-repeated",
         R"~(Different addresses for one language. The outermost counts, and of several there the last.)~",
         [] {
             return notesOf("<package>" + notes("a") + notes("b") + "</package>") == "b" &&
                    notesOf("<package-set>" + notes("a") + notes("b") + "<package>" + notes("c") +
                            "</package></package-set>") == "b";
         }},
        {"notes-without-url",
         R"~(An entry without a `url`: it takes that of the package around, and opens the package's file. Its text is not read.)~",
         [] {
             return notesOf("<package url='http://h.example.com/a.mpkg'><release-notes "
                            "language='en'>http://b.example.com/</release-notes></package>") ==
                    "http://h.example.com/a.mpkg";
         }},
        {"relative-notes",
         R"~(An address that is not whole. `base-url` is not put in front of it.)~",
         [] {
             return notesOf("<package base-url='http://h.example.com/'>" + notes("a.html") +
                            "</package>") == "a.html";
         }},
        {"platform-not-in-field", R"~(A platform that fits no camera and no platform there.)~",
         [] {
             return fieldFinds("platform-not-in-field", firmware({{"platform", "Mini-12"}})) &&
                    !fieldFinds("platform-not-in-field", firmware() + pkg());
         }},
        {"platform-too-wide",
         R"~(A platform that fits cameras of other names, as `Dome-2` fits `Dome-24`.)~",
         [] {
             return fieldFinds("platform-too-wide", firmware({{"platform", "Dome-2"}})) &&
                    !fieldFinds("platform-too-wide", firmware());
         }},
        {"application-without-package", R"~(An application there that no package names.)~",
         [] {
             return fieldFinds("application-without-package", firmware()) &&
                    !fieldFinds("application-without-package", pkg());
         }},
    };
    return list;
}

} // namespace vx::test
