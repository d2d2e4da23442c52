#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>

#include "host/IO/FileUtils.h"
#include "tests/support/TestMain.h"

using vx::FileUtils;

namespace {

/** Hands the dialog, once it is open, to @p use. */
void whenOpen(const std::function<void(QFileDialog*)>& use)
{
    QTimer::singleShot(0, qApp, [use] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr) {
            use(dialog);
        } else {
            whenOpen(use);
        }
    });
}

QPushButton* acceptButton(const QFileDialog* dialog)
{
    return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
}

void choose(const QFileDialog* dialog, const QString& name)
{
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
    acceptButton(dialog)->click();
}

} // namespace

class DirectoryDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void givesTheChosenFolder();
    void givesTheFolderItStartsAt();
    void keepsThePathIfNothingIsChosen();
    void showsTitleAndParent();
    void showsTheTextOfTheButton();
    void takesNoFileAndNoMissingFolder();

private:
    QTemporaryDir m_folder;
};

void DirectoryDialogTest::givesTheChosenFolder()
{
    const QString chosen = m_folder.filePath(QStringLiteral("chosen one"));
    QVERIFY(QDir().mkpath(chosen));
    whenOpen([&chosen](QFileDialog* dialog) { choose(dialog, chosen); });
    QString path = m_folder.path();
    QVERIFY(FileUtils::openDirectoryDialog(path, QStringLiteral("Title"), QString(), nullptr));
    QCOMPARE(path, chosen);
}

void DirectoryDialogTest::givesTheFolderItStartsAt()
{
    QString started;
    whenOpen([&started](QFileDialog* dialog) {
        started = dialog->directory().absolutePath();
        choose(dialog, started);
    });
    QString path = m_folder.path();
    QVERIFY(FileUtils::openDirectoryDialog(path, QStringLiteral("Title"), QString(), nullptr));
    QCOMPARE(started, m_folder.path());
    QCOMPARE(path, m_folder.path());
}

void DirectoryDialogTest::keepsThePathIfNothingIsChosen()
{
    whenOpen([](QFileDialog* dialog) { dialog->reject(); });
    QString path = m_folder.path();
    QVERIFY(!FileUtils::openDirectoryDialog(path, QStringLiteral("Title"), QString(), nullptr));
    QCOMPARE(path, m_folder.path());
}

void DirectoryDialogTest::showsTitleAndParent()
{
    QWidget parent;
    QString title;
    const QWidget* seenParent = nullptr;
    whenOpen([&](QFileDialog* dialog) {
        title = dialog->windowTitle();
        seenParent = dialog->parentWidget();
        dialog->reject();
    });
    QString path = m_folder.path();
    FileUtils::openDirectoryDialog(path, QStringLiteral("Where to?"), QString(), &parent);
    QCOMPARE(title, QStringLiteral("Where to?"));
    QCOMPARE(seenParent, &parent);
}

void DirectoryDialogTest::showsTheTextOfTheButton()
{
    for (const QString& text : {QString(), QStringLiteral("Install here")}) {
        QString shown;
        whenOpen([&shown](QFileDialog* dialog) {
            shown = acceptButton(dialog)->text();
            dialog->reject();
        });
        QString path = m_folder.path();
        FileUtils::openDirectoryDialog(path, QStringLiteral("Title"), text, nullptr);
        QVERIFY(!shown.isEmpty());
        QCOMPARE(shown == QStringLiteral("Install here"), !text.isEmpty());
    }
}

void DirectoryDialogTest::takesNoFileAndNoMissingFolder()
{
    const QString file = m_folder.filePath(QStringLiteral("file"));
    QVERIFY(FileUtils::writeBytes("x", file));
    for (const QString& name : {file, m_folder.filePath(QStringLiteral("missing"))}) {
        whenOpen([&name](QFileDialog* dialog) {
            // The box that says what is wrong is closed; the dialog stays open behind it.
            QTimer::singleShot(0, dialog, [dialog] {
                QApplication::activeModalWidget()->close();
                dialog->reject();
            });
            choose(dialog, name);
        });
        QString path = m_folder.path();
        QVERIFY(!FileUtils::openDirectoryDialog(path, QStringLiteral("Title"), QString(), nullptr));
        QCOMPARE(path, m_folder.path());
    }
}

VX_TEST_MAIN(DirectoryDialogTest)
#include "tst_DirectoryDialog.moc"
