// The panel that files and folders are chosen in.

#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

bool Write(const QString& path, const QByteArray& bytes = "x")
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QStringList Titles(const ZrTouchList& list)
{
    QStringList titles;
    for (const ZrListItem& item : list.Items())
        titles.append(item.title);
    return titles;
}

ZrTouchList* ListOf(const ZrFilePanel& files)
{
    return files.findChild<ZrTouchList*>(QStringLiteral("files"));
}

void Open(ZrFilePanel& files)
{
    files.Open();
    QTRY_VERIFY(!files.IsReading());
}

bool IsAcceptEnabled(const ZrFilePanel& files, const QString& text)
{
    const auto buttons = files.findChildren<ZrBtn*>();
    for (const ZrBtn* button : buttons) {
        if (button->text == text)
            return button->isEnabled();
    }
    return false;
}

} // namespace

class tst_ZrFilePanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readsInAWorker();
    void slowFolderIsSaid();
    void newerFolderWins();
    void closedWhileItIsRead();
    void goneWhileItIsRead();
    void goneFolderIsSaid_data();
    void goneFolderIsSaid();
    void upFromAGoneFolder();
    void placesAreListed();
    void acceptsBeforeItIsRead();
    void filesOfTheFolder();
    void opensAFolder();
    void opensAFile();
    void savesUnderAName();
    void savingOverAFileIsSaid();
    void badNames_data();
    void badNames();
    void choosesAFolder();
    void missingFolderIsTheOneAbove();
    void goesUp();
    void tooManyFilesAreTold_data();
    void tooManyFilesAreTold();

private:
    QString Folder(const char* name, int files);

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrFilePanel::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1000, 750);
    m_window->show();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

/// Makes a folder with files that are named after it.
QString tst_ZrFilePanel::Folder(const char* name, int files)
{
    const QString path = m_dir->filePath(QString::fromUtf8(name));
    bool isMade = QDir().mkpath(path);
    for (int i = 0; i < files; ++i)
        isMade = isMade && Write(QStringLiteral("%1/%2 %3.log").arg(path, QString::fromUtf8(name)).arg(i));
    return isMade ? path : QString();
}

/// What comes of it comes through the event loop: nothing waits for a drive.
void tst_ZrFilePanel::readsInAWorker()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(Folder("ä", 3));
    QSignalSpy read(&files, &ZrFilePanel::FolderRead);
    files.Open();
    QVERIFY(files.IsReading());
    QVERIFY(ListOf(files)->Items().isEmpty());
    // Nothing is said of a folder that takes no time.
    QVERIFY(ListOf(files)->m_empty.isEmpty());
    QTRY_COMPARE(read.count(), 1);
    QCOMPARE(read[0][0].toString(), files.Folder());
    QVERIFY(!files.IsReading());
    QCOMPARE(ListOf(files)->Items().size(), 3);
}

void tst_ZrFilePanel::slowFolderIsSaid()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(Folder("ä", 0));
    files.Open();
    QTimer* slow = nullptr;
    for (QTimer* timer : files.findChildren<QTimer*>()) {
        if (timer->isActive() && timer->interval() == ZrFilePanel::DelayMilliseconds)
            slow = timer;
    }
    QVERIFY(slow);
    const QImage before = ListOf(files)->grab().toImage();
    QMetaObject::invokeMethod(slow, "timeout", Qt::DirectConnection);
    QCOMPARE(ListOf(files)->m_empty, QStringLiteral("Reading…"));
    QVERIFY(ListOf(files)->grab().toImage() != before);
    QTRY_VERIFY(!files.IsReading());
    QVERIFY(!slow->isActive());
    QCOMPARE(ListOf(files)->m_empty, QStringLiteral("Nothing here that could be opened"));
}

void tst_ZrFilePanel::newerFolderWins()
{
    const QString large = Folder("large", 500);
    const QString small = Folder("small", 2);
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(large);
    QSignalSpy read(&files, &ZrFilePanel::FolderRead);
    files.Open();
    for (int i = 0; i < 5; ++i) {
        files.SetFolder(small);
        files.SetFolder(large);
    }
    files.SetFolder(small);
    QTRY_COMPARE(read.count(), 1);
    QCOMPARE(read[0][0].toString(), small);
    QCOMPARE(ListOf(files)->Items().size(), 2);
    QVERIFY(Titles(*ListOf(files)).contains(QStringLiteral("small 1.log")));
    // Those that were ended come to nothing, whenever they come.
    QTRY_VERIFY(files.findChildren<ZrWorker*>().isEmpty());
    QCOMPARE(read.count(), 1);
    QCOMPARE(ListOf(files)->Items().size(), 2);
}

void tst_ZrFilePanel::closedWhileItIsRead()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(Folder("a", 100));
    QSignalSpy read(&files, &ZrFilePanel::FolderRead);
    files.Open();
    files.Cancel();
    QVERIFY(!files.IsReading());
    QTRY_VERIFY(files.findChildren<ZrWorker*>().isEmpty());
    QCOMPARE(read.count(), 0);
    Open(files);
    QCOMPARE(ListOf(files)->Items().size(), 100);
    // And taken down.
    auto other = std::make_unique<ZrFilePanel>(m_window.get(), QString());
    other->SetFolder(m_dir->filePath(QStringLiteral("a")));
    other->Open();
    other.reset();
}

void tst_ZrFilePanel::goneWhileItIsRead()
{
    const QString gone = Folder("gone", 0);
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(gone);
    QVERIFY(QDir().rmdir(gone));
    Open(files);
    QCOMPARE(ListOf(files)->m_empty, QStringLiteral("This folder is gone"));
    QCOMPARE(files.Problem(), QStringLiteral("This folder is gone"));
    QVERIFY(QDir().mkdir(gone));
    files.SetFolder(gone);
    QTRY_VERIFY(!files.IsReading());
    QCOMPARE(ListOf(files)->m_empty, QStringLiteral("Nothing here that could be opened"));
    QVERIFY(files.Problem().isEmpty());
}

void tst_ZrFilePanel::goneFolderIsSaid_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("accept");
    QTest::newRow("open") << int(ZrFilePanel::openFile) << QStringLiteral("Open");
    QTest::newRow("save") << int(ZrFilePanel::saveFile) << QStringLiteral("Save");
    QTest::newRow("folder") << int(ZrFilePanel::chooseFolder) << QStringLiteral("Use this folder");
}

/// Nothing is taken in it, whatever is typed.
void tst_ZrFilePanel::goneFolderIsSaid()
{
    QFETCH(int, mode);
    QFETCH(QString, accept);
    const QString gone = Folder("gone", 0);
    ZrFilePanel files(m_window.get(), QString());
    files.SetMode(static_cast<ZrFilePanel::eMode>(mode));
    files.SetFolder(gone);
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    QVERIFY(QDir().rmdir(gone));
    Open(files);
    files.SetFileName(QStringLiteral("plan"));
    QVERIFY(!IsAcceptEnabled(files, accept));
    QCOMPARE(files.Problem(), QStringLiteral("This folder is gone"));
    files.Accept();
    QCOMPARE(chosen.count(), 0);
    QVERIFY(files.isVisible());
    files.SetFolder(m_dir->path());
    QTRY_VERIFY(!files.IsReading());
    QVERIFY(IsAcceptEnabled(files, accept));
    QVERIFY(files.Problem().isEmpty());
}

void tst_ZrFilePanel::upFromAGoneFolder()
{
    const QString deep = m_dir->filePath(QStringLiteral("a/b/c"));
    QVERIFY(QDir().mkpath(deep));
    ZrFilePanel files(m_window.get(), QString());
    files.SetFolder(deep);
    Open(files);
    QVERIFY(QDir(m_dir->filePath(QStringLiteral("a"))).removeRecursively());
    QTest::keyClick(&files, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(files.Folder(), m_dir->path());
    files.SetFolder(QStringLiteral("/"));
    QTest::keyClick(&files, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(files.Folder(), QStringLiteral("/"));
}

void tst_ZrFilePanel::placesAreListed()
{
    ZrFilePanel files(m_window.get(), QString());
    Open(files);
    QTRY_VERIFY(files.findChildren<ZrWorker*>().isEmpty());
    ZrTouchList* places = nullptr;
    for (ZrTouchList* each : files.findChildren<ZrTouchList*>())
        places = each == ListOf(files) ? places : each;
    QVERIFY(places);
    QCOMPARE(Titles(*places).first(), QStringLiteral("Home"));
    QCOMPARE(Titles(*places).last(), QStringLiteral("Computer"));
    Q_EMIT places->Chosen(places->Items().size() - 1);
    QCOMPARE(files.Folder(), QStringLiteral("/"));
}

/// Somebody who knows the name need not wait.
void tst_ZrFilePanel::acceptsBeforeItIsRead()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.gpx"))));
    ZrFilePanel files(m_window.get(), QString());
    files.SetMode(ZrFilePanel::saveFile);
    files.SetSuffixes({QStringLiteral("gpx")});
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    files.Open();
    files.SetFileName(QStringLiteral("a"));
    QVERIFY(files.IsReading());
    QCOMPARE(files.Problem(), QStringLiteral("a.gpx will be replaced"));
    files.Accept();
    QCOMPARE(chosen.count(), 1);
}

void tst_ZrFilePanel::filesOfTheFolder()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("Ordner 港")));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.log"))));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("b.txt"))));
    QVERIFY(Write(m_dir->filePath(QStringLiteral(".hidden.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetSuffixes({QStringLiteral("log")});
    files.SetFolder(m_dir->path());
    Open(files);
    auto* list = ListOf(files);
    QCOMPARE(Titles(*list), QStringList({QStringLiteral("Ordner 港"), QStringLiteral("a.log")}));
    // What it is for, and where one is.
    const QString folder = QDir(m_dir->path()).dirName();
    QCOMPARE(files.accessibleName(), QStringLiteral("Open – ") + folder);
    files.SetPurpose(QStringLiteral("Import"));
    QCOMPARE(files.accessibleName(), QStringLiteral("Import – ") + folder);
    files.SetPurpose(QString());
    QCOMPARE(files.accessibleName(), folder);
}

void tst_ZrFilePanel::opensAFolder()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("sub")));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("sub/c.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->path());
    Open(files);
    auto* list = ListOf(files);
    Q_EMIT list->Chosen(0);
    QCOMPARE(files.Folder(), m_dir->filePath(QStringLiteral("sub")));
    QTRY_VERIFY(!files.IsReading());
    QCOMPARE(Titles(*list), QStringList(QStringLiteral("c.log")));
    QVERIFY(files.isVisible());
}

void tst_ZrFilePanel::opensAFile()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("c.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    Open(files);
    files.Accept();
    QVERIFY(files.isVisible());
    QVERIFY(!files.Problem().isEmpty());
    auto* list = ListOf(files);
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toString(), m_dir->filePath(QStringLiteral("c.log")));
    QVERIFY(!files.isVisible());
}

void tst_ZrFilePanel::savesUnderAName()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetSuffixes({QStringLiteral("gpx"), QStringLiteral("kml")});
    files.SetFolder(m_dir->path());
    files.SetFileName(QStringLiteral("Plan ä"));
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    Open(files);
    files.Accept();
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toString(), m_dir->filePath(QStringLiteral("Plan ä.gpx")));
    files.SetFileName(QStringLiteral("b.KML"));
    Open(files);
    files.Accept();
    QCOMPARE(chosen[1][0].toString(), m_dir->filePath(QStringLiteral("b.KML")));
}

void tst_ZrFilePanel::savingOverAFileIsSaid()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.gpx"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetSuffixes({QStringLiteral("gpx")});
    files.SetFolder(m_dir->path());
    Open(files);
    files.SetFileName(QStringLiteral("a"));
    QCOMPARE(files.Problem(), QStringLiteral("a.gpx will be replaced"));
    files.SetFileName(QStringLiteral("b"));
    QVERIFY(files.Problem().isEmpty());
}

void tst_ZrFilePanel::badNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"", "   ", "a/b.gpx", "..", "."})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ZrFilePanel::badNames()
{
    QFETCH(QString, name);
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    Open(files);
    files.SetFileName(name);
    QVERIFY(!files.Problem().isEmpty());
    files.Accept();
    QCOMPARE(chosen.count(), 0);
    QVERIFY(files.isVisible());
}

void tst_ZrFilePanel::choosesAFolder()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.gpx"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Folder"));
    files.SetMode(ZrFilePanel::chooseFolder);
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    Open(files);
    QVERIFY(ListOf(files)->Items().isEmpty());
    files.Accept();
    QCOMPARE(chosen[0][0].toString(), m_dir->path());
}

void tst_ZrFilePanel::missingFolderIsTheOneAbove()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->filePath(QStringLiteral("no/such/folder")));
    QCOMPARE(files.Folder(), m_dir->path());
    files.SetFolder(QString());
    QCOMPARE(files.Folder(), QDir::homePath());
}

void tst_ZrFilePanel::goesUp()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("sub")));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->filePath(QStringLiteral("sub")));
    Open(files);
    QTest::keyClick(&files, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(files.Folder(), m_dir->path());
    QTRY_VERIFY(!files.IsReading());
    QCOMPARE(ListOf(files)->Current(), 0);
}

void tst_ZrFilePanel::tooManyFilesAreTold_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("open") << int(ZrFilePanel::openFile);
    QTest::newRow("save") << int(ZrFilePanel::saveFile);
    QTest::newRow("folder") << int(ZrFilePanel::chooseFolder);
}

void tst_ZrFilePanel::tooManyFilesAreTold()
{
    QFETCH(int, mode);
    for (int i = 0; i < ZrFilePanel::MaxEntries + 3; ++i) {
        const QString name = QString::number(i);
        QVERIFY(mode == ZrFilePanel::chooseFolder ? QDir(m_dir->path()).mkdir(name)
                                                  : Write(m_dir->filePath(name)));
    }
    const QString told = QStringLiteral("3 entries are not shown");
    ZrFilePanel files(m_window.get(), QStringLiteral("Files"));
    files.SetMode(static_cast<ZrFilePanel::eMode>(mode));
    files.SetFolder(m_dir->path());
    files.SetFileName(QStringLiteral("plan"));
    Open(files);
    QCOMPARE(ListOf(files)->Items().size(), ZrFilePanel::MaxEntries);
    QCOMPARE(files.Problem(), told);
    if (mode == ZrFilePanel::saveFile) {
        // What is to be saved comes first.
        files.SetFileName(QStringLiteral("17"));
        QCOMPARE(files.Problem(), QStringLiteral("17 will be replaced"));
        files.SetFileName(QString());
        QCOMPARE(files.Problem(), QStringLiteral("A file name is wanted"));
        files.SetFileName(QStringLiteral("other"));
        QCOMPARE(files.Problem(), told);
        QVERIFY(IsAcceptEnabled(files, QStringLiteral("Save")));
    }
    // Another folder is shown whole.
    files.SetFolder(Folder("small", 2));
    QTRY_VERIFY(!files.IsReading());
    QCOMPARE(files.Problem(), QString());
}

QTEST_MAIN(tst_ZrFilePanel)
#include "tst_ZrFilePanel.moc"
