// ZrLogger where the disk refuses, where payloads are too large, and where the debug stream talks back.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QDir>
#include <QtTest/QtTest>

#include <csignal>
#include <cstdint>
#include <sys/mman.h>
#include <sys/resource.h>

namespace {

constexpr std::size_t gibibyte = std::size_t(1) << 30;

/// Address space without memory behind it, for payloads that must be counted but not copied.
class Region
{
public:
    Region()
        : m_data(mmap(nullptr, gibibyte, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
    }

    ~Region() { munmap(m_data, gibibyte); }

    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;

    zr::span<u8> First(std::size_t size) const { return zr::span<u8>(static_cast<u8*>(m_data), size); }

private:
    void* m_data;
};

QString TooLarge(quint64 bytes)
{
    return QStringLiteral("Payload too large to be logged, bytes: %1").arg(bytes);
}

bool SetFileSizeLimit(rlim_t bytes)
{
    struct rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0)
        return false;
    limit.rlim_cur = bytes;
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

} // namespace

class tst_ZrLoggerErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fullDiskIsCountedAndTheCountersGoOn();
    void errorsAreThoseOfTheCurrentFile();
    void whatCannotSeekIsCounted();
    void fileSizeLimitIsCountedAndTheCountersGoOn();
    void nextItemStartsWhereTheCutOneWouldEnd();

    void payloadOf2GibibytesIsRefused_data();
    void payloadOf2GibibytesIsRefused();
    void payloadJustBelow2GibibytesIsWritten();
    void refusalIsSilentWhileClosed();

    void messageHandlerMayLog_data();
    void messageHandlerMayLog();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrLoggerErrors::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrLoggerErrors::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrLoggerErrors::fullDiskIsCountedAndTheCountersGoOn()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("no /dev/full on this system");
    ZrLogger log(nullptr);
    log.OpenFile(QStringLiteral("/dev/full"));
    QVERIFY(log.IsActive());
    QCOMPARE(log.WriteErrors(), u64(1)); // the file header
    QCOMPARE(log.bytesWritten, u64(48));

    log.LogData(CRecType(0, 1), 0, 0, false, {Span("abc"), Span("de")});
    QCOMPARE(log.WriteErrors(), u64(2)); // one per item, not one per span
    QCOMPARE(log.itemCount, 1u);
    QCOMPARE(log.bytesWritten, u64(48 + 45));

    const QByteArray zeros(1000, '\0');
    const u64 stored = static_cast<u64>(qCompress(zeros, 1).size());
    log.LogData(CRecType(0, 1), 0, 0, true, {Span(zeros)});
    QCOMPARE(log.WriteErrors(), u64(3));
    QCOMPARE(log.bytesWritten, u64(48 + 45 + 40) + stored);

    char raw = 'r';
    log.RawWrite(&raw, 1);
    QCOMPARE(log.WriteErrors(), u64(4));
    QCOMPARE(log.bytesWritten, u64(48 + 45 + 40) + stored);
    QVERIFY(log.IsActive()); // the recording goes on
    log.CloseLog();
    QCOMPARE(m_messages->Take(),
        (QStringList{Line("Opened: ", QStringLiteral("/dev/full")), QStringLiteral("Closed Log File")}));
}

void tst_ZrLoggerErrors::errorsAreThoseOfTheCurrentFile()
{
    ZrLogger log(nullptr);
    log.OpenFile(QStringLiteral("/dev/full"));
    log.LogSerStr(QStringLiteral("x"));
    QVERIFY(log.WriteErrors() > 0);
    log.OpenFile(Path("a.log"));
    QCOMPARE(log.WriteErrors(), u64(0));
    log.LogSerStr(QStringLiteral("x"));
    QCOMPARE(log.WriteErrors(), u64(0));
}

/// A device takes the bytes but not the rewriting of headers, so its items are not complete.
void tst_ZrLoggerErrors::whatCannotSeekIsCounted()
{
    ZrLogger log(nullptr);
    log.OpenFile(QStringLiteral("/dev/null"));
    QCOMPARE(log.WriteErrors(), u64(0));
    log.LogSerStr(QStringLiteral("x"));
    QCOMPARE(log.WriteErrors(), u64(1));
    QCOMPARE(log.bytesWritten, u64(48 + 42));
    QCOMPARE(m_messages->Take().size(), 1); // "Opened: ", and no warning of Qt
}

void tst_ZrLoggerErrors::fileSizeLimitIsCountedAndTheCountersGoOn()
{
    const QString path = Path("a.log");
    const int result = RunInChild([&path] {
        std::signal(SIGXFSZ, SIG_IGN); // writes then fail with EFBIG
        if (!SetFileSizeLimit(1000))
            return 1;
        ZrLogger log(nullptr);
        log.OpenFile(path);
        const QByteArray payload(60, 'p');
        for (int i = 0; i < 20; ++i)
            log.LogData(CRecType(0, 1), 0, 0, false, {Span(payload)});
        // 9 items end at 948; the tenth would end at 1048.
        if (log.WriteErrors() != 11)
            return 2;
        return log.itemCount == 20 && log.bytesWritten == 48 + 20 * 100 && log.IsActive() ? 0 : 3;
    });
    QCOMPARE(result, 0);
    QCOMPARE(QFileInfo(path).size(), qint64(1000));
    // The tenth item's header announces what was asked for; what is there of it is its beginning.
    const QByteArray bytes = ReadWhole(path);
    QCOMPARE(LeAt<quint32>(bytes, 948 + 32), 60u);
    QCOMPARE(bytes.mid(988), QByteArray(12, 'p'));
}

void tst_ZrLoggerErrors::nextItemStartsWhereTheCutOneWouldEnd()
{
    const QString path = Path("a.log");
    const int result = RunInChild([&path] {
        std::signal(SIGXFSZ, SIG_IGN);
        ZrLogger log(nullptr);
        log.OpenFile(path);
        SetFileSizeLimit(48 + 40 + 10);
        log.LogData(CRecType(0, 1), 0, 0, false, {Span(QByteArray(25, 'c'))});
        SetFileSizeLimit(RLIM_INFINITY); // room again
        log.LogData(CRecType(0, 2), 0, 0, false, {Span("whole")});
        return log.WriteErrors() == 1 && log.itemCount == 2 ? 0 : 1;
    });
    QCOMPARE(result, 0);
    LogBytes expected;
    expected.Add(MakeItem(1, QByteArray(10, 'c') + QByteArray(15, '\0'))).Add(MakeItem(2, "whole"));
    QByteArray bytes = ReadWhole(path);
    QCOMPARE(bytes.size(), expected.Bytes().size());
    bytes.replace(40, 8, expected.Bytes().mid(40, 8)); // times
    bytes.replace(48 + 16, 8, QByteArray(8, '\0'));
    bytes.replace(48 + 65 + 16, 8, QByteArray(8, '\0'));
    QCOMPARE(bytes.toHex(), expected.Bytes().toHex());
}

void tst_ZrLoggerErrors::payloadOf2GibibytesIsRefused_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QVector<quint64>>("sizes");
    QTest::addColumn<quint64>("total");
    const quint64 half = quint64(1) << 63;
    const quint64 most = std::numeric_limits<quint64>::max();
    for (bool compressed : {false, true}) {
        const auto row = [compressed](const char* name, const QVector<quint64>& sizes, quint64 total) {
            QTest::addRow("%s, %s", name, compressed ? "compressed" : "plain")
                << compressed << sizes << total;
        };
        row("one span of 2^31", {0x80000000u}, 0x80000000u);
        row("2^31 in parts", {gibibyte, gibibyte - 1, 1}, 0x80000000u);
        row("one span of 2^32", {quint64(1) << 32}, quint64(1) << 32);
        row("2^32 + 5, which is 5 in 32 bits", {(quint64(1) << 32) + 5}, (quint64(1) << 32) + 5);
        row("2^64, which is 0 in 64 bits", {half, half}, most);
        row("2^64 + 5, which is 5 in 64 bits", {half, half, 5}, most);
        row("the greatest length", {most}, most);
    }
    QTest::newRow("too large for the compressor only")
        << true << QVector<quint64>{gibibyte, 2126221301u - gibibyte} << quint64(2126221301);
}

void tst_ZrLoggerErrors::payloadOf2GibibytesIsRefused()
{
    QFETCH(bool, compressed);
    QFETCH(QVector<quint64>, sizes);
    QFETCH(quint64, total);
    sizes.resize(3); // a list of parts cannot be built at run time: missing ones are empty

    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    m_messages->Take();
    u8 byte = 0; // the spans lie about it: reading them would crash
    log.LogData(CRecType(0, 1), 0, 0, compressed,
        {zr::span<u8>(&byte, sizes[0]), zr::span<u8>(&byte, sizes[1]), zr::span<u8>(&byte, sizes[2])});
    QCOMPARE(m_messages->Take(), QStringList(TooLarge(total)));
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.bytesWritten, u64(48));
    QCOMPARE(QFileInfo(Path("a.log")).size(), qint64(48));
    QVERIFY(log.IsActive());
    log.LogSerStr(QStringLiteral("x"));
    QCOMPARE(log.itemCount, 1u);
}

void tst_ZrLoggerErrors::payloadJustBelow2GibibytesIsWritten()
{
    const Region region;
    ZrLogger log(nullptr);
    log.OpenFile(QStringLiteral("/dev/null"));
    m_messages->Take();
    log.LogData(CRecType(0, 1), 0, 0, false, {region.First(gibibyte), region.First(gibibyte - 1)});
    QCOMPARE(log.itemCount, 1u);
    QCOMPARE(log.bytesWritten, u64(48 + 40) + 0x7FFFFFFFu);
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrLoggerErrors::refusalIsSilentWhileClosed()
{
    ZrLogger log(nullptr);
    u8 byte = 0;
    log.LogData(CRecType(0, 1), 0, 0, false, {zr::span<u8>(&byte, 0x80000000u)});
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrLoggerErrors::messageHandlerMayLog_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("messages");
    // Opened, refused payload, directory set, closed.
    QTest::newRow("file") << QStringLiteral("a.log") << 4;
    QTest::newRow("full device") << QStringLiteral("/dev/full") << 4;
    QTest::newRow("device that cannot seek") << QStringLiteral("/dev/null") << 4;
    // Cannot open, directory set.
    QTest::newRow("missing directory") << QStringLiteral("missing/a.log") << 2;
    QTest::newRow("no name") << QString() << 2;
}

/// A line printed while the writer's lock is held would block for ever in a handler that logs it.
void tst_ZrLoggerErrors::messageHandlerMayLog()
{
    QFETCH(QString, path);
    QFETCH(int, messages);
    if (!path.isEmpty())
        path = QDir(m_dir->path()).filePath(path);
    const int result = RunInChild(
        [&] {
            int count = 0;
            ZrLogger log(nullptr);
            m_messages->onMessage = [&](const QString& text) {
                ++count;
                log.LogSerStr(text);
                log.DiskSpace(); // takes the lock too
            };
            log.OpenFile(path);
            u8 byte = 0;
            log.LogData(CRecType(0, 1), 0, 0, false, {zr::span<u8>(&byte, 0x80000000u)});
            log.LogSerStr(QStringLiteral("x"));
            log.SetLogDirectory(QString());
            log.CloseLog();
            return count;
        },
        10);
    QCOMPARE(result, messages);
}

QTEST_GUILESS_MAIN(tst_ZrLoggerErrors)
#include "tst_ZrLoggerErrors.moc"
