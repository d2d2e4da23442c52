#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <cstdlib>
#include <set>
#include <unistd.h>

#include "tests/host/FileFormatsZip/Unpacking.h"
#include "tests/support/TestMain.h"
#include "tests/support/ZipBuilder.h"

using namespace vx::test;

namespace {

struct Forest
{
    std::vector<std::pair<QByteArray, QByteArray>> links; ///< where they lie, what they point at
    std::vector<QByteArray> files;

    ZipBuilder archive() const
    {
        ZipBuilder builder;
        for (const QByteArray& name : files) {
            builder.add(file(name, name));
        }
        for (const auto& link : links) {
            builder.add(softLink(link.first, link.second));
        }
        return builder;
    }
};

/** Files and links in folders, pointing anywhere, mostly at each other. */
class Forester
{
public:
    explicit Forester(quint32 seed)
        : m_random(seed)
    {}

    Forest forest()
    {
        Forest forest;
        std::set<QByteArray> taken;
        for (int i = 0; i < 4; ++i) {
            const QByteArray name = path(2, 3);
            if (taken.insert(name).second) {
                forest.files.push_back(name + "/f");
            }
        }
        const int links = 1 + m_random.bounded(6);
        for (int i = 0; i < links; ++i) {
            const QByteArray name = path(0, 2) + "l" + QByteArray::number(m_random.bounded(5));
            if (taken.insert(name).second) {
                forest.links.push_back({name, target()});
            }
        }
        return forest;
    }

private:
    /** Between @p least and @p most names of folders; with none at all, nothing. */
    QByteArray path(int least, int most)
    {
        QByteArray path;
        for (int i = m_random.bounded(least, most + 1); i > 0; --i) {
            path += QByteArray(1, static_cast<char>('a' + m_random.bounded(2))) + '/';
        }
        return least > 0 ? path.chopped(1) : path;
    }

    QByteArray target()
    {
        QByteArray target = QByteArray("../").repeated(m_random.bounded(4));
        for (int i = m_random.bounded(4); i > 0; --i) {
            switch (m_random.bounded(8)) {
            case 0:
                target += "../";
                break;
            case 1:
            case 2:
                target += "l" + QByteArray::number(m_random.bounded(5)) + '/';
                break;
            case 3:
                target += "./";
                break;
            default:
                target += QByteArray(1, static_cast<char>('a' + m_random.bounded(2))) + '/';
            }
        }
        return target.isEmpty() ? QByteArray("a") : target.chopped(1);
    }

    QRandomGenerator m_random;
};

/** The system's own answer to where a path leads; nothing if it leads to nothing. */
QByteArray resolved(const QString& path)
{
    char answer[PATH_MAX];
    return ::realpath(QFile::encodeName(path).constData(), answer) != nullptr ? QByteArray(answer)
                                                                              : QByteArray();
}

bool isInside(const QByteArray& path, const QByteArray& folder)
{
    return path.isEmpty() || path == folder || path.startsWith(folder + '/');
}

} // namespace

/** What the rule for links lets pass, and where the file system goes then. */
class LinkForestsTest : public QObject
{
    Q_OBJECT

private slots:
    void staysInside_data();
    void staysInside();
};

void LinkForestsTest::staysInside_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 0; seed < 4; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

/**
 * Thousands of forests. None that is unpacked has a way out, through any number of links; and each
 * that is refused is refused for its links or for what lies behind them, while many are unpacked.
 */
void LinkForestsTest::staysInside()
{
    QFETCH(quint32, seed);
    Forester forester(seed);
    const QTemporaryDir folder;
    const QString target = folder.filePath("outer/target");
    // Something that a way out would come to.
    for (const QString name : {"a/a/f", "a/b/f", "b/a/f", "outer/a/f", "outer/b/f", "outer/l1"}) {
        writeFile(folder.filePath(name), "outside");
    }
    int unpacked = 0;
    int followed = 0;
    for (int i = 0; i < 1000; ++i) {
        const Forest forest = forester.forest();
        forest.archive().write(folder.filePath("a.zip"));
        const QString reason = unpackWithReader(folder.filePath("a.zip"), target);
        if (!reason.isEmpty()) {
            QVERIFY2(reason.contains("link") || reason.contains("where a"), qPrintable(reason));
            QVERIFY(!QFileInfo::exists(target));
            continue;
        }
        ++unpacked;
        const QByteArray root = resolved(target);
        for (const auto& link : forest.links) {
            const QString path = target + '/' + link.first;
            for (const QString way : {"", "/a", "/b", "/a/f", "/l0", "/l1", "/l2/a"}) {
                const QByteArray end = resolved(path + way);
                QVERIFY2(isInside(end, root), qPrintable(path + way + " leads to " + end));
                followed += end.isEmpty() ? 0 : 1;
            }
        }
        QVERIFY(QDir(target).removeRecursively());
    }
    QVERIFY2(unpacked > 50, qPrintable(QString::number(unpacked)));
    QVERIFY2(followed > 100, qPrintable(QString::number(followed)));
}

VX_TEST_MAIN(LinkForestsTest)
#include "tst_LinkForests.moc"
