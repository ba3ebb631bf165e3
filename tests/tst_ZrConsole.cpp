#include "ZrUtil/ZrConsole.h"

#include <QtTest>

#include <atomic>
#include <limits>
#include <map>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#ifdef Q_OS_LINUX
#include <dlfcn.h>
#endif

static_assert(std::is_same_v<decltype(ZrConsole::console), zr::ZrRingBuf<ZrConsoleMsg, 1000>>,
    "the last 1,000 messages");
static_assert(std::is_same_v<decltype(ZrConsole::status), std::unordered_map<int, ZrConsoleMsg>>, "");
static_assert(std::is_same_v<decltype(ZrConsole::consoleLock), std::mutex>, "");
static_assert(std::is_same_v<decltype(ZrConsole::statusLock), std::mutex>, "");
static_assert(std::is_same_v<decltype(ZrConsole::debug), bool>, "");

namespace {

/// What a static initialiser of a program finds: the library is ready before any application code runs.
struct LoadState
{
    LoadState()
        : debug(ZrConsole::debug)
        , head(ZrConsole::console.head)
        , count(ZrConsole::console.count)
        , statusSize(ZrConsole::status.size())
    {
        consoleUnlocked = ZrConsole::consoleLock.try_lock();
        if (consoleUnlocked)
            ZrConsole::consoleLock.unlock();
        statusUnlocked = ZrConsole::statusLock.try_lock();
        if (statusUnlocked)
            ZrConsole::statusLock.unlock();
        ZrConsole::Console(17, "%s", "before main");
        storedText = ZrConsole::console.at(0).text;
    }

    bool debug;
    int head;
    int count;
    std::size_t statusSize;
    bool consoleUnlocked = false;
    bool statusUnlocked = false;
    QString storedText;
};

const LoadState loadState;

/// Catches what goes to the Qt message stream while it lives.
class StreamCatcher
{
public:
    StreamCatcher()
    {
        Clear();
        s_previous = qInstallMessageHandler(&StreamCatcher::Take);
    }

    ~StreamCatcher() { qInstallMessageHandler(s_previous); }

    StreamCatcher(const StreamCatcher&) = delete;
    StreamCatcher& operator=(const StreamCatcher&) = delete;

    static QStringList Lines()
    {
        const std::lock_guard<std::mutex> guard(s_lock);
        return s_lines;
    }

private:
    static void Clear()
    {
        const std::lock_guard<std::mutex> guard(s_lock);
        s_lines.clear();
    }

    static void Take(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        const std::lock_guard<std::mutex> guard(s_lock);
        s_lines.append(type == QtDebugMsg ? text : QStringLiteral("not a debug line: ") + text);
    }

    static inline std::mutex s_lock;
    static inline QStringList s_lines;
    static inline QtMessageHandler s_previous = nullptr;
};

/// The history, oldest first, copied under the lock.
std::vector<ZrConsoleMsg> History()
{
    const std::lock_guard<std::mutex> guard(ZrConsole::consoleLock);
    std::vector<ZrConsoleMsg> messages;
    const auto& ring = ZrConsole::console;
    for (int i = 0; i < ring.count; ++i)
        messages.push_back(ring.items[(ring.head + i) % 1000]);
    return messages;
}

ZrConsoleMsg StatusOf(int key)
{
    const std::lock_guard<std::mutex> guard(ZrConsole::statusLock);
    const auto it = ZrConsole::status.find(key);
    return it == ZrConsole::status.end() ? ZrConsoleMsg() : it->second;
}

std::size_t StatusSize()
{
    const std::lock_guard<std::mutex> guard(ZrConsole::statusLock);
    return ZrConsole::status.size();
}

/// Whether another thread could take \p lock now.
bool IsFree(std::mutex& lock)
{
    bool taken = false;
    std::thread([&] {
        taken = lock.try_lock();
        if (taken)
            lock.unlock();
    }).join();
    return taken;
}

/// Formats that the compiler would object to when it saw them as literals.
const char* Opaque(const char* fmt)
{
    static const char* volatile hidden;
    hidden = fmt;
    return hidden;
}

/// Whether \p time is a whole number of milliseconds within \p fromMs to \p toMs, expressed in seconds.
bool IsTimeWithin(double time, qint64 fromMs, qint64 toMs)
{
    for (qint64 ms = fromMs; ms <= toMs; ++ms) {
        if (time == ms / 1000.0)
            return true;
    }
    return false;
}

/// Threads 1 to \p threads post at once: per round a console message, a status of their own key and one of
/// \p sharedKey.
void PostFromThreads(int threads, int rounds, int sharedKey)
{
    std::atomic<bool> go{false};
    std::vector<std::thread> workers;
    for (int t = 1; t <= threads; ++t) {
        workers.emplace_back([t, rounds, sharedKey, &go] {
            while (!go)
                std::this_thread::yield();
            for (int k = 0; k < rounds; ++k) {
                ZrConsole::Console(t, "%d/%d", t, k);
                ZrConsole::Status(t, "own %d", k);
                ZrConsole::Status(sharedKey, "shared %d/%d", t, k);
            }
        });
    }
    go = true;
    for (std::thread& worker : workers)
        worker.join();
}

} // namespace

class tst_ZrConsole : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void stateAtLibraryLoad();
    void defaultMessage();
    void stateLivesInTheLibrary();
    void assignmentDoesNothing();

    void consoleStoresIdTimeAndText();
    void consoleEchoesOnlyIdZero();
    void consoleEchoesNothingWithDebugOff();
    void echoIsWrittenBeforeTheMessageIsStored();
    void historyKeepsTheLastThousand();
    void historyHoldsExactlyAThousand();
    void consoleKeepsExtremeIds();

    void debugEchoesEveryIdAndStoresNothing();
    void debugOffFormatsNothing();
    void streamQuotesTheText();

    void statusOfOneKeyIsReplacedAndCounted();
    void statusKeysAreSeparate();
    void statusEchoesNothing();
    void statusCountStaysAtTheLargestInt();

    void format_data();
    void format();
    void formatHasNoSideEffect();
    void unicodeTextIsKept();
    void veryLongTextIsKept();
    void nullAndEmptyFormats();
    void percentSignsOfArgumentsAreNotInterpreted();

    void locksAreFreeWhileTheEchoIsWritten();
    void messageHandlerMayCallTheConsole();
    void locksAreFreeAfterwards();
    void lockedHistoryDoesNotHoldUpStatus();
    void eightThreadsKeepHistoryAndStatusConsistent();
    void readersSeeWholeMessages();
};

void tst_ZrConsole::init()
{
    ZrConsole::debug = true;
    {
        const std::lock_guard<std::mutex> guard(ZrConsole::consoleLock);
        ZrConsole::console = {};
    }
    const std::lock_guard<std::mutex> guard(ZrConsole::statusLock);
    ZrConsole::status.clear();
}

void tst_ZrConsole::stateAtLibraryLoad()
{
    QVERIFY(loadState.debug);
    QCOMPARE(loadState.head, 0);
    QCOMPARE(loadState.count, 0);
    QCOMPARE(loadState.statusSize, std::size_t(0));
    QVERIFY(loadState.consoleUnlocked);
    QVERIFY(loadState.statusUnlocked);
    QCOMPARE(loadState.storedText, QStringLiteral("before main"));
}

void tst_ZrConsole::defaultMessage()
{
    const ZrConsoleMsg msg;
    QCOMPARE(msg.id, -1);
    QCOMPARE(msg.count, 0);
    QCOMPARE(msg.time, 0.0);
    QVERIFY(msg.text.isEmpty());
    for (const ZrConsoleMsg& item : ZrConsole::console.items) {
        QCOMPARE(item.id, -1);
        QCOMPARE(item.count, 0);
    }
}

void tst_ZrConsole::stateLivesInTheLibrary()
{
#ifdef Q_OS_LINUX
    // One address for the program and every plugin: the state belongs to the shared library, not to who
    // includes the header.
    const auto module = [](const void* address) {
        Dl_info info{};
        return dladdr(address, &info) != 0 ? QFileInfo(QString::fromLocal8Bit(info.dli_fname)).fileName()
                                           : QString();
    };
    const QString library = QStringLiteral("libZrUtil.so");
    QVERIFY2(module(&ZrConsole::debug).startsWith(library), qPrintable(module(&ZrConsole::debug)));
    QVERIFY2(module(&ZrConsole::console).startsWith(library), qPrintable(module(&ZrConsole::console)));
    QVERIFY2(
        module(&ZrConsole::consoleLock).startsWith(library), qPrintable(module(&ZrConsole::consoleLock)));
    QVERIFY2(module(&ZrConsole::status).startsWith(library), qPrintable(module(&ZrConsole::status)));
    QVERIFY2(module(&ZrConsole::statusLock).startsWith(library), qPrintable(module(&ZrConsole::statusLock)));
    QVERIFY(dlsym(RTLD_DEFAULT, "_ZN9ZrConsole6statusE") == static_cast<void*>(&ZrConsole::status));
#else
    QSKIP("uses dladdr");
#endif
}

void tst_ZrConsole::assignmentDoesNothing()
{
    ZrConsole::Console(1, "kept");
    ZrConsole::Status(2, "kept");
    ZrConsole a;
    const ZrConsole b;
    a = b;
    a = ZrConsole();
    QCOMPARE(ZrConsole::console.count, 1);
    QCOMPARE(StatusSize(), std::size_t(1));
    QVERIFY(ZrConsole::debug);
    static_assert(std::is_same_v<decltype(a = b), ZrConsole&>, "");
    static_assert(std::is_same_v<decltype(a = std::declval<ZrConsole>()), ZrConsole&>, "");
}

void tst_ZrConsole::consoleStoresIdTimeAndText()
{
    const qint64 from = QDateTime::currentMSecsSinceEpoch();
    ZrConsole::Console(5, "depth %.1f m at %s", 12.25, "mark 3");
    const qint64 to = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(ZrConsole::console.head, 0);
    QCOMPARE(ZrConsole::console.count, 1);
    const ZrConsoleMsg msg = ZrConsole::console.items[0];
    QCOMPARE(msg.id, 5);
    QCOMPARE(msg.count, 0);
    QCOMPARE(msg.text, QStringLiteral("depth 12.3 m at mark 3"));
    QVERIFY2(IsTimeWithin(msg.time, from, to), qPrintable(QString::number(msg.time, 'f', 6)));
}

void tst_ZrConsole::consoleEchoesOnlyIdZero()
{
    const StreamCatcher stream;
    ZrConsole::Console(5, "x");
    ZrConsole::Console(-1, "x");
    ZrConsole::Console(1, "x");
    QCOMPARE(stream.Lines(), QStringList());
    ZrConsole::Console(0, "x");
    QCOMPARE(stream.Lines(), QStringList{QStringLiteral("Console  0 :  \"x\"")});
    QCOMPARE(ZrConsole::console.count, 4);
    QCOMPARE(ZrConsole::console.at(3).id, 0);
    QCOMPARE(ZrConsole::console.at(3).text, QStringLiteral("x"));
}

void tst_ZrConsole::consoleEchoesNothingWithDebugOff()
{
    const StreamCatcher stream;
    ZrConsole::debug = false;
    ZrConsole::Console(0, "x%d", 1);
    QCOMPARE(stream.Lines(), QStringList());
    QCOMPARE(ZrConsole::console.count, 1);
    QCOMPARE(ZrConsole::console.at(0).text, QStringLiteral("x1"));
}

void tst_ZrConsole::echoIsWrittenBeforeTheMessageIsStored()
{
    static int countAtEcho;
    countAtEcho = -1;
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {
              const std::lock_guard<std::mutex> guard(ZrConsole::consoleLock);
              countAtEcho = ZrConsole::console.count;
          });
    ZrConsole::Console(0, "x");
    qInstallMessageHandler(previous);
    QCOMPARE(countAtEcho, 0);
    QCOMPARE(ZrConsole::console.count, 1);
}

void tst_ZrConsole::historyKeepsTheLastThousand()
{
    for (int k = 0; k < 1001; ++k)
        ZrConsole::Console(k + 1, "message %d", k);
    QCOMPARE(ZrConsole::console.head, 1);
    QCOMPARE(ZrConsole::console.count, 1000);
    const std::vector<ZrConsoleMsg> history = History();
    QCOMPARE(history.size(), std::size_t(1000));
    for (int i = 0; i < 1000; ++i) {
        QCOMPARE(history[std::size_t(i)].id, i + 2);
        QCOMPARE(history[std::size_t(i)].text, QStringLiteral("message %1").arg(i + 1));
    }
}

void tst_ZrConsole::historyHoldsExactlyAThousand()
{
    for (int k = 0; k < 1000; ++k)
        ZrConsole::Console(1, "message %d", k);
    QCOMPARE(ZrConsole::console.head, 0);
    QCOMPARE(ZrConsole::console.count, 1000);
    QCOMPARE(ZrConsole::console.at(0).text, QStringLiteral("message 0"));
    QCOMPARE(ZrConsole::console.at(999).text, QStringLiteral("message 999"));
}

void tst_ZrConsole::consoleKeepsExtremeIds()
{
    ZrConsole::Console(std::numeric_limits<int>::min(), "low");
    ZrConsole::Console(std::numeric_limits<int>::max(), "high");
    QCOMPARE(ZrConsole::console.at(0).id, std::numeric_limits<int>::min());
    QCOMPARE(ZrConsole::console.at(1).id, std::numeric_limits<int>::max());
}

void tst_ZrConsole::debugEchoesEveryIdAndStoresNothing()
{
    const StreamCatcher stream;
    ZrConsole::Debug(0, "x");
    ZrConsole::Debug(5, "%d of %d", 2, 3);
    ZrConsole::Debug(-7, "y");
    QCOMPARE(stream.Lines(),
        (QStringList{QStringLiteral("Debug  0 :  \"x\""), QStringLiteral("Debug  5 :  \"2 of 3\""),
            QStringLiteral("Debug  -7 :  \"y\"")}));
    QCOMPARE(ZrConsole::console.count, 0);
    QCOMPARE(StatusSize(), std::size_t(0));
}

void tst_ZrConsole::debugOffFormatsNothing()
{
    const StreamCatcher stream;
    // %n writes the number of characters made so far, and so tells whether formatting took place.
    int written = -1;
    ZrConsole::debug = false;
    ZrConsole::Debug(0, "abc%n", &written);
    QCOMPARE(written, -1);
    QCOMPARE(stream.Lines(), QStringList());
    ZrConsole::debug = true;
    ZrConsole::Debug(0, "abc%n", &written);
    QCOMPARE(written, 3);
    QCOMPARE(stream.Lines(), QStringList{QStringLiteral("Debug  0 :  \"abc\"")});
}

void tst_ZrConsole::streamQuotesTheText()
{
    const StreamCatcher stream;
    ZrConsole::Console(0, "say \"%s\"\n", "ping");
    ZrConsole::Debug(1, "%s", "");
    QCOMPARE(stream.Lines(),
        (QStringList{
            QStringLiteral("Console  0 :  \"say \\\"ping\\\"\\n\""), QStringLiteral("Debug  1 :  \"\"")}));
    QCOMPARE(ZrConsole::console.at(0).text, QStringLiteral("say \"ping\"\n"));
}

void tst_ZrConsole::statusOfOneKeyIsReplacedAndCounted()
{
    const qint64 from = QDateTime::currentMSecsSinceEpoch();
    ZrConsole::Status(7, "a");
    QCOMPARE(StatusOf(7).count, 1);
    QCOMPARE(StatusOf(7).text, QStringLiteral("a"));
    const double first = StatusOf(7).time;
    ZrConsole::Status(7, "b");
    const qint64 to = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(StatusSize(), std::size_t(1));
    const ZrConsoleMsg msg = StatusOf(7);
    QCOMPARE(msg.id, 7);
    QCOMPARE(msg.count, 2);
    QCOMPARE(msg.text, QStringLiteral("b"));
    QVERIFY(IsTimeWithin(msg.time, from, to));
    QVERIFY(msg.time >= first);
    QCOMPARE(ZrConsole::console.count, 0);
}

void tst_ZrConsole::statusKeysAreSeparate()
{
    for (const int key : {0, -1, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        ZrConsole::Status(key, "key %d", key);
        QCOMPARE(StatusOf(key).id, key);
        QCOMPARE(StatusOf(key).count, 1);
        QCOMPARE(StatusOf(key).text, QStringLiteral("key %1").arg(key));
    }
    QCOMPARE(StatusSize(), std::size_t(5));
}

void tst_ZrConsole::statusEchoesNothing()
{
    const StreamCatcher stream;
    ZrConsole::Status(0, "x");
    ZrConsole::Status(7, "x");
    QCOMPARE(stream.Lines(), QStringList());
}

void tst_ZrConsole::statusCountStaysAtTheLargestInt()
{
    ZrConsole::status[7].count = std::numeric_limits<int>::max() - 1;
    for (int post = 0; post < 3; ++post) {
        ZrConsole::Status(7, "post %d", post);
        QCOMPARE(StatusOf(7).count, std::numeric_limits<int>::max());
        QCOMPARE(StatusOf(7).text, QStringLiteral("post %1").arg(post));
    }
}

void tst_ZrConsole::format_data()
{
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << ZrConsole::Format("ready") << QStringLiteral("ready");
    QTest::newRow("integers") << ZrConsole::Format("%d %u %x %05d", -3, 4u, 255u, 42)
                              << QStringLiteral("-3 4 ff 00042");
    QTest::newRow("64-bit") << ZrConsole::Format("%lld", 9223372036854775807LL)
                            << QStringLiteral("9223372036854775807");
    QTest::newRow("reals") << ZrConsole::Format("%.3f %g", 1.0 / 8.0, 1e20) << QStringLiteral("0.125 1e+20");
    QTest::newRow("texts") << ZrConsole::Format("%s|%5s|%-5s|%c", "a", "b", "c", 'd')
                           << QStringLiteral("a|    b|c    |d");
    QTest::newRow("percent sign") << ZrConsole::Format("%d %%", 50) << QStringLiteral("50 %");
}

void tst_ZrConsole::format()
{
    QFETCH(QString, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected);
}

void tst_ZrConsole::formatHasNoSideEffect()
{
    const StreamCatcher stream;
    QCOMPARE(ZrConsole::Format("%d", 1), QStringLiteral("1"));
    QCOMPARE(stream.Lines(), QStringList());
    QCOMPARE(ZrConsole::console.count, 0);
    QCOMPARE(StatusSize(), std::size_t(0));
}

void tst_ZrConsole::unicodeTextIsKept()
{
    // Latin, Greek, Han and a character outside the basic plane, as UTF-8.
    const QByteArray utf8 = "T\xC3\xBCmpel \xCE\xB1 \xE6\xB0\xB4 \xF0\x9F\x90\x9F";
    const QString text = QString::fromUtf8(utf8);
    QCOMPARE(text.size(), 13);
    ZrConsole::Console(3, "%s", utf8.constData());
    ZrConsole::Status(3, "%s", utf8.constData());
    QCOMPARE(ZrConsole::console.at(0).text, text);
    QCOMPARE(StatusOf(3).text, text);
    QCOMPARE(ZrConsole::Format("T\xC3\xBC %s", "\xE6\xB0\xB4"), QString::fromUtf8("T\xC3\xBC \xE6\xB0\xB4"));
}

void tst_ZrConsole::veryLongTextIsKept()
{
    const QByteArray text(1000000, 'w');
    const StreamCatcher stream;
    ZrConsole::Console(0, "<%s>", text.constData());
    ZrConsole::Status(9, "<%s>", text.constData());
    const QString expected = QLatin1Char('<') + QString::fromLatin1(text) + QLatin1Char('>');
    QVERIFY(ZrConsole::console.at(0).text == expected);
    QVERIFY(StatusOf(9).text == expected);
    QCOMPARE(stream.Lines().size(), 1);
    QVERIFY(stream.Lines().at(0) == QStringLiteral("Console  0 :  \"%1\"").arg(expected));
}

void tst_ZrConsole::nullAndEmptyFormats()
{
    const StreamCatcher stream;
    for (const char* fmt : {Opaque(nullptr), Opaque("")}) {
        init();
        ZrConsole::Console(0, fmt);
        ZrConsole::Debug(1, fmt);
        ZrConsole::Status(2, fmt);
        QVERIFY(ZrConsole::Format(fmt).isEmpty());
        QCOMPARE(ZrConsole::console.count, 1);
        QVERIFY(ZrConsole::console.at(0).text.isEmpty());
        QCOMPARE(StatusOf(2).count, 1);
        QVERIFY(StatusOf(2).text.isEmpty());
    }
    const QStringList once{QStringLiteral("Console  0 :  \"\""), QStringLiteral("Debug  1 :  \"\"")};
    QCOMPARE(stream.Lines(), once + once);
}

void tst_ZrConsole::percentSignsOfArgumentsAreNotInterpreted()
{
    const StreamCatcher stream;
    ZrConsole::Console(0, "%s", "100 %s %n %1");
    QCOMPARE(ZrConsole::console.at(0).text, QStringLiteral("100 %s %n %1"));
    QCOMPARE(stream.Lines(), QStringList{QStringLiteral("Console  0 :  \"100 %s %n %1\"")});
}

void tst_ZrConsole::locksAreFreeWhileTheEchoIsWritten()
{
    static int echoes;
    static int freeLocks;
    echoes = 0;
    freeLocks = 0;
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {
              ++echoes;
              freeLocks += IsFree(ZrConsole::consoleLock) ? 1 : 0;
              freeLocks += IsFree(ZrConsole::statusLock) ? 1 : 0;
          });
    ZrConsole::Console(0, "x");
    ZrConsole::Debug(3, "x");
    qInstallMessageHandler(previous);
    QCOMPARE(echoes, 2);
    QCOMPARE(freeLocks, 4);
}

void tst_ZrConsole::messageHandlerMayCallTheConsole()
{
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
              ZrConsole::Console(8, "seen: %s", text.toUtf8().constData());
              ZrConsole::Status(9, "seen: %s", text.toUtf8().constData());
          });
    ZrConsole::Console(0, "x");
    ZrConsole::Debug(4, "y");
    qInstallMessageHandler(previous);

    const std::vector<ZrConsoleMsg> history = History();
    QCOMPARE(history.size(), std::size_t(3));
    QCOMPARE(history[0].text, QStringLiteral("seen: Console  0 :  \"x\""));
    QCOMPARE(history[1].text, QStringLiteral("x"));
    QCOMPARE(history[2].text, QStringLiteral("seen: Debug  4 :  \"y\""));
    QCOMPARE(StatusOf(9).count, 2);
    QCOMPARE(StatusOf(9).text, QStringLiteral("seen: Debug  4 :  \"y\""));
}

void tst_ZrConsole::locksAreFreeAfterwards()
{
    ZrConsole::Console(1, "x");
    ZrConsole::Status(1, "x");
    QVERIFY(IsFree(ZrConsole::consoleLock));
    QVERIFY(IsFree(ZrConsole::statusLock));
}

void tst_ZrConsole::lockedHistoryDoesNotHoldUpStatus()
{
    {
        const std::lock_guard<std::mutex> guard(ZrConsole::consoleLock);
        std::thread([] { ZrConsole::Status(1, "while the history is read"); }).join();
    }
    {
        const std::lock_guard<std::mutex> guard(ZrConsole::statusLock);
        std::thread([] { ZrConsole::Console(1, "while the table is read"); }).join();
    }
    QCOMPARE(StatusOf(1).count, 1);
    QCOMPARE(ZrConsole::console.count, 1);
}

void tst_ZrConsole::eightThreadsKeepHistoryAndStatusConsistent()
{
    constexpr int threads = 8;
    constexpr int rounds = 1234;
    constexpr int sharedKey = 1000;
    PostFromThreads(threads, rounds, sharedKey);

    // 9,872 messages through 1,000 places: the head has moved on by 8,872, modulo 1,000.
    QCOMPARE(ZrConsole::console.count, 1000);
    QCOMPARE(ZrConsole::console.head, 872);
    std::map<int, int> last;
    for (const ZrConsoleMsg& msg : History()) {
        QVERIFY(msg.id >= 1 && msg.id <= threads);
        const QStringList parts = msg.text.split(QLatin1Char('/'));
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts.at(0).toInt(), msg.id);
        const int k = parts.at(1).toInt();
        QVERIFY(k >= 0 && k < rounds);
        // The messages of one thread follow each other without a gap.
        if (last.count(msg.id) != 0)
            QCOMPARE(k, last[msg.id] + 1);
        last[msg.id] = k;
    }
    for (const auto& [id, k] : last)
        QCOMPARE(std::make_pair(id, k), std::make_pair(id, rounds - 1));

    QCOMPARE(StatusSize(), std::size_t(threads + 1));
    QCOMPARE(StatusOf(sharedKey).count, threads * rounds);
    QVERIFY(StatusOf(sharedKey).text.endsWith(QStringLiteral("/%1").arg(rounds - 1)));
    for (int t = 1; t <= threads; ++t) {
        QCOMPARE(StatusOf(t).id, t);
        QCOMPARE(StatusOf(t).count, rounds);
        QCOMPARE(StatusOf(t).text, QStringLiteral("own %1").arg(rounds - 1));
    }
}

void tst_ZrConsole::readersSeeWholeMessages()
{
    std::atomic<bool> stop{false};
    std::thread writer([&stop] {
        for (int k = 0; !stop; ++k) {
            ZrConsole::Console(1 + k % 100, "console %d", 1 + k % 100);
            ZrConsole::Status(1 + k % 100, "status %d", 1 + k % 100);
        }
    });
    // Reading begins with the ring full, so that every further message overwrites one.
    while (History().size() < 1000)
        std::this_thread::yield();
    int wrong = 0;
    for (int round = 0; round < 50; ++round) {
        for (const ZrConsoleMsg& msg : History())
            wrong += msg.text == QStringLiteral("console %1").arg(msg.id) ? 0 : 1;
        const std::lock_guard<std::mutex> guard(ZrConsole::statusLock);
        for (const auto& [key, msg] : ZrConsole::status)
            wrong += msg.id == key && msg.text == QStringLiteral("status %1").arg(key) ? 0 : 1;
    }
    stop = true;
    writer.join();
    QCOMPARE(wrong, 0);
    QCOMPARE(StatusSize(), std::size_t(100));
}

QTEST_GUILESS_MAIN(tst_ZrConsole)
#include "tst_ZrConsole.moc"
