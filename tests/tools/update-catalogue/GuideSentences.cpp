#include "tests/tools/update-catalogue/GuideSentences.h"

#include <QtTest>

#include "client/internal/ForeignLanguageRows.h"
#include "client/internal/PackageTable.h"
#include "tests/tools/update-catalogue/CatalogueFacts.h"
#include "tests/tools/update-catalogue/LintRun.h"

namespace vx::test {

QString catalogueGuide()
{
    QFile page(QFINDTESTDATA("../../../docs/catalogue-guide.md"));
    return page.open(QIODevice::ReadOnly) ? QString::fromUtf8(page.readAll()) : QString();
}

QStringList guideExamples()
{
    QStringList found;
    const QString text = catalogueGuide();
    for (const QString& part : text.split("```xml\n").mid(1)) {
        found.append(part.section("```", 0, 0));
    }
    return found;
}

namespace {

bool inheritanceExampleIsAsSaid()
{
    const PackageInfoList list = readBytes(guideExamples().at(1).toUtf8());
    const QStringSet cameras{"Dome-24", "Mini-12"};
    const QStringSet languages{"de", "en"};
    return list.size() == 2 && list.at(0).platforms == cameras && list.at(1).platforms == cameras &&
           list.at(0).languages == languages && list.at(1).languages == languages &&
           list.at(0).status == "STABLE" && list.at(0).release == "4.2" &&
           list.at(1).status == "BETA" && list.at(1).release == "4.3";
}

} // namespace

const QList<GuideSentence>& guideSentences()
{
    static const QList<GuideSentence> list{
        {R"~(For release managers: how to write the XML document that the update server returns, and what goes wrong most often. `update-catalogue lint` finds the traps on this page, and [a page of its own](catalogue-lint.md) says which rule finds what, and what none can find.)~",
         [] {
             return lintFinds("no-platform", pkg({{"platform", ""}}));
         }},
        {R"~(The same catalogue is sent to everybody. Each installation picks what is newer for itself.)~",
         [] { return offers(pkg(), "5.2").size() == 1 && offers(pkg(), "5.3").isEmpty(); }},
        {R"~(The **application** is offered a package when all of these hold:)~",
         [] { return offers(pkg()).size() == 1; }},
        {R"~(1. `name` equals the application's name exactly.)~",
         [] {
             return offers(pkg({{"name", "Cameramanager"}})).isEmpty();
         }},
        {R"~(2. `release` is a higher version than the installed one.)~",
         [] { return offers(pkg(), "5.3").isEmpty() && offers(pkg(), "5.2.9").size() == 1; }},
        {R"~(3. `status` is exactly `STABLE`, or the user has beta versions on: then every status will do.)~",
         [] {
             return offers(pkg({{"status", "x"}})).isEmpty() &&
                    offersBeta(pkg({{"status", "x"}})).size() == 1 && offersBeta(pkg()).size() == 1;
         }},
        {R"~(4. A `platform` word and one of the application's platforms begin with one another.)~",
         [] {
             return offers(pkg({{"platform", "Mac"}})).size() == 1 &&
                    offers(pkg({{"platform", "Mac64x"}})).size() == 1 &&
                    offers(pkg({{"platform", "Win"}})).isEmpty();
         }},
        {R"~(5. The type of the file, from the end of its address, is one that the application lists (`mpkg` and `dmg` unless changed).)~",
         [] {
             return offers(pkg({{"url", "http://h.example.com/a.dmg"}})).size() == 1 &&
                    offers(pkg({{"url", "http://h.example.com/a.zip"}})).isEmpty();
         }},
        {R"~(A **camera** is offered a package when 2, 3 and 4 hold, with the camera's name in place of the platforms. Its `name` and file type do not matter.)~",
         [] {
             return cameraOffers(firmware()).size() == 1 &&
                    cameraOffers(firmware({{"status", "x"}})).isEmpty() &&
                    cameraOffers(firmware({{"release", "4.1"}})).isEmpty() &&
                    cameraOffers(firmware({{"name", "x"}, {"url", "http://h.example.com/a.q"}}))
                            .size() == 1;
         }},
        {R"~(Of what is left, only the highest release is kept, for the application and for each camera.)~",
         [] {
             return offers(pkg() + pkg({{"release", "5.4"}})).size() == 1 &&
                    cameraOffers(firmware() + firmware({{"release", "4.3"}})).size() == 1;
         }},
        {R"~(| `type` | kind of package; replaced by "Application" or "Camera Firmware" when offered | empty |)~",
         [] {
             return offers(pkg({{"type", "x"}})).first().type == "Application" &&
                    cameraOffers(firmware()).first().type == "Camera Firmware" &&
                    read(pkg()).first().type.isEmpty();
         }},
        {R"~(| `name` | internal name; what the application is matched with | matches no application that has a name |)~",
         [] {
             return offers(pkg({{"name", ""}})).isEmpty();
         }},
        {R"~(| `public-name` | name for people | `name` is shown anyway |)~",
         [] {
             return packageTableRow(read(pkg({{"public-name", "x"}})).first())
                 .first()
                 .startsWith("CameraManager ");
         }},
        {R"~(| `release` | version that is compared | lower than any version: never offered |)~",
         [] {
             return offers(pkg({{"release", ""}}), "0").isEmpty() &&
                    offers(pkg({{"release", "new"}}), "0").isEmpty();
         }},
        {R"~(| `public-release` | version that is shown | `release` is shown |)~",
         [] {
             return packageTableRow(read(pkg({{"public-release", "2026"}})).first()).first() ==
                        "CameraManager 2026" &&
                    packageTableRow(read(pkg()).first()).first() == "CameraManager 5.3";
         }},
        {R"~(| `status` | `STABLE` or `BETA`, in capitals | offered only with beta on |)~",
         [] {
             return offers(pkg({{"status", ""}})).isEmpty() &&
                    offersBeta(pkg({{"status", ""}})).size() == 1;
         }},
        {R"~(| `release-date` | `yyyy-MM-dd hh:mm:ss` or `yyyy-MM-dd` | no date |)~",
         [] {
             return read(pkg({{"release-date", "2026-11-20"}})).first().date.isValid() &&
                    read(pkg({{"release-date", "2026-11-20 10:00:00"}})).first().date.isValid() &&
                    !read(pkg({{"release-date", "20.11.2026"}})).first().date.isValid();
         }},
        {R"~(| `platform` | words: platforms or camera names | offered to nobody |)~",
         [] {
             return offers(pkg({{"platform", ""}})).isEmpty() &&
                    cameraOffers(firmware({{"platform", ""}})).isEmpty();
         }},
        {R"~(| `language` | words: `de`, `en`, ... | see the trap below |)~",
         [] {
             return read(firmware({{"language", "de en"}})).first().languages ==
                    QStringSet({"de", "en"});
         }},
        {R"~(| `base-url`, `url` | the address is the two texts put together | no download |)~",
         [] {
             return read(pkg({{"base-url", "http://h.example.com/x-"}, {"url", "a.dmg"}}))
                        .first()
                        .url.toString() == "http://h.example.com/x-a.dmg";
         }},
        {R"~(| `file-size` | bytes, or whole numbers with `kB` (1024) or `MB` (1048576) | 0: the download never ends |)~",
         [] {
             return sizeOf("7kB") == 7168 && sizeOf("7MB") == 7340032 && sizeOf("x") == 0 &&
                    sizeOf("") == 0;
         }},
        {R"~(| `sha256` | digest of the file, 64 hexadecimal digits; at the package or its `file`, never inherited | applications that [require signatures](signing.md) refuse to install it; others do not look at it |)~",
         [] {
             return offers(pkg({{"sha256", "x"}})).size() == 1;
         }},
        {R"~(| `release-notes`, `readme` | addresses by language, see below | no release notes |)~",
         [] {
             return read(pkg()).first().relNotes.isEmpty() && read(pkg()).first().readme.isEmpty();
         }},
        {R"~(| `comment` | text for the user, shown as HTML: `&lt;b&gt;new&lt;/b&gt;`, or `<![CDATA[<b>new</b>]]>` | none |)~",
         [] {
             return commentOf("&lt;b&gt;new&lt;/b&gt;") == "<b>new</b>" &&
                    commentOf("<![CDATA[<b>new</b>]]>") == "<b>new</b>";
         }},
        {R"~(Every field can be an element or an attribute.)~",
         [] {
             return read("<package><name>x</name></package>").first().name == "x" &&
                    read("<package name='x'/>").first().name == "x";
         }},
        {R"~(A field is looked up from the inside out: the package's `file`, the package, its set, the set around that, up to the root. The nearest one wins, and at one level an element beats an attribute.)~",
         [] {
             return read("<package-set name='a'><package name='b'><file "
                         "name='c'/></package></package-set>")
                            .first()
                            .name == "c" &&
                    read("<package name='a'><name>b</name></package>").first().name == "b";
         }},
        {R"~(Both packages are for both cameras and in both languages. The second one overrides `status` and `release`.)~",
         [] { return inheritanceExampleIsAsSaid(); }},
        {R"~(- **Word sets add up.** `platform` and `language` are gathered from every level. A package cannot take away a word that its set gives.)~",
         [] {
             return read("<package-set platform='a'><package platform='b'/></package-set>")
                        .first()
                        .platforms == QStringSet({"a", "b"});
         }},
        {R"~(- **An empty element hides.** `<comment></comment>` on a package ends the search: the set's comment does not apply.)~",
         [] {
             return read("<package-set "
                         "comment='a'><package><comment></comment></package></package-set>")
                 .first()
                 .comment.isEmpty();
         }},
        {R"~(- **Only the first `file` counts**, and a `package` or `package-set` inside a `package` is not read.)~",
         [] {
             return read("<package><file name='a'/><file name='b'/><package "
                         "name='c'/><package-set><package/></package-set></package>")
                            .size() == 1 &&
                    read("<package><file name='a'/><file name='b'/></package>").first().name == "a";
         }},
        {R"~(- **The button opens the English ones**, whatever the user's language. Without an entry for `en` the button stays disabled.)~",
         [] {
             return lintFinds("notes-without-en",
                              withNotes("language='de' url='http://h.example.com/'"));
         }},
        {R"~(- `base-url` is not put in front of these addresses.)~",
         [] {
             return read(withNotes("language='en' url='a.html'"))
                        .first()
                        .relNotes.value("en")
                        .toString() == "a.html";
         }},
        {R"~(- An entry without a `language` takes the nearest `language` around it, whole: with `<language>de en</language>` on the package that is the text "de en", which nobody looks up. Without any, it is `en`.)~",
         [] {
             return read(withNotes("url='http://h.example.com/'")).first().relNotes.firstKey() ==
                        "en" &&
                    read("<package language='de en'><release-notes url='a'/></package>")
                            .first()
                            .relNotes.firstKey() == "de en";
         }},
        {R"~(Lint finds each of these with what stands in the catalogue; for the two sizes that are not those of the files it needs `--files` or `--check-urls`, and platform `Mac` may be meant.)~",
         [] {
             return lintFinds("no-size", pkg({{"file-size", ""}})) &&
                    lint(catalogue(pkg({{"platform", "Mac"}}))).isEmpty();
         }},
        {R"~(| no `file-size`, or 0 | the progress dialog never ends | give the size in bytes |)~",
         [] {
             return lintFinds("no-size", pkg({{"file-size", ""}})) &&
                    lintFinds("unreadable-size", pkg({{"file-size", "0"}}));
         }},
        {R"~(| `file-size` smaller than the file is | a truncated file passes as complete | give the exact size |)~",
         [] { return fileIsFound(1000001); }},
        {R"~(| `file-size` larger than the file is | every download fails | give the exact size |)~",
         [] { return fileIsFound(999999); }},
        {R"~(| a fraction: `0.5MB`, `1.9MB` | 0 and 1 MB: the fraction is cut off before the unit is applied | give bytes |)~",
         [] {
             return sizeOf("0.5MB") == 0 && sizeOf("1.9MB") == 1048576 &&
                    lintFinds("lost-fraction", pkg({{"file-size", "1.9MB"}}));
         }},
        {R"~(| a comma, `GB`, dots between thousands | 0: the progress dialog never ends | give bytes |)~",
         [] {
             return sizeOf("1,5MB") == 0 && sizeOf("2GB") == 0 && sizeOf("734.003.200") == 0 &&
                    sizeOf("12 MB") == 12582912 &&
                    lintFinds("unreadable-size", pkg({{"file-size", "2GB"}}));
         }},
        {R"~(| two packages with equal date and equal size | for cameras only the first is offered, even if the names differ | give each its own time |)~",
         [] {
             return cameraOffers(firmware() +
                                 firmware({{"name", "x"}, {"url", "http://h.example.com/b.bin"}}))
                            .size() == 1 &&
                    lintFinds("equal-identity",
                              firmware() +
                                  firmware({{"name", "x"}, {"url", "http://h.example.com/b.bin"}}));
         }},
        {R"~(| `https://` or `:8080` in a package's address | fetched by HTTP from port 80 all the same | serve packages on port 80 |)~",
         [] {
             return lintFinds("ignored-scheme", pkg({{"url", "https://h.example.com/a.mpkg"}})) &&
                    lintFinds("ignored-port", pkg({{"url", "http://h.example.com:8080/a.mpkg"}}));
         }},
        {R"~(| `<b>` in a `comment` that is not escaped | the words without the tags | write `&lt;b&gt;`, or use `CDATA` |)~",
         [] {
             return commentOf("a <b>b</b>") == "a b" &&
                    lintFinds("markup-in-text", "<package><comment>a <b>b</b></comment></package>");
         }},
        {R"~(| `5.3-rc1`, `5,3`, `5..3` or `5.O` as a stable `release` | lower than 5.3, or than 5: nobody who has that gets it | numbers with one dot between them |)~",
         [] {
             return offers(pkg({{"release", "5.3-rc1"}}), "5.3").isEmpty() &&
                    offers(pkg({{"release", "5,3"}}), "5").isEmpty() &&
                    offers(pkg({{"release", "5..3"}}), "5").isEmpty() &&
                    offers(pkg({{"release", "5.O"}}), "5").isEmpty() &&
                    lintFinds("preliminary-stable", pkg({{"release", "5.O"}}));
         }},
        {R"~(| a whole address in `url` under a `base-url` | two addresses in one: no download | an empty `base-url`, or the rest alone |)~",
         [] {
             return read(pkg({{"base-url", "http://a.example.com/"}})).first().url.toString() ==
                        "http://a.example.com/http://h.example.com/a.mpkg.zip" &&
                    lintFinds("absolute-under-base", pkg({{"base-url", "http://a.example.com/"}}));
         }},
        {R"~(| a `base-url` without its last slash | the two texts run together: no download | end it in `/` |)~",
         [] {
             return lintFinds("base-without-slash",
                              pkg({{"base-url", "http://a.example.com"}, {"url", "b.mpkg"}}));
         }},
        {R"~(| platform `Dome` beside `Dome-24` | each is offered what is for the other | full names |)~",
         [] {
             return cameraOffers(firmware({{"platform", "Dome"}})).size() == 1 &&
                    lintFinds("platform-begins-other",
                              firmware({{"platform", "Dome"}}) + firmware());
         }},
        {R"~(| a relative address of release notes | the button opens nothing | the whole address |)~",
         [] { return lintFinds("relative-notes", withNotes("language='en' url='a.html'")); }},
        {R"~(| a query behind the file name | the query becomes the file type, so that the package is hidden, and it is not sent when the file is fetched | leave it out |)~",
         [] {
             return read(pkg({{"url", "http://h.example.com/a.dmg?v=1"}})).first().packageType ==
                        "dmg?v=1" &&
                    lintFinds("suspicious-suffix",
                              pkg({{"url", "http://h.example.com/a.dmg?v=1"}}));
         }},
        {R"~(| `.ZIP`, `.MPKG.ZIP` | type "ZIP", which no application lists | small letters |)~",
         [] {
             return read(pkg({{"url", "http://h.example.com/a.MPKG.ZIP"}})).first().packageType ==
                        "ZIP" &&
                    lintFinds("capital-suffix", pkg({{"url", "http://h.example.com/a.MPKG.ZIP"}}));
         }},
        {R"~(| `beta`, `Beta`, `stable` | neither offered as stable nor marked " BETA" | capitals |)~",
         [] {
             return offers(pkg({{"status", "beta"}})).isEmpty() &&
                    !packageTableRow(read(pkg({{"status", "Beta"}})).first())
                         .first()
                         .contains("BETA") &&
                    offers(pkg({{"status", "stable"}})).isEmpty() &&
                    lintFinds("unknown-status", pkg({{"status", "stable"}}));
         }},
        {R"~(| `2.0` and `2.00` in one catalogue | the same version: the one that stands first pushes the other out | one spelling |)~",
         [] {
             return offers(pkg({{"release", "6.0"}}) + pkg({{"release", "6.00"}})).size() == 1 &&
                    offers(pkg({{"release", "6.00"}}) + pkg({{"release", "6.0"}}))
                            .first()
                            .release == "6.00" &&
                    lintFinds("release-spelling",
                              pkg({{"release", "6.00"}}) + pkg({{"release", "6.0"}}));
         }},
        {R"~(| `2.0-beta.2` as `release` | lower than 2.0, so nobody with 2.0 gets it | mean it |)~",
         [] {
             return offersBeta(pkg({{"release", "2.0-beta.2"}}), "2.0").isEmpty() &&
                    lintFinds("preliminary-stable", pkg({{"release", "2.0-beta.2"}}));
         }},
        {R"~(| firmware with `language` `en` alone | hidden from English users until they tick "Show all languages", as soon as another row suits them | write `de en` |)~",
         [] {
             return foreignLanguageRows(cameraOffers(firmware({{"language", "en"}}) +
                                                     firmware({{"file-size", "2"}})),
                                        "en") == QList<int>{0} &&
                    lintFinds("hidden-from-english", firmware({{"language", "en"}}));
         }},
        {R"~(| no `platform` | offered to nobody | name the platforms |)~",
         [] {
             return lintFinds("no-platform", pkg({{"platform", ""}}));
         }},
        {R"~(| platform `Mac` | fits Mac32, Mac64 and MacPP | mean it |)~",
         [] {
             return offersOn("Mac32", pkg({{"platform", "Mac"}})).size() == 1 &&
                    offersOn("Mac64", pkg({{"platform", "Mac"}})).size() == 1 &&
                    offersOn("MacPP", pkg({{"platform", "Mac"}})).size() == 1;
         }},
        {R"~(| a name between `<package>` and its set that nobody visits | the packages in it are not offered | only `package-set` and `package` |)~",
         [] {
             return read("<group>" + pkg() + "</group>").isEmpty() &&
                    lintFinds("unvisited", "<group>" + pkg() + "</group>" + pkg());
         }},

    };
    return list;
}

} // namespace vx::test
