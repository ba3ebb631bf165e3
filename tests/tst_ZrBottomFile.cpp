// The bottom line beside the log: back bit by bit, tied to its log, and never lost.

#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarPing.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <thread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

std::vector<ZrSonarPing> Pings(std::size_t count, double first = 1614780309.25)
{
    std::vector<ZrSonarPing> pings(count);
    for (std::size_t i = 0; i < count; ++i)
        pings[i].time = first + 0.1 * static_cast<double>(i);
    return pings;
}

ZrBottomLine Line(const std::vector<double>& found, const std::vector<double>& edited = {})
{
    ZrBottomLine line;
    line.SetFound(found);
    line.SetEdited(0, edited);
    return line;
}

bool IsSame(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || a == b;
}

bool AreSame(const ZrBottomLine& a, const ZrBottomLine& b)
{
    const auto same = [](const std::vector<double>& x, const std::vector<double>& y) {
        return std::equal(x.begin(), x.end(), y.begin(), y.end(), IsSame);
    };
    return same(a.Found(), b.Found()) && same(a.Edited(), b.Edited());
}

QByteArray ContentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

bool Put(const QString& path, const QByteArray& bytes)
{
    // Removed rather than truncated: some file systems wait for the disk when a truncated file is closed.
    QFile::remove(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// A file of a log of three pings with \p rest in it.
QByteArray Json(const QByteArray& rest)
{
    return QByteArray("{\"format\": \"ZrBottomLine\", \"version\": 1, \"log\": {\"pings\": 3, \"first\": "
                      "10, \"last\": 10.2}, ")
        + rest + "}";
}

/// Three pings from 10 s to 10.2 s.
std::vector<ZrSonarPing> ThreePings()
{
    return Pings(3, 10.0);
}

} // namespace

class tst_ZrBottomFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void roundTrip_data();
    void roundTrip();
    void exactly();
    void layout();
    void writtenByHand();
    void missing();
    void refused_data();
    void refused();
    void everyTruncation();
    void everyBitFlip();
    void otherLog_data();
    void otherLog();
    void tooLarge();
    void unreadable_data();
    void unreadable();
    void wrongNumber();
    void keptBeforeReplaced();
    void cannotBeWritten();
    void fullDisk();
    void throughLink();
    void twoThreads();
    void longLine();

private:
    QStringList Names() const
    {
        return QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_log;
    QString m_path;
};

void tst_ZrBottomFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_log = m_dir->filePath(S("dive äß.log"));
    m_path = m_log + S(".bottom.json");
    QCOMPARE(ZrBottomFile(m_log).Path(), m_path);
    QCOMPARE(ZrBottomFile(m_log).State(), ZrBottomFile::Idle);
}

void tst_ZrBottomFile::roundTrip_data()
{
    QTest::addColumn<std::vector<double>>("found");
    QTest::addColumn<std::vector<double>>("edited");
    using V = std::vector<double>;
    QTest::newRow("no pings") << V() << V();
    QTest::newRow("one ping") << V{4.25} << V();
    QTest::newRow("nothing known") << V(4, unknown) << V();
    QTest::newRow("all known") << V{1.0, 2.0, 3.0} << V();
    QTest::newRow("gaps") << V{unknown, 2.0, 3.0, unknown, unknown, 0.0, unknown} << V{};
    QTest::newRow("edits") << V{1.0, unknown, 3.0, 4.0} << V{unknown, 2.5, 0.0, unknown};
    QTest::newRow("edits only") << V(3, unknown) << V{1.0, unknown, 3.0};
    QTest::newRow("odd numbers") << V{0.1, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, 12.345678901234567}
                                 << V{std::nextafter(1.0, 2.0), 1e15, 123456789.0};
}

void tst_ZrBottomFile::roundTrip()
{
    QFETCH(std::vector<double>, found);
    QFETCH(std::vector<double>, edited);
    const ZrBottomLine line = Line(found, edited);
    const std::vector<ZrSonarPing> pings = Pings(found.size());
    ZrBottomFile file(m_log);
    QVERIFY2(file.Save(pings, line), qPrintable(file.Error()));
    QCOMPARE(file.State(), ZrBottomFile::Whole);
    QCOMPARE(Names(), QStringList{S("dive äß.log.bottom.json")});
    ZrBottomLine loaded = Line({9.0});
    ZrBottomFile again(m_log);
    QVERIFY2(again.Load(pings, loaded), qPrintable(again.Error()));
    QCOMPARE(again.State(), ZrBottomFile::Whole);
    QCOMPARE(again.Error(), QString());
    QVERIFY(AreSame(loaded, line));
}

/// Random bits, and times as they come.
void tst_ZrBottomFile::exactly()
{
    std::mt19937_64 random(3);
    for (int round = 0; round < 10; ++round) {
        std::vector<double> found(400);
        for (double& altitude : found) {
            const u64 bits = random() >> 1; // positive
            std::memcpy(&altitude, &bits, sizeof altitude);
        }
        std::vector<ZrSonarPing> pings(found.size());
        pings.front().time = static_cast<double>(static_cast<qint64>(random())) * 1.0e-9;
        pings.back().time = pings.front().time + (round % 2 == 0 ? 1.0 : 0.123456789);
        const ZrBottomLine line = Line(found);
        ZrBottomFile file(m_log);
        QVERIFY(file.Save(pings, line));
        QFile::remove(m_path + S(".kept"));
        ZrBottomLine loaded;
        QVERIFY2(file.Load(pings, loaded), qPrintable(file.Error()));
        QVERIFY(AreSame(loaded, line));
    }
}

void tst_ZrBottomFile::layout()
{
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(ThreePings(), Line({1.5, unknown, 2.0}, {unknown, 3.0})));
    QCOMPARE(ContentOf(m_path),
        QByteArray("{\"edited\":[{\"altitudes\":[3],\"ping\":1}],\"format\":\"ZrBottomLine\","
                   "\"found\":[{\"altitudes\":[1.5],\"ping\":0},{\"altitudes\":[2],\"ping\":2}],"
                   "\"log\":{\"first\":10,\"last\":10.2,\"pings\":3},\"version\":1}"));
    QVERIFY(file.Save({}, ZrBottomLine()));
    QCOMPARE(ContentOf(m_path),
        QByteArray("{\"edited\":[],\"format\":\"ZrBottomLine\",\"found\":[],"
                   "\"log\":{\"first\":null,\"last\":null,\"pings\":0},\"version\":1}"));
}

void tst_ZrBottomFile::writtenByHand()
{
    QVERIFY(Put(m_path,
        Json("\"note\": \"\\u00e4\", \"found\": [{\"ping\": 0.0, \"altitudes\": [1, 2e0]}],\n"
             "\"edited\": [{\"altitudes\": [7], \"ping\": 2, \"by\": \"me\"}]")));
    ZrBottomLine line;
    ZrBottomFile file(m_log);
    QVERIFY2(file.Load(ThreePings(), line), qPrintable(file.Error()));
    QVERIFY(AreSame(line, Line({1.0, 2.0, unknown}, {unknown, unknown, 7.0})));
}

void tst_ZrBottomFile::missing()
{
    ZrBottomFile file(m_log);
    ZrBottomLine line = Line({9.0});
    QVERIFY(!file.Load(Pings(1), line));
    QCOMPARE(file.State(), ZrBottomFile::Missing);
    QCOMPARE(file.Error(), m_path + S(": There is no such file"));
    QVERIFY(AreSame(line, Line({9.0})));
    QVERIFY(file.Save(Pings(1), line));
    QCOMPARE(file.Error(), QString());
}

void tst_ZrBottomFile::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* tag, const QByteArray& bytes, int state, const char* reason) {
        QTest::newRow(tag) << bytes << state << S(reason);
    };
    const int damaged = ZrBottomFile::Damaged;
    const int foreign = ZrBottomFile::Foreign;
    const char* const good = "\"found\": [], \"edited\": []";
    const auto head = [&](const char* version, const char* log) {
        return QByteArray("{\"format\": \"ZrBottomLine\", \"version\": ") + version + ", \"log\": " + log
            + ", " + good + "}";
    };
    row("empty", "", damaged, "The file is empty");
    row("zeros", QByteArray(50, '\0'), damaged, "The file is damaged at byte 1 (illegal value)");
    row("text", "bottom", damaged, "The file is damaged at byte 1 (illegal value)");
    row("broken off", Json(good).left(90), damaged, "The file is damaged at byte 91 (unterminated string)");
    row("garbage behind", Json(good) + "x", damaged,
        "The file is damaged at byte 115 (garbage at the end of the document)");
    row("too deep", QByteArray(5000, '['), damaged,
        "The file is damaged at byte 1025 (too deeply nested document)");
    row("an array", "[]", foreign, "The file holds no bottom line");
    row("another kind", "{\"format\": \"Settings\"}", foreign, "The file holds no bottom line");
    row("no kind", "{\"version\": 1}", foreign, "The file holds no bottom line");
    row("later", head("2", "{}"), foreign, "The file has version 2 of the format, and only 1 is known");
    row("no version", "{\"format\": \"ZrBottomLine\"}", foreign,
        "The file has version 0 of the format, and only 1 is known");
    row("no log", head("1", "7"), foreign,
        "The bottom line belongs to another log: it has no pings, this log has 3 pings from 10.000 to 10.200 "
        "s");
    row("no found", Json("\"edited\": []"), damaged, "\"found\" is missing or no list");
    row("no edited", Json("\"found\": []"), damaged, "\"edited\" is missing or no list");
    row("found is a number", Json("\"found\": 5, \"edited\": []"), damaged,
        "\"found\" is missing or no list");
    const auto stretch = [&](const char* tag, const char* stretches, const char* reason) {
        row(tag, Json(QByteArray("\"edited\": [], \"found\": [") + stretches + "]"), damaged, reason);
        const QByteArray edited = QByteArray("edited: ") + tag;
        row(edited.constData(), Json(QByteArray("\"found\": [], \"edited\": [") + stretches + "]"), damaged,
            QByteArray(reason).replace("found", "edited").constData());
    };
    const char* const first = "Stretch 1 of \"found\" does not fit in";
    const char* const second = "Stretch 2 of \"found\" does not fit in";
    stretch("a number", "5", first);
    stretch("no ping", "{\"altitudes\": [1]}", first);
    stretch("no altitudes", "{\"ping\": 0}", first);
    stretch("empty", "{\"ping\": 0, \"altitudes\": []}", first);
    stretch("before", "{\"ping\": -1, \"altitudes\": [1]}", first);
    stretch("between", "{\"ping\": 0.5, \"altitudes\": [1]}", first);
    stretch("a text", "{\"ping\": \"0\", \"altitudes\": [1]}", first);
    stretch("behind", "{\"ping\": 3, \"altitudes\": [1]}", first);
    stretch("far behind", "{\"ping\": 1e300, \"altitudes\": [1]}", first);
    stretch("too long", "{\"ping\": 1, \"altitudes\": [1, 1, 1]}", first);
    stretch("twice", "{\"ping\": 1, \"altitudes\": [1]}, {\"ping\": 1, \"altitudes\": [1]}", second);
    stretch("backwards", "{\"ping\": 1, \"altitudes\": [1]}, {\"ping\": 0, \"altitudes\": [1]}", second);
    stretch("negative", "{\"ping\": 1, \"altitudes\": [1, -1]}",
        "Ping 2 of \"found\" has no altitude that can be");
    stretch(
        "null", "{\"ping\": 0, \"altitudes\": [null]}", "Ping 0 of \"found\" has no altitude that can be");
    stretch(
        "word", "{\"ping\": 0, \"altitudes\": [\"1\"]}", "Ping 0 of \"found\" has no altitude that can be");
}

void tst_ZrBottomFile::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, state);
    QFETCH(QString, reason);
    QVERIFY(Put(m_path, bytes));
    ZrBottomLine line = Line({9.0, 8.0, 7.0}, {1.0});
    ZrBottomFile file(m_log);
    QVERIFY(!file.Load(ThreePings(), line));
    QCOMPARE(file.Error(), m_path + S(": ") + reason);
    QCOMPARE(static_cast<int>(file.State()), state);
    QVERIFY(AreSame(line, Line({9.0, 8.0, 7.0}, {1.0})));
    // Saving keeps what was there.
    QVERIFY2(file.Save(ThreePings(), line), qPrintable(file.Error()));
    QCOMPARE(file.KeptPath(), m_path + S(".kept"));
    QCOMPARE(ContentOf(m_path + S(".kept")), bytes);
    ZrBottomLine again;
    QVERIFY(file.Load(ThreePings(), again));
    QCOMPARE(file.KeptPath(), QString());
    QVERIFY(AreSame(line, again));
}

/// Whatever is left of a file is refused.
void tst_ZrBottomFile::everyTruncation()
{
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(ThreePings(), Line({1.5, unknown, 2.0}, {unknown, 3.0})));
    const QByteArray whole = ContentOf(m_path);
    for (int length = 0; length < whole.size(); ++length) {
        QVERIFY(Put(m_path, whole.left(length)));
        ZrBottomLine line = Line({9.0});
        QVERIFY(!file.Load(ThreePings(), line));
        QVERIFY(AreSame(line, Line({9.0})));
    }
}

/// A changed bit is noticed or gives a line that may be: never a crash, never a wrong number of pings.
void tst_ZrBottomFile::everyBitFlip()
{
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(ThreePings(), Line({1.5, unknown, 2.0}, {unknown, 3.0})));
    const QByteArray whole = ContentOf(m_path);
    int noticed = 0;
    for (int bit = 0; bit < whole.size() * 8; ++bit) {
        QByteArray bytes = whole;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
        QVERIFY(Put(m_path, bytes));
        ZrBottomLine line = Line({9.0});
        if (!file.Load(ThreePings(), line)) {
            ++noticed;
            QVERIFY(AreSame(line, Line({9.0})));
            continue;
        }
        QCOMPARE(line.Count(), std::size_t(3));
        for (std::size_t i = 0; i < 3; ++i)
            QVERIFY(std::isnan(line.Altitude(i)) || line.Altitude(i) >= 0.0);
    }
    QVERIFY(noticed > whole.size() * 6);
}

void tst_ZrBottomFile::otherLog_data()
{
    QTest::addColumn<int>("pings");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::addColumn<QString>("other");
    QTest::newRow("more pings") << 4 << 10.0 << 10.2 << "4 pings from 10.000 to 10.200 s";
    QTest::newRow("fewer pings") << 2 << 10.0 << 10.2 << "2 pings from 10.000 to 10.200 s";
    QTest::newRow("none") << 0 << 0.0 << 0.0 << "no pings";
    QTest::newRow("other first") << 3 << 10.001 << 10.2 << "3 pings from 10.001 to 10.200 s";
    QTest::newRow("other last") << 3 << 10.0 << 10.3 << "3 pings from 10.000 to 10.300 s";
    QTest::newRow("by a hair") << 3 << std::nextafter(10.0, 11.0) << 10.2
                               << "3 pings from 10.000 to 10.200 s";
}

void tst_ZrBottomFile::otherLog()
{
    QFETCH(int, pings);
    QFETCH(double, first);
    QFETCH(double, last);
    QFETCH(QString, other);
    ZrBottomFile file(m_log);
    const ZrBottomLine line = Line({1.0, 2.0, 3.0});
    QVERIFY(file.Save(ThreePings(), line));
    const QByteArray before = ContentOf(m_path);
    std::vector<ZrSonarPing> others(static_cast<std::size_t>(pings));
    if (pings > 0) {
        others.front().time = first;
        others.back().time = last;
    }
    ZrBottomLine loaded = Line({9.0});
    QVERIFY(!file.Load(others, loaded));
    QCOMPARE(file.State(), ZrBottomFile::Foreign);
    QCOMPARE(file.Error(),
        m_path
            + S(": The bottom line belongs to another log: it has 3 pings from 10.000 to 10.200 s, this log "
                "has ")
            + other);
    QVERIFY(AreSame(loaded, Line({9.0})));
    QCOMPARE(ContentOf(m_path), before);
    QVERIFY(file.Save(others, ZrBottomLine(others.size())));
    QCOMPARE(ContentOf(file.KeptPath()), before);
}

/// A file beyond the limit is not read into memory, and moved aside as it is.
void tst_ZrBottomFile::tooLarge()
{
    {
        QFile large(m_path);
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(ZrBottomFile::MaxSize + 1));
    }
    ZrBottomFile file(m_log);
    ZrBottomLine line = Line({9.0, 9.0, 9.0});
    QVERIFY(!file.Load(ThreePings(), line));
    QCOMPARE(file.State(), ZrBottomFile::Unreadable);
    QCOMPARE(file.Error(), m_path + S(": The file is too large for a bottom line"));
    QVERIFY(file.Save(ThreePings(), line));
    QCOMPARE(QFileInfo(file.KeptPath()).size(), ZrBottomFile::MaxSize + 1);
    QVERIFY(file.Load(ThreePings(), line));
}

void tst_ZrBottomFile::unreadable_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"folder", "pipe", "device", "dangling link"})
        QTest::newRow(kind) << S(kind);
}

/// What is no ordinary file is neither waited for nor replaced.
void tst_ZrBottomFile::unreadable()
{
    QFETCH(QString, kind);
    if (kind == S("folder")) {
        QVERIFY(QDir().mkpath(m_path + S("/inside")));
    } else if (kind == S("pipe")) {
        QCOMPARE(QProcess::execute(S("mkfifo"), {m_path}), 0);
    } else {
        QVERIFY(QFile::link(kind == S("device") ? S("/dev/full") : S("/nowhere/at/all"), m_path));
    }
    ZrBottomFile file(m_log);
    ZrBottomLine line = Line({9.0, 9.0, 9.0});
    QVERIFY(!file.Load(ThreePings(), line));
    QCOMPARE(file.State(), ZrBottomFile::Unreadable);
    QCOMPARE(file.Error(), m_path + S(": This is no ordinary file"));
    const QStringList names = Names();
    QVERIFY(!file.Save(ThreePings(), line));
    QCOMPARE(file.State(), ZrBottomFile::Unreadable);
    QCOMPARE(file.Error(), m_path + S(": This is no ordinary file"));
    QCOMPARE(Names(), names);
}

void tst_ZrBottomFile::wrongNumber()
{
    ZrBottomFile file(m_log);
    QVERIFY(!file.Save(ThreePings(), Line({1.0, 2.0})));
    QCOMPARE(file.State(), ZrBottomFile::NotWritten);
    QCOMPARE(file.Error(), m_path + S(": The bottom line has 2 pings, the log 3"));
    QCOMPARE(Names(), QStringList());
}

void tst_ZrBottomFile::keptBeforeReplaced()
{
    ZrBottomFile file(m_log);
    for (const char* text : {"first", "second", "third"}) {
        QVERIFY(Put(m_path, text));
        QVERIFY(file.Save(ThreePings(), Line({1.0, 2.0, 3.0})));
        QCOMPARE(ContentOf(file.KeptPath()), QByteArray(text));
    }
    QCOMPARE(file.KeptPath(), m_path + S(".kept-3"));
    QVERIFY(file.Save(ThreePings(), Line({1.0, 2.0, 4.0}))); // a good one needs no keeping
    QCOMPARE(file.KeptPath(), QString());
    QCOMPARE(Names().size(), 4);
    QCOMPARE(ContentOf(m_path + S(".kept")), QByteArray("first"));
}

void tst_ZrBottomFile::cannotBeWritten()
{
    ZrBottomFile nowhere(m_dir->filePath(S("no/such/folder.log")));
    QVERIFY(!nowhere.Save(ThreePings(), Line({1.0, 2.0, 3.0})));
    QCOMPARE(nowhere.State(), ZrBottomFile::NotWritten);
    QVERIFY(nowhere.Error().startsWith(nowhere.Path() + S(": ")));
    ZrBottomFile proc(S("/proc/self/dive.log"));
    QVERIFY(!proc.Save(ThreePings(), Line({1.0, 2.0, 3.0})));
    QCOMPARE(proc.State(), ZrBottomFile::NotWritten);
    QVERIFY(!proc.Error().isEmpty());
}

/// A disk without room, played by a limit on the size of files: the old file stays, a foreign one too.
void tst_ZrBottomFile::fullDisk()
{
#ifdef Q_OS_UNIX
    const std::vector<ZrSonarPing> pings = Pings(5000);
    const ZrBottomLine line = Line(std::vector<double>(5000, 1.0 / 3.0));
    ZrBottomFile file(m_log);
    for (const bool foreign : {false, true}) {
        if (foreign)
            QVERIFY(Put(m_path, "something else"));
        else
            QVERIFY(file.Save(pings, ZrBottomLine(5000)));
        const QByteArray before = ContentOf(m_path);
        const QStringList names = Names();
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{16384, 16384};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            const bool failed = !file.Save(pings, line) && file.State() == ZrBottomFile::NotWritten
                && file.Error().startsWith(m_path + S(": ")) && file.KeptPath().isEmpty();
            ::_exit(failed ? 0 : 1);
        }
        int status = -1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(ContentOf(m_path), before);
        QCOMPARE(Names(), names);
    }
#else
    QSKIP("Limits on the size of files are a matter of Unix");
#endif
}

/// A link stays one.
void tst_ZrBottomFile::throughLink()
{
    const QString target = m_dir->filePath(S("elsewhere"));
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(ThreePings(), Line({1.0, 2.0, 3.0})));
    QVERIFY(QFile::rename(m_path, target) && QFile::link(target, m_path));
    QVERIFY(file.Save(ThreePings(), Line({4.0, 5.0, 6.0})));
    QVERIFY(QFileInfo(m_path).isSymLink());
    QVERIFY(ContentOf(target).contains("[4,5,6]"));
}

/// Two that save at the same time, and one that loads: every file is whole.
void tst_ZrBottomFile::twoThreads()
{
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(ThreePings(), Line({0.0, 0.0, 0.0})));
    std::atomic<int> failed{0};
    const auto save = [&](double altitude) {
        ZrBottomFile own(m_log);
        for (int i = 0; i < 12; ++i) {
            if (!own.Save(ThreePings(), Line({altitude, altitude, altitude})) || !own.KeptPath().isEmpty())
                ++failed;
        }
    };
    std::thread one(save, 1.0);
    std::thread two(save, 2.0);
    for (int i = 0; i < 100; ++i) {
        ZrBottomLine line;
        if (!file.Load(ThreePings(), line) || line.Altitude(0) != line.Altitude(2))
            ++failed;
    }
    one.join();
    two.join();
    QCOMPARE(failed.load(), 0);
    QCOMPARE(Names().size(), 1);
}

/// Half a day at ten pings a second.
void tst_ZrBottomFile::longLine()
{
    const std::size_t count = 400000;
    std::vector<double> found(count);
    for (std::size_t i = 0; i < count; ++i)
        found[i] = i % 1000 == 0 ? unknown : 10.0 + std::sin(static_cast<double>(i) * 0.001);
    ZrBottomLine line = Line(found);
    QVERIFY(line.Draw(1000, 3.0, 300000, 7.0));
    ZrBottomFile file(m_log);
    QVERIFY(file.Save(Pings(count), line));
    ZrBottomLine loaded;
    QVERIFY2(file.Load(Pings(count), loaded), qPrintable(file.Error()));
    QVERIFY(AreSame(loaded, line));
}

QTEST_GUILESS_MAIN(tst_ZrBottomFile)
#include "tst_ZrBottomFile.moc"
