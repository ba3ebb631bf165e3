// Several threads on one ZrLogger: items stay whole, counters right, files valid. Meant for ThreadSanitizer
// too.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QtTest/QtTest>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 8;

/// The payload that thread \p thread logs as its item number \p number: both say what it must look like.
QByteArray Payload(quint16 thread, quint32 number)
{
    QByteArray bytes;
    AppendLe<quint16>(bytes, thread);
    AppendLe<quint32>(bytes, number);
    const int filler = static_cast<int>((number * 37 + thread * 11) % 600);
    bytes += QByteArray(filler, static_cast<char>('a' + (number + thread) % 26));
    return bytes;
}

/// Logs one item in one of the ways there are; every third one compressed.
void LogOne(ZrLogger& log, quint16 thread, quint32 number)
{
    const QByteArray payload = Payload(thread, number);
    const QByteArray head = payload.left(6);
    const QByteArray tail = payload.mid(6);
    log.LogData(
        CRecType(1, 500), thread, static_cast<u16>(number), number % 3 == 0, {Span(head), Span(tail)});
}

struct Walk
{
    bool valid = false; ///< headers follow each other to the very end, and each payload is what was logged
    quint32 items = 0;
    quint64 stored = 0; ///< header and payload bytes
};

/// Reads a log by its layout alone. The numbers of each thread must be increasing.
Walk WalkLog(const QByteArray& bytes)
{
    Walk walk;
    std::vector<qint64> last(threadCount, -1);
    int pos = 48;
    while (bytes.size() - pos >= 40) {
        const QByteArray header = bytes.mid(pos, 40);
        const int stored = static_cast<int>(LeAt<quint32>(header, 32));
        const quint16 source = LeAt<quint16>(header, 26);
        if (LeAt<quint32>(header, 0) != 0xAABBCCDD || source >= threadCount
            || bytes.size() - pos - 40 < stored)
            return walk;
        QByteArray payload = bytes.mid(pos + 40, stored);
        if (LeAt<quint16>(header, 24) == 1)
            payload = qUncompress(payload);
        if (payload.size() < 6 || static_cast<quint32>(payload.size()) != LeAt<quint32>(header, 28))
            return walk;
        const quint32 number = LeAt<quint32>(payload, 2);
        if (payload != Payload(source, number) || LeAt<quint16>(header, 10) != static_cast<quint16>(number)
            || number <= last[source])
            return walk;
        last[source] = number;
        ++walk.items;
        pos += 40 + stored;
    }
    walk.valid = pos == bytes.size();
    walk.stored = static_cast<quint64>(pos);
    return walk;
}

} // namespace

class tst_ZrLoggerThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void itemsAreNeverInterleaved();
    void openingAndClosingMeanwhileLeavesWholeFiles();
    void stateAndSettingsMayBeReadMeanwhile();
    void playingMeanwhileGivesWholeItems();

private:
    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrLoggerThreads::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrLoggerThreads::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrLoggerThreads::itemsAreNeverInterleaved()
{
    constexpr quint32 perThread = 1500;
    const QString path = m_dir->filePath(QStringLiteral("a.log"));
    ZrLogger log(nullptr);
    log.OpenFile(path);
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;
    for (quint16 thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&log, &waiting, thread] {
            --waiting;
            while (waiting > 0) // all start together
                std::this_thread::yield();
            for (quint32 number = 0; number < perThread; ++number)
                LogOne(log, thread, number);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    log.CloseLog();

    const Walk walk = WalkLog(ReadWhole(path));
    QVERIFY(walk.valid);
    QCOMPARE(walk.items, threadCount * perThread);
    QCOMPARE(log.itemCount, walk.items);
    QCOMPARE(log.bytesWritten, walk.stored);
    QCOMPARE(log.WriteErrors(), u64(0));
}

void tst_ZrLoggerThreads::openingAndClosingMeanwhileLeavesWholeFiles()
{
    constexpr int files = 25;
    ZrLogger log(nullptr);
    std::atomic<bool> stop{false};
    std::atomic<quint64> attempts{0};
    std::vector<std::thread> threads;
    for (quint16 thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&log, &stop, &attempts, thread] {
            for (quint32 number = 0; !stop; ++number) {
                LogOne(log, thread, number);
                ++attempts;
            }
        });
    }
    const auto path = [this](int file) { return m_dir->filePath(QStringLiteral("%1.log").arg(file)); };
    QVector<quint32> counts;
    quint64 logged = 0;
    for (int file = 0; file < files; ++file) {
        log.OpenFile(path(file));
        const quint64 until = attempts + 200;
        while (attempts < until)
            std::this_thread::yield();
        if (file % 2 == 0) { // every other one is closed by the next opening
            log.CloseLog();
            counts << log.itemCount;
        } else {
            counts << 0;
        }
    }
    log.CloseLog();
    stop = true;
    for (std::thread& thread : threads)
        thread.join();

    for (int file = 0; file < files; ++file) {
        const Walk walk = WalkLog(ReadWhole(path(file)));
        QVERIFY2(walk.valid, qUtf8Printable(path(file)));
        if (file % 2 == 0)
            QCOMPARE(walk.items, counts.at(file));
        logged += walk.items;
    }
    QVERIFY(logged > files * 100u);
    QVERIFY(logged <= attempts);
}

void tst_ZrLoggerThreads::stateAndSettingsMayBeReadMeanwhile()
{
    ZrLogger log(nullptr);
    log.SetLogDirectory(m_dir->path());
    std::atomic<bool> stop{false};
    std::atomic<int> looks{0};
    std::vector<std::thread> threads;
    for (quint16 thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&log, &stop, thread] {
            for (quint32 number = 0; !stop; ++number)
                LogOne(log, thread, number);
        });
    }
    threads.emplace_back([&] {
        while (!stop) {
            ++looks;
            if ((log.IsActive() && log.WriteErrors() != 0) || log.LogState() < lsClosed
                || log.LogState() > lsLogging || log.WriteErrors() != 0)
                qFatal("a state that does not exist");
        }
    });
    threads.emplace_back([&] {
        while (!stop)
            log.DiskSpace();
    });
    for (int i = 0; i < 100; ++i) {
        log.SetLogDirectory(m_dir->filePath(QString::number(i % 3)));
        log.ToggleLogging();
    }
    QTRY_VERIFY(looks > 0);
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    QVERIFY(!log.IsActive()); // an even number of switches
    for (int dir = 0; dir < 3; ++dir) {
        const QDir folder(m_dir->filePath(QString::number(dir)));
        const QStringList names = folder.entryList(QDir::Files);
        QVERIFY(!names.isEmpty());
        for (const QString& name : names)
            QVERIFY(WalkLog(ReadWhole(folder.filePath(name))).valid);
    }
}

/// A log may be reviewed while it is recorded. Only the item that is being written just then may look empty.
void tst_ZrLoggerThreads::playingMeanwhileGivesWholeItems()
{
    const QString path = m_dir->filePath(QStringLiteral("a.log"));
    ZrLogger log(nullptr);
    log.OpenFile(path);
    std::atomic<bool> stop{false};
    std::atomic<quint32> logged{0};
    std::atomic<quint32> allowed{0}; // the writer is kept from running far ahead of the player
    std::thread writer([&] {
        while (!stop) {
            if (logged == allowed) {
                std::this_thread::yield();
                continue;
            }
            LogOne(log, 0, logged);
            ++logged; // the call has returned
        }
    });
    int incomplete = 0;
    int broken = 0;
    for (quint32 round = 1; round <= 40; ++round) {
        allowed = round * 100 + 400;
        while (logged < round * 100)
            std::this_thread::yield();
        ZrPlayer player;
        quint32 whole = 0;
        connect(&player, &ZrPlayer::NewPayload, this, [&](const ZrLogItemInf&, zr::span<u8> payload) {
            const QByteArray stored = Bytes(payload);
            if ((whole % 3 == 0 ? qUncompress(stored) : stored) == Payload(0, whole))
                ++whole;
            else if (!stored.isEmpty() || player.fileSize > player.pos + 1000) // not the last item
                ++broken;
        });
        const quint32 returned = logged;
        incomplete += player.OpenFile(path) ? 0 : 1;
        while (player.ReadNextItem(true)) { }
        incomplete += whole < returned ? 1 : 0;
    }
    stop = true;
    writer.join();
    QCOMPARE(broken, 0);
    QCOMPARE(incomplete, 0);
}

QTEST_GUILESS_MAIN(tst_ZrLoggerThreads)
#include "tst_ZrLoggerThreads.moc"
