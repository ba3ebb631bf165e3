#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUtil/ZrLogEmit.h"

#include <QByteArrayList>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <chrono>
#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

constexpr int threadCount = 8;
constexpr int linesPerThread = 1000;

void log_line(int level, const char* message)
{
    zr_debug_log_modern(level, "folder/Some.cpp", 42, "void some(int)", "ZrUtil-Some", 0, 0, message);
}

void set_switches(int toFile, int toDbg, int flushLevel)
{
    zr_debug_log_to_file = toFile;
    zr_debug_log_to_dbg = toDbg;
    zr_debug_log_flush_level = flushLevel;
}

QByteArray cur_path()
{
    char buffer[ZR_DEBUG_LOG_PATH_SIZE];
    zr_debug_log_get_cur_path(buffer);
    return QByteArray(buffer);
}

QByteArray base_path()
{
    char buffer[ZR_DEBUG_LOG_PATH_SIZE];
    zr_debug_log_get_base_path(buffer);
    return QByteArray(buffer);
}

void set_base_path(const QString& path)
{
    zr_debug_log_set_base_path(path.toUtf8().constData());
}

/// All lines of all log files of a folder; every file ends with a line feed.
QByteArrayList lines_in(const QString& folder)
{
    QByteArrayList lines;
    const QDir dir(folder);
    const QStringList names = dir.entryList({QStringLiteral("*.log")}, QDir::Files);
    for (const QString& name : names) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return {QByteArray("cannot be opened")};
        QByteArray content = file.readAll();
        if (content.isEmpty())
            continue;
        if (!content.endsWith('\n'))
            return {QByteArray("last line is not ended")};
        content.chop(1);
        lines += content.split('\n');
    }
    return lines;
}

QByteArray message_in(const QByteArray& line)
{
    return line.mid(line.lastIndexOf(" | ") + 3);
}

QRegularExpression line_layout()
{
    return QRegularExpression(QStringLiteral(
        "^(?=.{8} \\|)(?<level>[A-Z][a-z]+) +\\| "
        "(?<time>\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3})(?<zone>[+-]\\d{4}) \\| "
        "(?<category>.*?) \\| (?<file>.*?):(?<line>-?\\d+) \\| (?<function>.*?) \\| (?<message>.*)$"));
}

qint64 steady_ns()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

/// Threads that log "<thread>:<number>" and a tail that makes lines of different lengths.
void log_from_threads()
{
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < linesPerThread; ++i) {
                const std::string tail(
                    static_cast<std::size_t>((t * 31 + i) % 97), static_cast<char>('a' + t));
                log_line(i % 6, (std::to_string(t) + ":" + std::to_string(i) + ":" + tail).c_str());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

/// Says what is wrong with the lines of `log_from_threads`; empty when each is there once, whole, and the
/// lines of one thread are in order.
QString fault_in_thread_lines(const QByteArrayList& lines)
{
    const QRegularExpression layout = line_layout();
    std::vector<int> next(threadCount, 0);
    for (const QByteArray& line : lines) {
        const QRegularExpressionMatch match = layout.match(QString::fromUtf8(line));
        if (!match.hasMatch())
            return QStringLiteral("not a line: ") + QString::fromUtf8(line);
        const QStringList parts = match.captured(QStringLiteral("message")).split(QLatin1Char(':'));
        if (parts.size() != 3)
            return QStringLiteral("not a message: ") + QString::fromUtf8(line);
        const int t = parts[0].toInt();
        const int i = parts[1].toInt();
        if (t < 0 || t >= threadCount || next[static_cast<std::size_t>(t)]++ != i)
            return QStringLiteral("out of order: ") + QString::fromUtf8(line);
        if (parts[2] != QString((t * 31 + i) % 97, QLatin1Char(static_cast<char>('a' + t))))
            return QStringLiteral("tail: ") + QString::fromUtf8(line);
    }
    for (const int count : next) {
        if (count != linesPerThread)
            return QStringLiteral("%1 lines of a thread").arg(count);
    }
    return QString();
}

// Children: this program once more, doing one thing in a process of its own.

/// Logs from the destructor of a static object made before the log was first used, so it goes after
/// everything the log could have made then.
struct LateMessage
{
    bool armed = false;

    ~LateMessage()
    {
        if (armed)
            log_line(2, "late");
    }
};

LateMessage lateMessage;

using Child = int (*)(char** arguments);

int child_write(char** arguments)
{
    zr_debug_log_set_base_path(arguments[0]);
    set_switches(std::atoi(arguments[1]), std::atoi(arguments[2]), 5);
    log_line(2, "hello");
    return cur_path().isEmpty() ? 10 : 11;
}

int child_critical(char** arguments)
{
    zr_debug_log_set_base_path(arguments[0]);
    set_switches(std::atoi(arguments[1]), 0, -1);
    zr_debug_terminate_on_critical = std::atoi(arguments[2]);
    log_line(5, "before");
    log_line(std::atoi(arguments[3]), "the end");
    return 12;
}

int child_late(char** arguments)
{
    zr_debug_log_set_base_path(arguments[0]);
    set_switches(1, 0, -1);
    lateMessage.armed = true;
    log_line(2, "early");
    return 13;
}

int child_threads(char** arguments)
{
    zr_debug_log_set_base_path(arguments[0]);
    set_switches(1, 1, 2);
    log_from_threads();
    return 14;
}

int child_defaults(char** /*arguments*/)
{
    std::printf("%d %d %d %d %d %s", zr_debug_log_level, zr_debug_log_flush_level, zr_debug_log_to_file,
        zr_debug_log_to_dbg, zr_debug_terminate_on_critical, base_path().constData());
    return 15;
}

#ifndef _WIN32
/// A file that cannot grow stands for a full disk.
int child_full(char** arguments)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {300, 300};
    setrlimit(RLIMIT_FSIZE, &limit);
    zr_debug_log_set_base_path(arguments[0]);
    set_switches(1, 0, 5);
    for (int i = 0; i < 20; ++i)
        log_line(2, ("number " + std::to_string(i)).c_str());
    return 16;
}
#endif

int run_child(int argc, char** argv)
{
    struct Entry
    {
        const char* name;
        int arguments;
        Child run;
    };

    const Entry entries[] = {{"write", 3, child_write}, {"critical", 4, child_critical},
        {"late", 1, child_late}, {"threads", 1, child_threads}, {"defaults", 0, child_defaults},
#ifndef _WIN32
        {"full", 1, child_full}
#endif
    };
    for (const Entry& entry : entries) {
        if (std::strcmp(argv[0], entry.name) == 0 && argc == entry.arguments + 1)
            return entry.run(argv + 1);
    }
    return 99;
}

struct ChildResult
{
    bool normalExit = false;
    int code = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs a child in \p folder, where a core file may be left.
ChildResult start_child(const QString& folder, const QStringList& arguments,
    const QString& variable = QString(), const QString& value = QString())
{
    QProcess process;
    process.setWorkingDirectory(folder);
    if (!variable.isEmpty()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(variable, value);
        process.setProcessEnvironment(environment);
    }
    process.start(
        QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--child")} + arguments);
    ChildResult result;
    if (!process.waitForFinished(50000))
        return result;
    result.normalExit = process.exitStatus() == QProcess::NormalExit;
    result.code = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

} // namespace

class tst_ZrDebugLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void defaults();
    void levelNames_data();
    void levelNames();
    void lineLayout_data();
    void lineLayout();
    void timeOfDayFollowsTheSteadyTime_data();
    void timeOfDayFollowsTheSteadyTime();
    void timeIsLocalTime_data();
    void timeIsLocalTime();
    void messageIsOneLine_data();
    void messageIsOneLine();
    void nullPointers();
    void longMessage();
    void levelIsNotCompared();
    void structuredMessageArrives();
    void switches_data();
    void switches();
    void fileIsCreatedByTheFirstMessage();
    void fileName();
    void flushLevel();
    void closingFlushes();
    void basePathIsChangedWhileLogging();
    void sameBasePathKeepsTheFile();
    void relativeBasePath();
    void emptyBasePathIsTheDefault();
    void pathIsCut_data();
    void pathIsCut();
    void longCurPathIsCut();
    void unwritableFolder_data();
    void unwritableFolder();
    void fileIsTriedAgainAfterSetBasePath();
    void fullDisk();
    void terminateOnCritical_data();
    void terminateOnCritical();
    void messageDuringStaticDestruction();
    void linesOfThreadsStayWhole();
    void debugOutputOfThreadsStaysWhole();
    void basePathIsChangedByAnotherThread();

private:
    QString Folder(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_ZrDebugLog::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY2(m_dir->isValid(), qPrintable(m_dir->errorString()));
    set_switches(1, 0, 5);
    zr_debug_log_level = 2;
    zr_debug_terminate_on_critical = 0;
    set_base_path(Folder("log"));
}

void tst_ZrDebugLog::cleanup()
{
    zr_debug_log_set_base_path(nullptr);
    m_dir.reset();
}

void tst_ZrDebugLog::defaults()
{
    const ChildResult child
        = start_child(m_dir->path(), {QStringLiteral("defaults")}, QStringLiteral("TMPDIR"), m_dir->path());
    QVERIFY(child.normalExit);
    QCOMPARE(child.code, 15);
    QCOMPARE(child.out, QByteArray("2 2 0 1 0 ") + m_dir->path().toUtf8() + "/ZrDebugLog");
    QVERIFY(QDir(m_dir->path()).isEmpty());
}

void tst_ZrDebugLog::levelNames_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("critical") << 0 << QByteArray("Critical");
    QTest::newRow("error") << 1 << QByteArray("Error");
    QTest::newRow("warning") << 2 << QByteArray("Warning");
    QTest::newRow("info") << 3 << QByteArray("Info");
    QTest::newRow("debug") << 4 << QByteArray("Debug");
    QTest::newRow("trace") << 5 << QByteArray("Trace");
    QTest::newRow("six") << 6 << QByteArray("Unknown");
    QTest::newRow("minus one") << -1 << QByteArray("Unknown");
    QTest::newRow("greatest") << INT_MAX << QByteArray("Unknown");
    QTest::newRow("least") << INT_MIN << QByteArray("Unknown");
}

void tst_ZrDebugLog::levelNames()
{
    QFETCH(int, level);
    QFETCH(QByteArray, name);
    QCOMPARE(QByteArray(zr_debug_log_level_to_string(level)), name);
    zr_debug_log_flush_level = INT_MAX;
    log_line(level, "x");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].startsWith(name.leftJustified(8) + " | "), lines[0].constData());
}

void tst_ZrDebugLog::lineLayout_data()
{
    QTest::addColumn<QByteArray>("category");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("line");
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("usual") << QByteArray("ZrUtil-ZrTheme") << QByteArray("/src/ZrUtil/ZrTheme.cpp") << 71
                           << QByteArray("bool ZrTheme::Load(const QString&)")
                           << QByteArray("Failed opening stylesheet \":/css/AppView.css\"");
    QTest::newRow("colons and bars") << QByteArray("a-b") << QByteArray("C:\\src\\a.cpp") << 0
                                     << QByteArray("int ns::f(A||B)")
                                     << QByteArray("x | y | z: 100 % {} %s %v");
    QTest::newRow("unicode") << QByteArray("Zr-\xC3\xA9") << QByteArray("\xE6\xB7\xB1.cpp") << INT_MAX
                             << QByteArray("f") << QByteArray("tiefe 20 \xE2\x84\xAB \xF0\x9F\x8C\x8A");
    QTest::newRow("negative line") << QByteArray("c") << QByteArray("f.cpp") << INT_MIN << QByteArray("f")
                                   << QByteArray("m");
}

void tst_ZrDebugLog::lineLayout()
{
    QFETCH(QByteArray, category);
    QFETCH(QByteArray, file);
    QFETCH(int, line);
    QFETCH(QByteArray, function);
    QFETCH(QByteArray, message);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    zr_debug_log_modern(2, file.constData(), line, function.constData(), category.constData(), 0, steady_ns(),
        message.constData());
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 1);
    const QRegularExpressionMatch match = line_layout().match(QString::fromUtf8(lines[0]));
    QVERIFY2(match.hasMatch(), lines[0].constData());
    QCOMPARE(match.captured(QStringLiteral("level")), QStringLiteral("Warning"));
    QCOMPARE(match.captured(QStringLiteral("category")).toUtf8(), category);
    QCOMPARE(match.captured(QStringLiteral("file")).toUtf8(), file);
    QCOMPARE(match.captured(QStringLiteral("line")).toInt(), line);
    QCOMPARE(match.captured(QStringLiteral("function")).toUtf8(), function);
    QCOMPARE(match.captured(QStringLiteral("message")).toUtf8(), message);

    const QString time = match.captured(QStringLiteral("time"));
    const QDateTime logged = QDateTime::fromString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    QVERIFY2(logged.isValid(), qPrintable(time));
    // A millisecond to either side: the two clocks are not read at the same moment.
    QVERIFY(logged.toMSecsSinceEpoch() >= before - 1);
    QVERIFY(logged.toMSecsSinceEpoch() <= after + 1);
    const QString zone = match.captured(QStringLiteral("zone"));
    const int hours = zone.mid(1, 2).toInt();
    const int minutes = zone.mid(3, 2).toInt();
    const int sign = zone.startsWith(QLatin1Char('-')) ? -1 : 1;
    QCOMPARE(sign * (hours * 3600 + minutes * 60), logged.offsetFromUtc());
}

void tst_ZrDebugLog::timeOfDayFollowsTheSteadyTime_data()
{
    QTest::addColumn<qint64>("steady");
    QTest::addColumn<int>("secondsAgo");
    const qint64 second = 1000000000;
    QTest::newRow("now") << steady_ns() << 0;
    QTest::newRow("5 s ago") << steady_ns() - 5 * second << 5;
    QTest::newRow("none") << qint64(0) << 0;
    QTest::newRow("negative") << qint64(-1) << 0;
    QTest::newRow("least") << std::numeric_limits<qint64>::min() << 0;
    QTest::newRow("in an hour") << steady_ns() + 3600 * second << 0;
    QTest::newRow("greatest") << std::numeric_limits<qint64>::max() << 0;
}

void tst_ZrDebugLog::timeOfDayFollowsTheSteadyTime()
{
    QFETCH(qint64, steady);
    QFETCH(int, secondsAgo);
    const QDateTime now = QDateTime::currentDateTime();
    zr_debug_log_modern(2, "f.cpp", 1, "f", "c", 0, steady, "m");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 1);
    const QRegularExpressionMatch match = line_layout().match(QString::fromUtf8(lines[0]));
    const QString time = match.captured(QStringLiteral("time"));
    const QDateTime logged = QDateTime::fromString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    QVERIFY2(logged.isValid(), qPrintable(time));
    // 2 s cover a busy machine between making the rows and logging.
    QVERIFY2(qAbs(logged.msecsTo(now) - secondsAgo * 1000) < 2000, lines[0].constData());
}

void tst_ZrDebugLog::timeIsLocalTime_data()
{
    // The sign is that of POSIX: hours to be added to local time to get UTC.
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<int>("offset");
    QTest::newRow("UTC") << QStringLiteral("UTC0") << QByteArray("+0000") << 0;
    QTest::newRow("east") << QStringLiteral("AAA-5:30") << QByteArray("+0530") << 19800;
    QTest::newRow("west") << QStringLiteral("BBB+3:30") << QByteArray("-0330") << -12600;
}

void tst_ZrDebugLog::timeIsLocalTime()
{
    QFETCH(QString, rule);
    QFETCH(QByteArray, zone);
    QFETCH(int, offset);
    const ChildResult child = start_child(m_dir->path(),
        {QStringLiteral("write"), Folder("child"), QStringLiteral("0"), QStringLiteral("1")},
        QStringLiteral("TZ"), rule);
    const QRegularExpressionMatch match = line_layout().match(QString::fromUtf8(child.err).trimmed());
    QVERIFY2(match.hasMatch(), child.err.constData());
    QCOMPARE(match.captured(QStringLiteral("zone")).toUtf8(), zone);
    QDateTime logged = QDateTime::fromString(
        match.captured(QStringLiteral("time")), QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    logged.setOffsetFromUtc(offset);
    QVERIFY2(qAbs(logged.msecsTo(QDateTime::currentDateTimeUtc())) < 60000, child.err.constData());
}

void tst_ZrDebugLog::messageIsOneLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("line feed") << QByteArray("a\nb") << QByteArray("a\\nb");
    QTest::newRow("carriage return") << QByteArray("a\rb") << QByteArray("a\\rb");
    QTest::newRow("both at the end") << QByteArray("a\r\n") << QByteArray("a\\r\\n");
    QTest::newRow("only line feeds") << QByteArray("\n\n") << QByteArray("\\n\\n");
    QTest::newRow("tabulator") << QByteArray("a\tb") << QByteArray("a\tb");
    QTest::newRow("escape sequence") << QByteArray("\x1B[31mred") << QByteArray("\\x1b[31mred");
    QTest::newRow("bell and delete") << QByteArray("\a\x7F") << QByteArray("\\x07\\x7f");
    QTest::newRow("form feed") << QByteArray("a\fb\v") << QByteArray("a\\x0cb\\x0b");
    QTest::newRow("no UTF-8") << QByteArray("\xFF\xC0") << QByteArray("\xFF\xC0");
}

void tst_ZrDebugLog::messageIsOneLine()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, shown);
    log_line(2, text.constData());
    // The other texts are callers' texts as well.
    zr_debug_log_modern(2, text.constData(), 1, text.constData(), text.constData(), 0, 0, "m");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 2);
    QCOMPARE(message_in(lines[0]), shown);
    QVERIFY2(
        lines[1].endsWith(" | " + shown + " | " + shown + ":1 | " + shown + " | m"), lines[1].constData());
}

void tst_ZrDebugLog::nullPointers()
{
    zr_debug_log_modern(2, nullptr, 0, nullptr, nullptr, 0, 0, nullptr);
    zr_debug_log_modern(2, "", 7, "", "", 0, 0, "");
    zr_debug_log_get_base_path(nullptr);
    zr_debug_log_get_cur_path(nullptr);
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].endsWith(" | - | -:0 | - | "), lines[0].constData());
    QVERIFY2(lines[1].endsWith(" | - | -:7 | - | "), lines[1].constData());
}

void tst_ZrDebugLog::longMessage()
{
    const QByteArray text(3000000, 'x');
    log_line(2, text.constData());
    log_line(2, "next");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 2);
    QVERIFY(message_in(lines[0]) == text);
    QCOMPARE(message_in(lines[1]), QByteArray("next"));
}

void tst_ZrDebugLog::levelIsNotCompared()
{
    zr_debug_log_level = 0;
    log_line(5, "handed over");
    QCOMPARE(lines_in(Folder("log")).size(), 1);
}

void tst_ZrDebugLog::structuredMessageArrives()
{
    ZR_LOG(2, "ZrUtil-Test", "Failed opening stylesheet \"{}\"", QString(QChar(0x6DF1)));
    ZR_LOG(3, "ZrUtil-Test", "above the level");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 1);
    const QRegularExpressionMatch match = line_layout().match(QString::fromUtf8(lines[0]));
    QCOMPARE(match.captured(QStringLiteral("category")), QStringLiteral("ZrUtil-Test"));
    QVERIFY(match.captured(QStringLiteral("file")).endsWith(QStringLiteral("tst_ZrDebugLog.cpp")));
    QVERIFY(
        match.captured(QStringLiteral("function")).contains(QStringLiteral("structuredMessageArrives()")));
    QCOMPARE(message_in(lines[0]), QByteArray("Failed opening stylesheet \"\xE6\xB7\xB1\""));
}

void tst_ZrDebugLog::switches_data()
{
    QTest::addColumn<int>("toFile");
    QTest::addColumn<int>("toDbg");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("file") << 1 << 0;
    QTest::newRow("debug output") << 0 << 1;
    QTest::newRow("both") << 1 << 1;
    QTest::newRow("other values count as on") << -7 << 256;
}

void tst_ZrDebugLog::switches()
{
    QFETCH(int, toFile);
    QFETCH(int, toDbg);
    const QString folder = Folder("child");
    const ChildResult child = start_child(
        m_dir->path(), {QStringLiteral("write"), folder, QString::number(toFile), QString::number(toDbg)});
    QVERIFY(child.normalExit);
    QCOMPARE(child.code, toFile ? 11 : 10);
    QCOMPARE(child.out, QByteArray());
    QCOMPARE(QDir(folder).exists(), toFile != 0);
    QCOMPARE(lines_in(folder).size(), toFile ? 1 : 0);
    QCOMPARE(child.err.count('\n'), toDbg ? 1 : 0);
    QCOMPARE(child.err.endsWith(" | hello\n"), toDbg != 0);
    if (toFile && toDbg)
        QCOMPARE(lines_in(folder)[0] + '\n', child.err);
}

void tst_ZrDebugLog::fileIsCreatedByTheFirstMessage()
{
    const QString folder = Folder("a/b c/\xC3\xA9\xE6\xB7\xB1");
    set_base_path(folder);
    QCOMPARE(base_path(), folder.toUtf8());
    QCOMPARE(cur_path(), QByteArray());
    set_switches(0, 0, 5);
    log_line(0, "to nowhere");
    QVERIFY(!QDir(folder).exists());
    QCOMPARE(cur_path(), QByteArray());
    set_switches(1, 0, 5);
    log_line(0, "one");
    QVERIFY(QFileInfo(QString::fromUtf8(cur_path())).isFile());
    QCOMPARE(QFileInfo(QString::fromUtf8(cur_path())).path(), folder);
    log_line(0, "two");
    const QByteArrayList lines = lines_in(folder);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(message_in(lines[0]), QByteArray("one"));
    QCOMPARE(message_in(lines[1]), QByteArray("two"));
}

void tst_ZrDebugLog::fileName()
{
    const QDateTime before = QDateTime::currentDateTime();
    log_line(2, "x");
    const QDateTime after = QDateTime::currentDateTime();
    const QString name = QFileInfo(QString::fromUtf8(cur_path())).fileName();
    const QRegularExpression pattern(QStringLiteral("^ZrDebugLog_(\\d{8}_\\d{6})_(\\d+)\\.log$"));
    const QRegularExpressionMatch match = pattern.match(name);
    QVERIFY2(match.hasMatch(), qPrintable(name));
    const QString timeFormat = QStringLiteral("yyyyMMdd_hhmmss");
    QVERIFY(match.captured(1) >= before.toString(timeFormat));
    QVERIFY(match.captured(1) <= after.toString(timeFormat));
    QCOMPARE(match.captured(2).toLongLong(), QCoreApplication::applicationPid());
}

void tst_ZrDebugLog::flushLevel()
{
    set_switches(1, 0, 2);
    log_line(3, "three");
    QCOMPARE(lines_in(Folder("log")), QByteArrayList());
    log_line(2, "two");
    QCOMPARE(lines_in(Folder("log")).size(), 2);
    log_line(5, "five");
    QCOMPARE(lines_in(Folder("log")).size(), 2);
    log_line(1, "one");
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 4);
    QCOMPARE(message_in(lines[0]), QByteArray("three"));
    QCOMPARE(message_in(lines[1]), QByteArray("two"));
    QCOMPARE(message_in(lines[2]), QByteArray("five"));
    QCOMPARE(message_in(lines[3]), QByteArray("one"));
    zr_debug_log_flush_level = -1;
    log_line(0, "zero");
    QCOMPARE(lines_in(Folder("log")).size(), 4);
}

void tst_ZrDebugLog::closingFlushes()
{
    set_switches(1, 0, -1);
    log_line(5, "kept");
    set_base_path(Folder("other"));
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), 1);
    QCOMPARE(message_in(lines[0]), QByteArray("kept"));
}

void tst_ZrDebugLog::basePathIsChangedWhileLogging()
{
    log_line(2, "first");
    set_base_path(Folder("other"));
    QCOMPARE(base_path(), Folder("other").toUtf8());
    QCOMPARE(cur_path(), QByteArray());
    QVERIFY(!QDir(Folder("other")).exists());
    log_line(2, "second");
    set_base_path(Folder("log"));
    log_line(2, "third");
    QCOMPARE(lines_in(Folder("log")).size(), 2);
    QCOMPARE(lines_in(Folder("other")).size(), 1);
    QCOMPARE(message_in(lines_in(Folder("other"))[0]), QByteArray("second"));
}

void tst_ZrDebugLog::sameBasePathKeepsTheFile()
{
    log_line(2, "first");
    const QByteArray file = cur_path();
    QVERIFY(!file.isEmpty());
    set_base_path(Folder("log"));
    QCOMPARE(cur_path(), file);
    log_line(2, "second");
    QCOMPARE(lines_in(Folder("log")).size(), 2);
}

void tst_ZrDebugLog::relativeBasePath()
{
    const QString start = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir->path()));
    zr_debug_log_set_base_path("relative");
    QVERIFY(QDir::setCurrent(start));
    QCOMPARE(
        QString::fromUtf8(base_path()), QDir(m_dir->path()).canonicalPath() + QStringLiteral("/relative"));
    log_line(2, "x");
    QCOMPARE(lines_in(Folder("relative")).size(), 1);
}

void tst_ZrDebugLog::emptyBasePathIsTheDefault()
{
    const QByteArray usual = QDir::tempPath().toUtf8() + "/ZrDebugLog";
    zr_debug_log_set_base_path(nullptr);
    QCOMPARE(base_path(), usual);
    set_base_path(Folder("log"));
    zr_debug_log_set_base_path("");
    QCOMPARE(base_path(), usual);
}

void tst_ZrDebugLog::pathIsCut_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<int>("kept");
    const QByteArray ascii(400, 'a');
    QTest::newRow("258 bytes") << "/" + ascii.left(257) << 258;
    QTest::newRow("259 bytes") << "/" + ascii.left(258) << 259;
    QTest::newRow("260 bytes") << "/" + ascii.left(259) << 259;
    QTest::newRow("401 bytes") << "/" + ascii << 259;
    // The character before the cut ends at it, or has one, two, three bytes before it.
    const QByteArray two = QByteArray("\xC3\xA9").repeated(100);
    QTest::newRow("two bytes, fit") << "/" + ascii.left(256) + two << 259;
    QTest::newRow("two bytes, cut") << "/" + ascii.left(257) + two << 258;
    const QByteArray three = QByteArray("\xE6\xB7\xB1").repeated(100);
    QTest::newRow("three bytes, fit") << "/" + ascii.left(255) + three << 259;
    QTest::newRow("three bytes, one out") << "/" + ascii.left(256) + three << 257;
    QTest::newRow("three bytes, two out") << "/" + ascii.left(257) + three << 258;
    const QByteArray four = QByteArray("\xF0\x9F\x8C\x8A").repeated(100);
    QTest::newRow("four bytes, fit") << "/" + ascii.left(254) + four << 259;
    QTest::newRow("four bytes, one out") << "/" + ascii.left(255) + four << 256;
    QTest::newRow("four bytes, two out") << "/" + ascii.left(256) + four << 257;
    QTest::newRow("four bytes, three out") << "/" + ascii.left(257) + four << 258;
    QTest::newRow("continuation bytes only") << "/" + QByteArray(400, '\x80') << 256;
}

void tst_ZrDebugLog::pathIsCut()
{
    QFETCH(QByteArray, path);
    QFETCH(int, kept);
    zr_debug_log_set_base_path(path.constData());
    QByteArray buffer(300, '\x5A');
    zr_debug_log_get_base_path(buffer.data());
    QCOMPARE(buffer.mid(260), QByteArray(40, '\x5A'));
    QCOMPARE(buffer.indexOf('\0'), kept);
    QCOMPARE(buffer.left(kept), path.left(kept));
}

void tst_ZrDebugLog::longCurPathIsCut()
{
    const QString folder
        = Folder("log/") + QString(200, QLatin1Char('b')) + QLatin1Char('/') + QString(200, QLatin1Char('c'));
    set_base_path(folder);
    QByteArray buffer(300, '\x5A');
    zr_debug_log_get_cur_path(buffer.data());
    QCOMPARE(buffer.at(0), '\0');
    log_line(2, "x");
    buffer.fill('\x5A');
    zr_debug_log_get_cur_path(buffer.data());
    QCOMPARE(buffer.mid(260), QByteArray(40, '\x5A'));
    QCOMPARE(buffer.indexOf('\0'), 259);
    QCOMPARE(buffer.left(259), folder.toUtf8().left(259));
    QCOMPARE(lines_in(folder).size(), 1);
}

void tst_ZrDebugLog::unwritableFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<int>("toDbg");
    QTest::newRow("a file, both outputs") << QStringLiteral("file") << 1;
    QTest::newRow("a file, file only") << QStringLiteral("file") << 0;
    QTest::newRow("below a file") << QStringLiteral("file/sub/log") << 0;
    QTest::newRow("name too long") << QString(300, QLatin1Char('x')) << 0;
    // The folder can be made, a path with the file's name would pass the limit of 4095 bytes.
    QTest::newRow("path too long for the file") << QString() << 0;
}

void tst_ZrDebugLog::unwritableFolder()
{
    QFETCH(QString, folder);
    QFETCH(int, toDbg);
    QFile file(m_dir->filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QString path = m_dir->filePath(folder);
    if (folder.isEmpty()) {
        path = m_dir->path();
        while (path.size() < 4080)
            path += QLatin1Char('/') + QString(qMin(99, 4080 - path.size()), QLatin1Char('y'));
    }
    const ChildResult child = start_child(
        m_dir->path(), {QStringLiteral("write"), path, QStringLiteral("1"), QString::number(toDbg)});
    QVERIFY(child.normalExit);
    QCOMPARE(child.code, 10); // no current file
    QCOMPARE(child.err.count('\n'), 1);
    QVERIFY2(child.err.endsWith(" | hello\n"), child.err.constData());
    QCOMPARE(QFileInfo(file).size(), qint64(0));
}

void tst_ZrDebugLog::fileIsTriedAgainAfterSetBasePath()
{
    const QString folder = Folder("later");
    QFile obstacle(folder);
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    obstacle.close();
    set_base_path(folder);
    log_line(2, "a line for the debug output: the folder is a file");
    QCOMPARE(cur_path(), QByteArray());
    QVERIFY(obstacle.remove());
    set_base_path(folder);
    log_line(2, "written");
    const QByteArrayList lines = lines_in(folder);
    QCOMPARE(lines.size(), 1);
    QCOMPARE(message_in(lines[0]), QByteArray("written"));
}

void tst_ZrDebugLog::fullDisk()
{
#ifdef _WIN32
    QSKIP("needs a limit of the file size");
#else
    const QString folder = Folder("child");
    const ChildResult child = start_child(m_dir->path(), {QStringLiteral("full"), folder});
    QVERIFY(child.normalExit);
    QCOMPARE(child.code, 16);
    const QStringList names = QDir(folder).entryList(QDir::Files);
    QCOMPARE(names.size(), 1);
    QFile file(QDir(folder).filePath(names[0]));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    QCOMPARE(content.size(), 300);
    // Each message is whole in one of the two places.
    for (int i = 0; i < 20; ++i) {
        const QByteArray end = " | number " + QByteArray::number(i) + '\n';
        QVERIFY2(content.contains(end) || child.err.contains(end), end.constData());
    }
    QVERIFY(content.contains(" | number 0\n"));
    QVERIFY(child.err.contains(" | number 19\n"));
#endif
}

void tst_ZrDebugLog::terminateOnCritical_data()
{
    QTest::addColumn<int>("toFile");
    QTest::addColumn<int>("terminate");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("ends");
    QTest::newRow("critical, on") << 1 << 1 << 0 << true;
    QTest::newRow("critical, other value") << 1 << -1 << 0 << true;
    QTest::newRow("critical, on, no output") << 0 << 1 << 0 << true;
    QTest::newRow("critical, off") << 1 << 0 << 0 << false;
    QTest::newRow("error, on") << 1 << 1 << 1 << false;
    QTest::newRow("trace, on") << 1 << 1 << 5 << false;
    QTest::newRow("unknown, on") << 1 << 1 << -1 << false;
}

void tst_ZrDebugLog::terminateOnCritical()
{
    QFETCH(int, toFile);
    QFETCH(int, terminate);
    QFETCH(int, level);
    QFETCH(bool, ends);
    const QString folder = Folder("child");
    const ChildResult child = start_child(m_dir->path(),
        {QStringLiteral("critical"), folder, QString::number(toFile), QString::number(terminate),
            QString::number(level)});
    QCOMPARE(child.normalExit, !ends);
    if (!ends)
        QCOMPARE(child.code, 12);
    const QByteArrayList lines = lines_in(folder);
    QCOMPARE(lines.size(), toFile ? 2 : 0);
    if (toFile) {
        QCOMPARE(message_in(lines[0]), QByteArray("before"));
        QCOMPARE(message_in(lines[1]), QByteArray("the end"));
    }
}

void tst_ZrDebugLog::messageDuringStaticDestruction()
{
    const QString folder = Folder("child");
    const ChildResult child = start_child(m_dir->path(), {QStringLiteral("late"), folder});
    QVERIFY2(child.normalExit, child.err.constData());
    QCOMPARE(child.code, 13);
    const QByteArrayList lines = lines_in(folder);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(message_in(lines[0]), QByteArray("early"));
    QCOMPARE(message_in(lines[1]), QByteArray("late"));
}

void tst_ZrDebugLog::linesOfThreadsStayWhole()
{
    set_switches(1, 0, 2);
    log_from_threads();
    zr_debug_log_set_base_path(nullptr);
    const QByteArrayList lines = lines_in(Folder("log"));
    QCOMPARE(lines.size(), threadCount * linesPerThread);
    QCOMPARE(fault_in_thread_lines(lines), QString());
}

void tst_ZrDebugLog::debugOutputOfThreadsStaysWhole()
{
    const QString folder = Folder("child");
    ChildResult child = start_child(m_dir->path(), {QStringLiteral("threads"), folder});
    QVERIFY(child.normalExit);
    QCOMPARE(child.code, 14);
    QVERIFY(child.err.endsWith('\n'));
    child.err.chop(1);
    const QByteArrayList lines = child.err.split('\n');
    QCOMPARE(lines.size(), threadCount * linesPerThread);
    QCOMPARE(fault_in_thread_lines(lines), QString());
    QVERIFY(lines == lines_in(folder));
}

void tst_ZrDebugLog::basePathIsChangedByAnotherThread()
{
    std::atomic<bool> done{false};
    std::thread changer([&] {
        for (int i = 0; !done; ++i) {
            set_base_path(Folder(i % 2 ? "log" : "other"));
            zr_debug_log_write_switch(&zr_debug_log_flush_level, i % 6);
            cur_path();
            base_path();
        }
    });
    log_from_threads();
    done = true;
    changer.join();
    zr_debug_log_set_base_path(nullptr);
    const QByteArrayList lines = lines_in(Folder("log")) + lines_in(Folder("other"));
    QCOMPARE(lines.size(), threadCount * linesPerThread);
    QSet<QByteArray> messages;
    for (const QByteArray& line : lines)
        messages.insert(message_in(line));
    QCOMPARE(messages.size(), threadCount * linesPerThread);
}

int main(int argc, char** argv)
{
    if (argc > 2 && std::strcmp(argv[1], "--child") == 0)
        return run_child(argc - 2, argv + 2);
    QCoreApplication application(argc, argv);
    tst_ZrDebugLog test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrDebugLog.moc"
