// The settings file with its last good copy: what is loaded, what is kept, what nothing may destroy.

#include "XmlChecks.h"
#include "ZrKit/settings/ZrSettingsFile.h"
#include "ZrLogFixture.h"
#include "ZrUtil/ZrSetApp.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

QJsonObject Doc(int number)
{
    return {{S("number"), number}};
}

QByteArray Bytes(const QJsonObject& root)
{
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

} // namespace

class tst_ZrSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(S("settings äß.json"));
        m_backup = m_path + S(".bak");
        m_damaged = m_path + S(".damaged");
    }

    void names();
    void firstStart();
    void firstSaveHasACopyToo();
    void saveMakesTheFolder();
    void eachSaveKeepsTheFormer();
    void sameSettingsChangeNothing();
    void sameSettingsMakeAMissingCopy();
    void isWhatZrSetAppWrites();
    void damage_data();
    void damage();
    void missingFileIsLoadedFromTheCopy();
    void unreadableFileIsLoadedFromTheCopy_data();
    void unreadableFileIsLoadedFromTheCopy();
    void bothDamaged();
    void damagedCopyIsReplaced();
    void damagedCopyAloneIsAnError();
    void goodCopySurvivesADamagedFile();
    void emptyFileIsNotKept();
    void damagedFileThatCannotBeKept();
    void copyThatCannotBeWritten_data();
    void copyThatCannotBeWritten();
    void unreadableFileIsNotReplaced_data();
    void unreadableFileIsNotReplaced();
    void settingsThatWouldNotLoad();
    void saveFailures_data();
    void saveFailures();
    void noName();
    void fullDisk_data();
    void fullDisk();
    void permissionsAreKept();
    void linkStaysALink();
    void largeFile();
    void callsForgetTheLast();
    void readersSeeOldOrNew();
    void writersAtTheSameTime();

private:
    QByteArray Got(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    void Put(const QString& path, const QByteArray& bytes) const
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    QStringList Names() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QString m_backup;
    QString m_damaged;
};

void tst_ZrSettingsFile::names()
{
    const ZrSettingsFile file(m_path);
    QCOMPARE(file.Path(), m_path);
    QCOMPARE(file.BackupPath(), m_backup);
    QCOMPARE(file.DamagedPath(), m_damaged);
    QCOMPARE(file.State(), ZrSettingsFile::Idle);
    QCOMPARE(file.Error() + file.Warning() + file.UsedPath(), QString());
}

void tst_ZrSettingsFile::firstStart()
{
    ZrSettingsFile file(m_path);
    QJsonObject root = Doc(7);
    QVERIFY(!file.Load(root));
    QCOMPARE(root, Doc(7));
    QCOMPARE(file.State(), ZrSettingsFile::Missing);
    QCOMPARE(file.Error(), m_path + S(": There is no such file"));
    QCOMPARE(file.UsedPath(), QString());
    QCOMPARE(Names(), QStringList());
}

void tst_ZrSettingsFile::firstSaveHasACopyToo()
{
    ZrSettingsFile file(m_path);
    QVERIFY2(file.Save(Doc(1)), qPrintable(file.Error()));
    QCOMPARE(file.State(), ZrSettingsFile::Whole);
    QCOMPARE(file.Warning(), QString());
    QCOMPARE(Got(m_path), Bytes(Doc(1)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    QCOMPARE(Names().size(), 2);
}

void tst_ZrSettingsFile::saveMakesTheFolder()
{
    const QString path = m_folder->filePath(S("a/b/settings.json"));
    ZrSettingsFile file(path);
    QVERIFY2(file.Save(Doc(1)), qPrintable(file.Error()));
    QCOMPARE(Got(path), Bytes(Doc(1)));
}

void tst_ZrSettingsFile::eachSaveKeepsTheFormer()
{
    ZrSettingsFile file(m_path);
    for (int i = 1; i < 5; ++i) {
        QVERIFY(file.Save(Doc(i)));
        QCOMPARE(file.Warning(), QString());
        QCOMPARE(Got(m_path), Bytes(Doc(i)));
        QCOMPARE(Got(m_backup), Bytes(Doc(std::max(i - 1, 1))));
        QJsonObject root;
        QVERIFY(file.Load(root));
        QCOMPARE(root, Doc(i));
        QCOMPARE(file.State(), ZrSettingsFile::Whole);
        QCOMPARE(file.UsedPath(), m_path);
        QCOMPARE(file.Warning() + file.Error(), QString());
    }
    QCOMPARE(Names().size(), 2);
}

void tst_ZrSettingsFile::sameSettingsChangeNothing()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(file.Save(Doc(2)));
    struct stat before = {};
    QCOMPARE(stat(QFile::encodeName(m_path), &before), 0);
    QVERIFY(file.Save(Doc(2)));
    QCOMPARE(file.State(), ZrSettingsFile::Whole);
    struct stat after = {};
    QCOMPARE(stat(QFile::encodeName(m_path), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
}

void tst_ZrSettingsFile::sameSettingsMakeAMissingCopy()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(QFile::remove(m_backup));
    QVERIFY(file.Save(Doc(1)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
}

void tst_ZrSettingsFile::isWhatZrSetAppWrites()
{
    zr::ZrSetApp app(zr::ePersistStoring);
    app.root = QJsonObject{{S("ü"), QJsonArray{1, S("深度")}}, {S("empty"), QJsonObject()}};
    const QString other = m_folder->filePath(S("other"));
    QVERIFY(app.save_to_file(other, zr::ZrSetApp::eFmtIndented));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(app.root));
    QCOMPARE(Got(m_path), Got(other));
    zr::ZrSetApp loaded(zr::ePersistLoading);
    QVERIFY(loaded.load_from_file(m_path, zr::ZrSetApp::eFmtIndented));
    QCOMPARE(loaded.root, app.root);
}

void tst_ZrSettingsFile::damage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& bytes, const char* reason) {
        QTest::newRow(name) << bytes << S(reason);
    };
    row("empty", "", "The file is empty");
    row("zeros", QByteArray(512, '\0'), "Line 1 is damaged (illegal value)");
    row("cut", "{\n\"a\": 1,\n\"b\": [\n", "Line 4 is damaged (unterminated array)");
    row("no comma", "{\n\"a\": 1\n\"b\": 2\n}\n", "Line 3 is damaged (unterminated object)");
    row("something behind", "{}\n{}\n", "Line 2 is damaged (garbage at the end of the document)");
    row("not UTF-8", "{\"a\": \"\xE4\"}", "Line 1 is damaged (invalid UTF8 string)");
    row("an array", "[1]\n", "The file holds no settings");
    row("a number", "1\n", "Line 1 is damaged (illegal value)");
    row("too deep", "{\"a\":" + QByteArray(2000, '[') + QByteArray(2000, ']') + "}",
        "Line 1 is damaged (too deeply nested document)");
}

void tst_ZrSettingsFile::damage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    Put(m_path, bytes);
    ZrSettingsFile file(m_path);
    QJsonObject root = Doc(7);
    QVERIFY(!file.Load(root));
    QCOMPARE(file.State(), ZrSettingsFile::Damaged);
    QCOMPARE(file.Error(), m_path + S(": ") + reason);
    QCOMPARE(file.Warning() + file.UsedPath(), QString());
    QCOMPARE(root, Doc(7));

    Put(m_backup, Bytes(Doc(3)));
    QVERIFY(file.Load(root));
    QCOMPARE(file.State(), ZrSettingsFile::FromBackup);
    QCOMPARE(root, Doc(3));
    QCOMPARE(file.UsedPath(), m_backup);
    QCOMPARE(file.Error(), QString());
    QCOMPARE(file.Warning(),
        m_path + S(": ") + reason + S(". The settings are those of its last good copy, ") + m_backup
            + S("."));
    // Loading writes nothing.
    QCOMPARE(Got(m_path), bytes);
    QCOMPARE(Got(m_backup), Bytes(Doc(3)));
    QCOMPARE(Names().size(), 2);
}

void tst_ZrSettingsFile::missingFileIsLoadedFromTheCopy()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(QFile::remove(m_path));
    QJsonObject root;
    QVERIFY(file.Load(root));
    QCOMPARE(root, Doc(1));
    QCOMPARE(file.State(), ZrSettingsFile::FromBackup);
    QCOMPARE(file.Warning(),
        m_path + S(": There is no such file. The settings are those of its last good copy, ") + m_backup
            + S("."));
    // Saved again, the copy is still the good one from before.
    QVERIFY(file.Save(Doc(2)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
}

void tst_ZrSettingsFile::unreadableFileIsLoadedFromTheCopy_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("folder") << S("folder") << S("This is no ordinary file");
    QTest::newRow("pipe") << S("pipe") << S("This is no ordinary file");
    QTest::newRow("too large") << S("large") << S("The file is too large for settings");
}

void tst_ZrSettingsFile::unreadableFileIsLoadedFromTheCopy()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    if (kind == S("folder"))
        QVERIFY(QDir().mkdir(m_path));
    if (kind == S("pipe"))
        QCOMPARE(mkfifo(QFile::encodeName(m_path), 0600), 0);
    if (kind == S("large")) {
        QFile large(m_path);
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(ZrSettingsFile::MaxSize + 1));
    }
    ZrSettingsFile file(m_path);
    QJsonObject root;
    QVERIFY(!file.Load(root));
    QCOMPARE(file.State(), ZrSettingsFile::Unreadable);
    QCOMPARE(file.Error(), m_path + S(": ") + reason);
    Put(m_backup, Bytes(Doc(3)));
    QVERIFY(file.Load(root));
    QCOMPARE(root, Doc(3));
    QVERIFY(file.Warning().startsWith(m_path + S(": ") + reason + S(". The settings")));
}

void tst_ZrSettingsFile::bothDamaged()
{
    Put(m_path, "{\n}\n}");
    Put(m_backup, "");
    ZrSettingsFile file(m_path);
    QJsonObject root = Doc(7);
    QVERIFY(!file.Load(root));
    QCOMPARE(root, Doc(7));
    QCOMPARE(file.State(), ZrSettingsFile::Damaged);
    QCOMPARE(file.Error(),
        m_path + S(": Line 3 is damaged (garbage at the end of the document); ") + m_backup
            + S(": The file is empty"));
}

void tst_ZrSettingsFile::damagedCopyIsReplaced()
{
    Put(m_backup, "garbage");
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QCOMPARE(file.Warning(), QString());
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    // Also where the file is not good either.
    Put(m_path, "garbage");
    Put(m_backup, "garbage");
    QVERIFY(file.Save(Doc(2)));
    QCOMPARE(Got(m_path), Bytes(Doc(2)));
    QCOMPARE(Got(m_backup), Bytes(Doc(2)));
}

void tst_ZrSettingsFile::damagedCopyAloneIsAnError()
{
    Put(m_backup, "garbage");
    ZrSettingsFile file(m_path);
    QJsonObject root;
    QVERIFY(!file.Load(root));
    // Not as on the first start: there were settings.
    QCOMPARE(file.State(), ZrSettingsFile::Damaged);
    QVERIFY(QFile::remove(m_backup));
    QVERIFY(QDir().mkdir(m_backup));
    QVERIFY(!file.Load(root));
    QCOMPARE(file.State(), ZrSettingsFile::Unreadable);
    // A damaged file beside a good copy does not hide it.
    QVERIFY(QDir().rmdir(m_backup));
    Put(m_path, Bytes(Doc(1)));
    Put(m_backup, "garbage");
    QVERIFY(file.Load(root));
    QCOMPARE(file.Warning(), QString());
}

void tst_ZrSettingsFile::goodCopySurvivesADamagedFile()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(file.Save(Doc(2)));
    const QByteArray edited = Bytes(Doc(3)).replace(':', '=');
    Put(m_path, edited);
    QVERIFY(file.Save(Doc(4)));
    QCOMPARE(Got(m_path), Bytes(Doc(4)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    QCOMPARE(Got(m_damaged), edited);
    QCOMPARE(file.Warning(),
        m_path + S(": Line 2 is damaged (missing name separator). What it held is kept in ") + m_damaged
            + S("."));
    // The next one is ordinary again.
    QVERIFY(file.Save(Doc(5)));
    QCOMPARE(file.Warning(), QString());
    QCOMPARE(Got(m_backup), Bytes(Doc(4)));
    QCOMPARE(Got(m_damaged), edited);
}

void tst_ZrSettingsFile::emptyFileIsNotKept()
{
    Put(m_path, "");
    Put(m_backup, Bytes(Doc(1)));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(2)));
    QCOMPARE(file.Warning(), QString());
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    QCOMPARE(Names().size(), 2);
}

void tst_ZrSettingsFile::damagedFileThatCannotBeKept()
{
    Put(m_path, "garbage");
    QVERIFY(QDir().mkdir(m_damaged));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QCOMPARE(Got(m_path), Bytes(Doc(1)));
    QCOMPARE(file.Warning(),
        m_path + S(": Line 1 is damaged (illegal value). What it held is lost: ") + m_damaged
            + S(": This is no ordinary file."));
}

void tst_ZrSettingsFile::copyThatCannotBeWritten_data()
{
    QTest::addColumn<int>("former");
    QTest::newRow("first save") << 0;
    QTest::newRow("another") << 1;
    QTest::newRow("the same") << 2;
}

void tst_ZrSettingsFile::copyThatCannotBeWritten()
{
    QFETCH(int, former);
    if (former != 0)
        Put(m_path, Bytes(Doc(former)));
    QVERIFY(QDir().mkdir(m_backup));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(2)));
    QCOMPARE(Got(m_path), Bytes(Doc(2)));
    QCOMPARE(file.State(), ZrSettingsFile::Whole);
    QCOMPARE(file.Warning(),
        S("The last good copy of the settings cannot be written: ") + m_backup
            + S(": This is no ordinary file."));
    QVERIFY(QFileInfo(m_backup).isDir());
}

void tst_ZrSettingsFile::unreadableFileIsNotReplaced_data()
{
    unreadableFileIsLoadedFromTheCopy_data();
}

void tst_ZrSettingsFile::unreadableFileIsNotReplaced()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    if (kind == S("folder"))
        QVERIFY(QDir().mkdir(m_path));
    if (kind == S("pipe"))
        QCOMPARE(mkfifo(QFile::encodeName(m_path), 0600), 0);
    if (kind == S("large")) {
        QFile large(m_path);
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(ZrSettingsFile::MaxSize + 1));
    }
    Put(m_backup, Bytes(Doc(1)));
    struct stat before = {};
    QCOMPARE(stat(QFile::encodeName(m_path), &before), 0);
    ZrSettingsFile file(m_path);
    QVERIFY(!file.Save(Doc(2)));
    QCOMPARE(file.State(), ZrSettingsFile::Unreadable);
    QCOMPARE(file.Error(), m_path + S(": ") + reason + S("; it is not replaced"));
    struct stat after = {};
    QCOMPARE(stat(QFile::encodeName(m_path), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    QCOMPARE(Names().size(), 2);
}

void tst_ZrSettingsFile::settingsThatWouldNotLoad()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(file.Save(Doc(2)));
    QJsonArray deep;
    for (int i = 0; i < 1024; ++i)
        deep = QJsonArray{deep};
    QVERIFY(!file.Save(QJsonObject{{S("a"), deep}}));
    QCOMPARE(file.State(), ZrSettingsFile::Damaged);
    QCOMPARE(file.Error(), m_path + S(": The settings are nested too deep for a file"));
    QVERIFY(!file.Save(QJsonObject{{S("a"), QString(int(ZrSettingsFile::MaxSize), QLatin1Char('x'))}}));
    QCOMPARE(file.State(), ZrSettingsFile::Damaged);
    QCOMPARE(file.Error(), m_path + S(": The settings are too large for a file"));
    QCOMPARE(Got(m_path), Bytes(Doc(2)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    // What has no number in JSON is no obstacle.
    QVERIFY(file.Save(QJsonObject{{S("a"), qInf()}}));
}

void tst_ZrSettingsFile::saveFailures_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("in a folder that cannot be made") << S("/proc/no such/settings.json");
    QTest::newRow("in a folder that takes no files") << S("/proc/settings.json");
    QTest::newRow("below a file") << S("/dev/null/settings.json");
}

void tst_ZrSettingsFile::saveFailures()
{
    QFETCH(QString, path);
    ZrSettingsFile file(path);
    QVERIFY(!file.Save(Doc(1)));
    QCOMPARE(file.State(), ZrSettingsFile::NotWritten);
    QVERIFY2(file.Error().startsWith(path + S(": ")), qPrintable(file.Error()));
    QVERIFY(file.Error().size() > path.size() + 5);
    QCOMPARE(file.Warning(), QString());
}

void tst_ZrSettingsFile::noName()
{
    const DebugLines lines;
    ZrSettingsFile file((QString()));
    QVERIFY(!file.Save(Doc(1)));
    QCOMPARE(file.State(), ZrSettingsFile::NotWritten);
    QCOMPARE(file.Error(), S("The settings file has no name"));
    QJsonObject root;
    QVERIFY(!file.Load(root));
    QCOMPARE(file.State(), ZrSettingsFile::Missing);
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrSettingsFile::fullDisk_data()
{
    // A file may grow to 4 KiB; some sizes would stay in a buffer until the end.
    QTest::addColumn<int>("size");
    for (const int size : {5000, 8192, 100000})
        QTest::newRow(qPrintable(QString::number(size))) << size;
}

void tst_ZrSettingsFile::fullDisk()
{
    QFETCH(int, size);
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(file.Save(Doc(2)));
    const auto save = [&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        if (file.Save(QJsonObject{{S("a"), QString(size, QLatin1Char('x'))}}))
            return 1;
        return file.Error() == m_path + S(": File too large") && file.State() == ZrSettingsFile::NotWritten
            ? 42
            : 2;
    };
    QCOMPARE(RunInChild(save), 42);
    QCOMPARE(Got(m_path), Bytes(Doc(2)));
    QJsonObject root;
    QVERIFY(file.Load(root));
    QCOMPARE(file.Warning(), QString());
    // Whole settings all the same: those that the file holds.
    QVERIFY(QJsonDocument::fromJson(Got(m_backup)).isObject());
    QCOMPARE(Names().size(), 2);

    // Where nothing was before, nothing is after.
    QVERIFY(QFile::remove(m_path));
    QVERIFY(QFile::remove(m_backup));
    QCOMPARE(RunInChild(save), 42);
    QCOMPARE(Names(), QStringList());
}

void tst_ZrSettingsFile::permissionsAreKept()
{
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(1)));
    QVERIFY(QFile::remove(m_backup));
    QCOMPARE(chmod(QFile::encodeName(m_path), 0600), 0);
    QVERIFY(file.Save(Doc(2)));
    Put(m_path, "garbage");
    QVERIFY(file.Save(Doc(3)));
    for (const QString& path : {m_path, m_backup, m_damaged}) {
        struct stat info = {};
        QCOMPARE(stat(QFile::encodeName(path), &info), 0);
        QCOMPARE(int(info.st_mode & 0777), 0600);
    }
}

void tst_ZrSettingsFile::linkStaysALink()
{
    const QString target = m_folder->filePath(S("target.json"));
    Put(target, Bytes(Doc(1)));
    QVERIFY(QFile::link(target, m_path));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(Doc(2)));
    QVERIFY(QFileInfo(m_path).isSymLink());
    QCOMPARE(Got(target), Bytes(Doc(2)));
    QCOMPARE(Got(m_backup), Bytes(Doc(1)));
    QJsonObject root;
    QVERIFY(file.Load(root));
    QCOMPARE(root, Doc(2));
}

void tst_ZrSettingsFile::largeFile()
{
    QJsonObject root;
    for (int i = 0; i < 20000; ++i)
        root.insert(S("key %1").arg(i), QString(50, QLatin1Char('x')));
    ZrSettingsFile file(m_path);
    QVERIFY(file.Save(root));
    QJsonObject loaded;
    QVERIFY(file.Load(loaded));
    QCOMPARE(loaded, root);
}

void tst_ZrSettingsFile::callsForgetTheLast()
{
    Put(m_path, "garbage");
    Put(m_backup, Bytes(Doc(1)));
    ZrSettingsFile file(m_path);
    QJsonObject root;
    QVERIFY(file.Load(root));
    QVERIFY(!file.Warning().isEmpty());
    QVERIFY(QFile::remove(m_backup));
    QVERIFY(!file.Load(root));
    QCOMPARE(file.Warning() + file.UsedPath(), QString());
    QVERIFY(!file.Error().isEmpty());
    Put(m_path, Bytes(Doc(2)));
    QVERIFY(file.Load(root));
    QCOMPARE(file.Error() + file.Warning(), QString());
    QVERIFY(file.Save(Doc(3)));
    QCOMPARE(file.UsedPath(), QString());
}

void tst_ZrSettingsFile::readersSeeOldOrNew()
{
    constexpr int saves = 50;
    QVERIFY(ZrSettingsFile(m_path).Save(Doc(0)));
    std::atomic<bool> done{false};
    std::atomic<int> wrong{0};
    std::atomic<int> reads{0};
    const auto read = [&] {
        int last = 0;
        while (!done) {
            ZrSettingsFile file(m_path);
            QJsonObject root;
            const bool loaded = file.Load(root) && file.State() == ZrSettingsFile::Whole;
            const int number = root.value(S("number")).toInt(-1);
            // Whole, and never older than what was seen before.
            if (!loaded || number < last)
                ++wrong;
            last = number;
            ++reads;
        }
    };
    std::thread a(read);
    std::thread b(read);
    int failed = 0;
    for (int i = 1; i <= saves; ++i) {
        ZrSettingsFile file(m_path);
        // Of changing length, so that a mixture of two would be none.
        QJsonObject root = Doc(i);
        root.insert(S("text"), QString(i * 37 % 5000, QLatin1Char('x')));
        if (!file.Save(root) || !file.Warning().isEmpty())
            ++failed;
    }
    done = true;
    a.join();
    b.join();
    QCOMPARE(failed, 0);
    QCOMPARE(wrong.load(), 0);
    QVERIFY(reads > 0);
}

void tst_ZrSettingsFile::writersAtTheSameTime()
{
    constexpr int writers = 3;
    constexpr int each = 20;
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([this, writer, &failed] {
            ZrSettingsFile file(m_path);
            for (int i = 0; i < each; ++i)
                if (!file.Save(Doc(writer * each + i)) || !file.Warning().isEmpty())
                    ++failed;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(failed.load(), 0);
    ZrSettingsFile file(m_path);
    QJsonObject root;
    QVERIFY(file.Load(root));
    QCOMPARE(file.Warning(), QString());
    QCOMPARE(root.value(S("number")).toInt() % each, each - 1);
    QVERIFY(QJsonDocument::fromJson(Got(m_backup)).isObject());
    QCOMPARE(Names().size(), 2);
}

QTEST_GUILESS_MAIN(tst_ZrSettingsFile)
#include "tst_ZrSettingsFile.moc"
