// The files of ZrLogger: how they are named, opened and closed, with states and messages; space on the
// volume.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStorageInfo>
#include <QTranslator>
#include <QtTest/QtTest>

#include <limits>

namespace {

/// Shouts the texts of `SpaceStr`, to show which of them go through translation.
class ShoutingTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return qstrcmp(context, "ZrLogger") == 0 ? QLatin1String(text) + QLatin1Char('!') : QString();
    }

    bool isEmpty() const override { return false; }
};

} // namespace

class tst_ZrLoggerFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fileIsTruncatedOnOpening();
    void openingAgainRestartsInTheNewFile();
    void openingTheOpenFileAgainTruncatesIt();
    void destructorClosesTheFile();
    void openLogNamesTheFileByLocalTime();
    void openLogWithPrefixAndExtension();
    void openLogCreatesTheDirectory();
    void openLogNamesFilesAlikeInEveryLocale_data();
    void openLogNamesFilesAlikeInEveryLocale();
    void secondLogOfTheSameSecondTruncatesTheFirst();
    void logDirectoryIsASlot();
    void statesFollowOpeningAndClosing();
    void toggleSwitchesBetweenOpenAndClosed();
    void messagesOfALife();
    void closingAClosedLogSaysNothing();
    void fileThatCannotBeCreated_data();
    void fileThatCannotBeCreated();
    void failureClosesTheFileBefore();
    void diskSpaceIsThatOfTheVolume();
    void diskSpaceOfAnUnknownVolume();
    void spaceText_data();
    void spaceText();
    void spaceTextIsTranslated();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrLoggerFiles::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrLoggerFiles::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrLoggerFiles::fileIsTruncatedOnOpening()
{
    QVERIFY(WriteWhole(Path("a.log"), QByteArray(500, 'z')));
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    QCOMPARE(QFileInfo(Path("a.log")).size(), qint64(48));
}

void tst_ZrLoggerFiles::openingAgainRestartsInTheNewFile()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    log.LogSerStr(QStringLiteral("first"));
    const QByteArray first = ReadWhole(Path("a.log"));
    m_messages->Take();

    log.OpenFile(Path("b.log"));
    QCOMPARE(m_messages->Take(), QStringList(Line("Opened: ", Path("b.log")))); // no warning of Qt either
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.bytesWritten, u64(48));
    QCOMPARE(log.CurFile(), Path("b.log"));
    log.LogSerStr(QStringLiteral("second"));
    QCOMPARE(ReadWhole(Path("a.log")), first);
    QCOMPARE(ReadWhole(Path("b.log")).mid(88), QByteArray("second\0", 7));
}

void tst_ZrLoggerFiles::openingTheOpenFileAgainTruncatesIt()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    log.LogSerStr(QStringLiteral("lost"));
    log.OpenFile(Path("a.log"));
    QCOMPARE(QFileInfo(Path("a.log")).size(), qint64(48));
    log.LogSerStr(QStringLiteral("kept"));
    QCOMPARE(ReadWhole(Path("a.log")).mid(88), QByteArray("kept\0", 5));
}

void tst_ZrLoggerFiles::destructorClosesTheFile()
{
#ifdef Q_OS_LINUX
    const auto openHere = [this] {
        int count = 0;
        const QDir fds(QStringLiteral("/proc/self/fd"));
        for (const QString& name : fds.entryList(QDir::Files | QDir::System))
            count += QFileInfo(fds.filePath(name)).symLinkTarget() == Path("a.log") ? 1 : 0;
        return count;
    };
    {
        ZrLogger log(nullptr);
        log.OpenFile(Path("a.log"));
        QCOMPARE(openHere(), 1);
    }
    QCOMPARE(openHere(), 0);
#else
    QSKIP("open files are counted through /proc");
#endif
}

void tst_ZrLoggerFiles::openLogNamesTheFileByLocalTime()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    const QDateTime before = QDateTime::currentDateTime();
    log.OpenLog();
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(log.IsActive());

    const QString lead = m_dir->path() + QDir::separator();
    QVERIFY(log.CurFile().startsWith(lead));
    const QString name = log.CurFile().mid(lead.size());
    const QRegularExpression pattern(
        QStringLiteral("^(\\d{4})(\\d\\d)(\\d\\d)_(\\d\\d)(\\d\\d)(\\d\\d)\\.log$"));
    const QRegularExpressionMatch match = pattern.match(name);
    QVERIFY2(match.hasMatch(), qUtf8Printable(name));
    const auto number = [&match](int group) { return match.captured(group).toInt(); };
    const QDateTime named(QDate(number(1), number(2), number(3)), QTime(number(4), number(5), number(6)));
    QVERIFY(named.addSecs(1) > before && named <= after);
    QCOMPARE(QFileInfo(log.CurFile()).size(), qint64(48));
}

void tst_ZrLoggerFiles::openLogWithPrefixAndExtension()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    log.OpenLog();
    const QString undecorated = log.CurFile();
    log.Decorate(QStringLiteral("dive"), QStringLiteral(".zr"));
    QCOMPARE(log.CurFile(), undecorated); // the next log only
    log.OpenLog();
    const QString name = QFileInfo(log.CurFile()).fileName();
    QVERIFY2(QRegularExpression(QStringLiteral("^dive_\\d{8}_\\d{6}\\.zr$")).match(name).hasMatch(),
        qUtf8Printable(name));
    log.Decorate(QString(), QString());
    log.OpenLog();
    const QString bare = QFileInfo(log.CurFile()).fileName();
    QVERIFY2(
        QRegularExpression(QStringLiteral("^\\d{8}_\\d{6}$")).match(bare).hasMatch(), qUtf8Printable(bare));
}

void tst_ZrLoggerFiles::openLogCreatesTheDirectory()
{
    ZrLogger log(nullptr);
    log.logDir = Path(u8"a/b \u00FC/c");
    log.OpenLog();
    QVERIFY(log.IsActive());
    QCOMPARE(QFileInfo(log.CurFile()).absolutePath(), Path(u8"a/b \u00FC/c"));
    QVERIFY(QFileInfo::exists(log.CurFile()));
}

void tst_ZrLoggerFiles::openLogNamesFilesAlikeInEveryLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("C") << QStringLiteral("C");
    QTest::newRow("German") << QStringLiteral("de_DE.UTF-8");
    QTest::newRow("Arabic digits") << QStringLiteral("ar_EG.UTF-8");
    QTest::newRow("Persian digits") << QStringLiteral("fa_IR.UTF-8");
}

/// The system's locale is read once per process: another one needs another process.
void tst_ZrLoggerFiles::openLogNamesFilesAlikeInEveryLocale()
{
    QFETCH(QString, locale);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), locale);
    environment.insert(QStringLiteral("LANG"), locale);
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(),
        {QStringLiteral("openLogNamesTheFileByLocalTime"), QStringLiteral("openLogWithPrefixAndExtension")});
    QVERIFY(child.waitForFinished());
    QVERIFY2(
        child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0, child.readAll().constData());
}

void tst_ZrLoggerFiles::secondLogOfTheSameSecondTruncatesTheFirst()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    QString first, second;
    do { // again when the second ended in between
        log.OpenLog();
        first = log.CurFile();
        log.LogSerStr(QStringLiteral("gone"));
        log.OpenLog();
        second = log.CurFile();
    } while (first != second);
    QCOMPARE(QFileInfo(first).size(), qint64(48));
}

void tst_ZrLoggerFiles::logDirectoryIsASlot()
{
    ZrLogger log(nullptr);
    const QString dir = Path("new/dir");
    QVERIFY(QMetaObject::invokeMethod(&log, "SetLogDirectory", Q_ARG(QString, dir)));
    QCOMPARE(log.LogDir(), dir);
    QVERIFY(QFileInfo(dir).isDir());
    QCOMPARE(m_messages->Take(), QStringList(Line("The log directory is set to:", dir)));
}

void tst_ZrLoggerFiles::statesFollowOpeningAndClosing()
{
    QCOMPARE(static_cast<int>(lsClosed), 0);
    QCOMPARE(static_cast<int>(lsOpening), 1);
    QCOMPARE(static_cast<int>(lsClosing), 2);
    QCOMPARE(static_cast<int>(lsLogging), 3);

    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    QCOMPARE(log.LogState(), lsLogging);
    QVERIFY(log.IsActive());
    log.CloseLog();
    QCOMPARE(log.LogState(), lsClosed);
    QVERIFY(!log.IsActive());
    QVERIFY(!log.file.isOpen());
    log.OpenFile(Path("a.log"));
    for (elogState between : {lsOpening, lsClosing, lsClosed}) {
        log.state = between;
        QVERIFY(!log.IsActive());
        log.LogSerStr(QStringLiteral("x"));
        QCOMPARE(log.itemCount, 0u);
    }
}

void tst_ZrLoggerFiles::toggleSwitchesBetweenOpenAndClosed()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    log.ToggleLogging();
    QVERIFY(log.IsActive());
    QVERIFY(QFileInfo::exists(log.CurFile()));
    log.ToggleLogging();
    QVERIFY(!log.IsActive());
    log.ToggleLogging();
    QVERIFY(log.IsActive());
}

void tst_ZrLoggerFiles::messagesOfALife()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    log.OpenFile(Path("a.log"));
    log.LogSerStr(QStringLiteral("x"));
    log.CloseLog();
    const QStringList expected = {Line("The log directory is set to:", m_dir->path()),
        Line("Opened: ", Path("a.log")), QStringLiteral("Closed Log File")};
    QCOMPARE(m_messages->Take(), expected);
}

void tst_ZrLoggerFiles::closingAClosedLogSaysNothing()
{
    ZrLogger log(nullptr);
    log.CloseLog();
    log.state = lsOpening;
    log.CloseLog();
    QCOMPARE(log.LogState(), lsClosed); // in every case
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrLoggerFiles::fileThatCannotBeCreated_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing directory") << QStringLiteral("%1/missing/a.log");
    QTest::newRow("a directory") << QStringLiteral("%1");
    QTest::newRow("a file as directory") << QStringLiteral("%1/plain/a.log");
    QTest::newRow("name too long") << QStringLiteral("%1/") + QString(300, QLatin1Char('n'));
    QTest::newRow("no name") << QString();
}

void tst_ZrLoggerFiles::fileThatCannotBeCreated()
{
    QFETCH(QString, path);
    QVERIFY(WriteWhole(Path("plain"), "x"));
    if (path.contains(QLatin1String("%1")))
        path = path.arg(m_dir->path());
    ZrLogger log(nullptr);
    log.OpenFile(path);
    QCOMPARE(m_messages->Take(), QStringList(Line("Cannot open file: ", path)));
    QCOMPARE(log.LogState(), lsClosed);
    QCOMPARE(log.CurFile(), path);
    QCOMPARE(log.bytesWritten, u64(0));

    log.LogData(CRecType(0, 1), 0, 0, false, {Span("x")});
    log.CloseLog();
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.WriteErrors(), u64(0));
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrLoggerFiles::failureClosesTheFileBefore()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    log.LogSerStr(QStringLiteral("x"));
    log.OpenFile(Path("missing/b.log"));
    QCOMPARE(log.LogState(), lsClosed);
    QVERIFY(!log.file.isOpen());
    QCOMPARE(log.itemCount, 0u);
    log.LogSerStr(QStringLiteral("y"));
    QCOMPARE(ReadWhole(Path("a.log")).size(), 48 + 42);
}

void tst_ZrLoggerFiles::diskSpaceIsThatOfTheVolume()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    const qint64 bytes = log.DiskSpace();
    const qint64 reference = QStorageInfo(m_dir->path()).bytesAvailable();
    QVERIFY(bytes > 0);
    // Other programs write too: within 2 GiB of each other.
    QVERIFY(qAbs(bytes - reference) < (qint64(2) << 30));
}

void tst_ZrLoggerFiles::diskSpaceOfAnUnknownVolume()
{
    ZrLogger log(nullptr);
    log.logDir = Path("never made");
    QCOMPARE(log.DiskSpace(), qint64(-1));
    log.logDir.clear();
    QCOMPARE(log.DiskSpace(), qint64(-1));
}

void tst_ZrLoggerFiles::spaceText_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("text");
    const auto row
        = [](quint64 bytes, const char* text) { QTest::newRow(text) << bytes << QString::fromLatin1(text); };
    row(0, "Empty");
    row(1, "1b");
    row(999, "999b");
    row(1023, "1023b");
    row(1024, "1024b");
    row(1025, "1.0Kb");
    row(1280, "1.3Kb"); // 1.25 exactly: halves go away from zero
    row(1536, "1.5Kb");
    row(1048575, "1024.0Kb"); // 1023.999 rounded
    row(1048576 - 103, "1023.9Kb");
    QTest::newRow("exactly 1 MiB") << quint64(1048576) << QStringLiteral("1024.0Kb");
    row(1048577, "1.0Mb");
    row(1572864, "1.5Mb");
    QTest::newRow("exactly 1 GiB") << quint64(1073741824) << QStringLiteral("1024.0Mb");
    row(1073741825, "1.0Gb");
    QTest::newRow("2^32 - 1") << quint64(4294967295) << QStringLiteral("4.0Gb");
    QTest::newRow("2^32") << quint64(4294967296) << QStringLiteral("4.0Gb");
    QTest::newRow("2^32 + 1000") << quint64(4294968296) << QStringLiteral("4.0Gb");
    row(quint64(5) << 30, "5.0Gb");
    row(quint64(1) << 40, "1024.0Gb");
    row(std::numeric_limits<quint64>::max(), "17179869184.0Gb");
}

void tst_ZrLoggerFiles::spaceText()
{
    QFETCH(quint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(ZrLogger::SpaceStr(bytes), text);
}

void tst_ZrLoggerFiles::spaceTextIsTranslated()
{
    ShoutingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(ZrLogger::SpaceStr(0), QStringLiteral("Empty!"));
    QCOMPARE(ZrLogger::SpaceStr(5), QStringLiteral("5b!"));
    QCOMPARE(ZrLogger::SpaceStr(2048), QStringLiteral("2.0Kb!"));
    QCOMPARE(ZrLogger::SpaceStr(2097152), QStringLiteral("2.0Mb!"));
    QCOMPARE(ZrLogger::SpaceStr(2147483648), QStringLiteral("2.0Gb!"));
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(ZrLogger::SpaceStr(0), QStringLiteral("Empty"));
}

QTEST_GUILESS_MAIN(tst_ZrLoggerFiles)
#include "tst_ZrLoggerFiles.moc"
