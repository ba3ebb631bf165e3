// The promise of ZrLogger to its user: when the process dies, no item is lost whose call had returned.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <csignal>
#include <poll.h>
#include <random>

namespace {

constexpr int wantedRounds = 60;
constexpr int leastRounds = 40;
constexpr qint64 roundsTimeMs = 10000;

QByteArray Payload(quint32 number)
{
    QByteArray bytes;
    AppendLe<quint32>(bytes, number);
    const int size = number % 50 == 0 ? 20000 : static_cast<int>(number % 300);
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(number * 31 + static_cast<quint32>(i) * 7);
    return bytes;
}

bool IsCompressed(quint32 number)
{
    return number % 7 == 3;
}

/// The life of the child: logs items for ever and reports each call that has returned.
[[noreturn]] void LogForEver(const QString& path, int report)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    ZrLogger log(nullptr);
    log.OpenFile(path);
    for (quint32 number = 0;; ++number) {
        const QByteArray payload = Payload(number);
        log.LogData(CRecType(0, 9), 1, 2, IsCompressed(number), {Span(payload)});
        if (write(report, &number, sizeof number) != sizeof number)
            _exit(1);
    }
}

/// Reads what the child has reported, until it is silent for \p ms or has gone; the bytes so far.
void Drain(int pipe, int ms, QByteArray& reports)
{
    QElapsedTimer timer;
    timer.start();
    char chunk[65536];
    for (;;) {
        struct pollfd waiting = {pipe, POLLIN, 0};
        const int left = ms < 0 ? -1 : static_cast<int>(qMax<qint64>(0, ms - timer.elapsed()));
        if (poll(&waiting, 1, left) <= 0)
            return;
        const ssize_t count = read(pipe, chunk, sizeof chunk);
        if (count <= 0)
            return;
        reports.append(chunk, static_cast<int>(count));
    }
}

/// Lets a child log to \p path and kills it after \p microseconds of logging; how many calls had returned.
int LogAndKill(const QString& path, unsigned microseconds)
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        LogForEver(path, ends[1]);
    }
    close(ends[1]);
    QByteArray reports;
    struct pollfd first = {ends[0], POLLIN, 0};
    poll(&first, 1, 10000); // the time counts from the first report
    const int ms = static_cast<int>(microseconds / 1000);
    if (ms > 0)
        Drain(ends[0], ms, reports);
    usleep(microseconds % 1000);
    kill(child, SIGKILL);
    Drain(ends[0], -1, reports);
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return reports.size() / 4;
}

} // namespace

class tst_ZrLoggerKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportedItemsSurviveTheKill();
};

void tst_ZrLoggerKill::reportedItemsSurviveTheKill()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    const unsigned seed = std::random_device()();
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    QElapsedTimer timer;
    timer.start();
    int rounds = 0;
    qint64 reportedInAll = 0;
    for (; rounds < wantedRounds && (rounds < leastRounds || timer.elapsed() < roundsTimeMs); ++rounds) {
        const int reported = LogAndKill(path, random() % 30000);
        QVERIFY(reported > 0);
        reportedInAll += reported;

        MessageCatcher messages;
        ZrPlayer player;
        quint32 number = 0;
        bool allRight = true;
        connect(&player, &ZrPlayer::NewPayload, this, [&](const ZrLogItemInf& inf, zr::span<u8> payload) {
            if (number >= static_cast<quint32>(reported))
                return; // the item that was being written when the end came
            const QByteArray stored = Bytes(payload);
            allRight = allRight && inf == CRecType(0, 9) && inf.source == 1 && inf.format == 2
                && (IsCompressed(number) ? qUncompress(stored) : stored) == Payload(number);
            ++number;
        });
        QVERIFY(player.OpenFile(path));
        while (player.ReadNextItem(true)) { }
        QVERIFY2(allRight, qPrintable(QStringLiteral("round %1, item %2").arg(rounds).arg(number)));
        QCOMPARE(number, static_cast<quint32>(reported));
    }
    qInfo("%d rounds, %lld items", rounds, reportedInAll);
    QVERIFY(rounds >= leastRounds);
}

QTEST_GUILESS_MAIN(tst_ZrLoggerKill)
#include "tst_ZrLoggerKill.moc"
