// Everything that can stand in the way of an output file: refusals, full disks, interrupts.

#include "ZrToolRun.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The verbs that write a file, with IN and OUT for the paths.
const QVector<QPair<const char*, QStringList>> writers{
    {"census", {S("census"), S("IN"), S("OUT")}},
    {"cut", {S("cut"), S("IN"), S("OUT"), S("--from"), S("0%"), S("--to"), S("100%")}},
    {"cut types",
        {S("cut"), S("IN"), S("OUT"), S("--from"), S("0%"), S("--to"), S("100%"), S("--types"), S("2")}},
    {"cut lead",
        {S("cut"), S("IN"), S("OUT"), S("--from"), S("0%"), S("--to"), S("100%"), S("--lead"), S("48")}},
    {"filter", {S("filter"), S("IN"), S("OUT"), S("--types"), S("2")}},
    {"filter payload", {S("filter"), S("IN"), S("OUT"), S("--types"), S("2"), S("--payload-only")}},
    {"import", {S("import"), S("IN"), S("OUT")}},
};

QStringList Filled(QStringList arguments, const QString& in, const QString& out)
{
    for (QString& argument : arguments) {
        if (argument == S("IN"))
            argument = in;
        else if (argument == S("OUT"))
            argument = out;
    }
    return arguments;
}

void AddWriters()
{
    QTest::addColumn<QStringList>("arguments");
    for (const auto& [name, arguments] : writers)
        QTest::newRow(name) << arguments;
}

/// The tool without the rights of the superuser.
class UnprivilegedProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
        constexpr unsigned nobody = 65534;
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            ::_exit(99);
    }
};

/// Whether everybody may enter the folders that lead to \p path.
bool IsOpenToAll(const QString& path)
{
    for (QDir folder = QFileInfo(path).dir(); !folder.isRoot(); folder.cdUp()) {
        if (!(QFileInfo(folder.path()).permissions() & QFile::ExeOther))
            return false;
    }
    return true;
}

bool WaitFor(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > toolPatience)
            return false;
        QThread::msleep(1);
    }
    return true;
}

/// Whether the process has \p path open.
bool HasOpen(qint64 process, const QString& path)
{
    const QDir files(S("/proc/%1/fd").arg(process));
    const QStringList names = files.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    return std::any_of(names.begin(), names.end(),
        [&](const QString& name) { return QFileInfo(files.filePath(name)).symLinkTarget() == path; });
}

} // namespace

class tst_zr_log_targets : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void sameFileIsRefused_data() { AddWriters(); }

    void sameFileIsRefused();

    void existingOutputNeedsForce_data() { AddWriters(); }

    void existingOutputNeedsForce();

    void placesThatCannotBeWritten_data() { AddWriters(); }

    void placesThatCannotBeWritten();

    void folderWithoutTheRightToWrite_data() { AddWriters(); }

    void folderWithoutTheRightToWrite();
    void replacedFileKeepsItsRights();
    void newFileHasOrdinaryRights();

    void linkIsFollowed_data() { AddWriters(); }

    void linkIsFollowed();
    void relativePathsWork();
    void longNamesWork();

    void fullDisk_data() { AddWriters(); }

    void fullDisk();

    void interruptLeavesNothing_data();
    void interruptLeavesNothing();
    void interruptOfAListing();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    /// An input that \p arguments can read: a log, or a table to import.
    QString Input(const QStringList& arguments) const
    {
        return arguments.first() == S("import") ? Path("in.txt") : Path("in.log");
    }

    ToolFolder m_folder;
};

void tst_zr_log_targets::init()
{
    m_folder.Renew();
    LogBytes log;
    for (int i = 0; i < 300; ++i)
        log.Add(MakeItem(2, QByteArray(1000, 't')));
    QVERIFY(WriteWhole(Path("in.log"), log.Bytes()));
    QByteArray table("Timestamp;Depth\n");
    for (int i = 0; i < 2000; ++i) {
        table += QDateTime(QDate(2022, 5, 30), QTime(20, 0), Qt::UTC)
                     .addSecs(i)
                     .toString(S("yyyy-MM-dd hh:mm:ss"))
                     .toLatin1()
            + ";" + QByteArray::number(i % 50) + "\n";
    }
    QVERIFY(WriteWhole(Path("in.txt"), table));
}

void tst_zr_log_targets::sameFileIsRefused()
{
    QFETCH(QStringList, arguments);
    const QString in = Input(arguments);
    const QByteArray before = ReadWhole(in);
    QVERIFY(!before.isEmpty());
    QVERIFY(QFile::link(in, Path("soft")));
    QVERIFY(QFile::link(Path("soft"), Path("soft of soft")));
    QCOMPARE(::link(QFile::encodeName(in), QFile::encodeName(Path("hard"))), 0);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("sub")));
    const QStringList names = Names(m_folder.Path());
    const QStringList others{
        in, Path("soft"), Path("soft of soft"), Path("hard"), Path("sub/../") + QFileInfo(in).fileName()};
    for (const QString& out : others) {
        for (const QStringList& extra : {QStringList(), QStringList{S("--force")}}) {
            const ToolResult result = RunLog(Filled(arguments, in, out) + extra);
            QVERIFY2(result.code == 1, result.Text());
            QCOMPARE(QString::fromUtf8(result.err),
                S("zr: %1: The output is the same file as the input %2\n").arg(out, in));
            QCOMPARE(result.out, QByteArray());
            QCOMPARE(ReadWhole(in), before);
            QCOMPARE(Names(m_folder.Path()), names);
        }
    }
    // The other way round: the input is the link.
    const ToolResult result = RunLog(Filled(arguments, Path("hard"), in) + QStringList{S("--force")});
    QCOMPARE(result.code, 1);
    QCOMPARE(ReadWhole(in), before);
}

void tst_zr_log_targets::existingOutputNeedsForce()
{
    QFETCH(QStringList, arguments);
    const QString in = Input(arguments);
    const QString out = Path("out ü");
    QVERIFY(WriteWhole(out, "before"));
    const QStringList names = Names(m_folder.Path());
    const ToolResult refused = RunLog(Filled(arguments, in, out));
    QCOMPARE(refused.code, 3);
    QCOMPARE(
        QString::fromUtf8(refused.err), S("zr: %1: The file exists already; --force replaces it\n").arg(out));
    QCOMPARE(refused.out, QByteArray());
    QCOMPARE(ReadWhole(out), QByteArray("before"));
    const ToolResult forced = RunLog(Filled(arguments, in, out) + QStringList{S("--force")});
    QVERIFY2(forced.code == 0, forced.Text());
    QVERIFY(ReadWhole(out).size() > 20);
    QCOMPARE(Names(m_folder.Path()), names);
    // Without a file in the way nothing needs to be forced, and forcing does no harm.
    const QByteArray made = ReadWhole(out).mid(48);
    QVERIFY(QFile::remove(out));
    QCOMPARE(RunLog(Filled(arguments, in, out)).code, 0);
    QCOMPARE(ReadWhole(out).mid(48), made);
    QVERIFY(QFile::remove(out));
    QCOMPARE(RunLog(Filled(arguments, in, out) + QStringList{S("--force")}).code, 0);
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_log_targets::placesThatCannotBeWritten()
{
    QFETCH(QStringList, arguments);
    const QString in = Input(arguments);
    QVERIFY(QFile::link(Path("nowhere"), Path("dangling")));
    const QStringList names = Names(m_folder.Path());
    const QList<QPair<QString, QString>> places{
        {m_folder.Path(), S("This is a folder, not a file")},
        {m_folder.Path() + QLatin1Char('/'), S("This names no file")},
        {QString(), S("This names no file")},
        {Path("missing/out"), S("There is no folder %1").arg(Path("missing"))},
        {Path("in.log/out"), S("%1 is not a folder").arg(Path("in.log"))},
        {Path("dangling"), S("This is a link to a file that does not exist")},
        {S("/dev/full"), S("Not an ordinary file")},
        {S("/dev/null"), S("Not an ordinary file")},
    };
    for (const auto& [out, reason] : places) {
        const ToolResult result = RunLog(Filled(arguments, in, out) + QStringList{S("--force")});
        QVERIFY2(result.code == 3, result.Text());
        QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(out, reason));
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(Names(m_folder.Path()), names);
    }
    // A folder where not even the superuser can make a file.
    const ToolResult result = RunLog(Filled(arguments, in, S("/proc/zr-out")));
    QVERIFY2(result.code == 3, result.Text());
    QVERIFY(!result.err.isEmpty());
}

void tst_zr_log_targets::folderWithoutTheRightToWrite()
{
    QFETCH(QStringList, arguments);
    if (::geteuid() == 0 && !IsOpenToAll(ToolPath()))
        QSKIP("the tool lies where only the superuser can run it");
    const QString in = Input(arguments);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("locked")));
    QCOMPARE(::chmod(QFile::encodeName(m_folder.Path()), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(Path("locked")), 0555), 0);
    UnprivilegedProcess process;
    process.start(ToolPath(), QStringList{S("log")} + Filled(arguments, in, Path("locked/out")));
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 3, result.Text());
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: The folder %2 cannot be written\n").arg(Path("locked/out"), Path("locked")));
    QCOMPARE(Names(Path("locked")), QStringList());
    QCOMPARE(::chmod(QFile::encodeName(Path("locked")), 0755), 0);
}

void tst_zr_log_targets::replacedFileKeepsItsRights()
{
    const QString out = Path("out");
    QVERIFY(WriteWhole(out, "before"));
    QCOMPARE(::chmod(QFile::encodeName(out), 0640), 0);
    QCOMPARE(RunLog({S("filter"), Path("in.log"), out, S("--types"), S("2"), S("--force")}).code, 0);
    struct stat info = {};
    QCOMPARE(::stat(QFile::encodeName(out), &info), 0);
    QCOMPARE(info.st_mode & 07777u, 0640u);
}

void tst_zr_log_targets::newFileHasOrdinaryRights()
{
    const mode_t before = ::umask(027);
    const ToolResult result = RunLog({S("filter"), Path("in.log"), Path("out"), S("--types"), S("2")});
    ::umask(before);
    QCOMPARE(result.code, 0);
    struct stat info = {};
    QCOMPARE(::stat(QFile::encodeName(Path("out")), &info), 0);
    QCOMPARE(info.st_mode & 07777u, 0640u);
}

void tst_zr_log_targets::linkIsFollowed()
{
    QFETCH(QStringList, arguments);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("sub")));
    QVERIFY(WriteWhole(Path("sub/real"), "before"));
    QVERIFY(QFile::link(Path("sub/real"), Path("link")));
    const ToolResult result
        = RunLog(Filled(arguments, Input(arguments), Path("link")) + QStringList{S("--force")});
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(QFileInfo(Path("link")).isSymLink());
    QVERIFY(ReadWhole(Path("sub/real")).size() > 20);
    QCOMPARE(Names(Path("sub")), QStringList{S("real")});
}

void tst_zr_log_targets::relativePathsWork()
{
    for (const auto& [name, arguments] : writers) {
        QProcess process;
        process.setWorkingDirectory(m_folder.Path());
        const QString in = QFileInfo(Input(arguments)).fileName();
        process.start(ToolPath(), QStringList{S("log")} + Filled(arguments, in, S("out")));
        const ToolResult result = Finish(process);
        QVERIFY2(result.code == 0, result.Text());
        QVERIFY2(QFile::remove(Path("out")), name);
    }
}

void tst_zr_log_targets::longNamesWork()
{
    // The longest name that a folder takes leaves no room for an ending.
    const QString out = m_folder.Path() + QLatin1Char('/') + QString(255, QLatin1Char('n'));
    const ToolResult made = RunLog({S("filter"), Path("in.log"), out, S("--types"), S("2")});
    QVERIFY2(made.code == 0, made.Text());
    const QString tooLong = out + QLatin1Char('n');
    const ToolResult refused = RunLog({S("filter"), Path("in.log"), tooLong, S("--types"), S("2")});
    QCOMPARE(refused.code, 3);
    QVERIFY2(refused.err.contains("File name too long"), refused.Text());
    QCOMPARE(Names(m_folder.Path()).size(), 3);
}

void tst_zr_log_targets::fullDisk()
{
    QFETCH(QStringList, arguments);
    const QString in = Input(arguments);
    const QString out = Path("out");
    QVERIFY(WriteWhole(out, "before"));
    const QStringList names = Names(m_folder.Path());
    // The census is shorter than the smallest limit above nothing.
    const int limit = arguments.first() == S("census") ? 0 : 16 * 1024;
    const ToolResult result = RunLogLimited(Filled(arguments, in, out) + QStringList{S("--force")}, limit);
    QVERIFY2(result.code == 3, result.Text());
    QVERIFY2(QString::fromUtf8(result.err).startsWith(S("zr: ")) && result.err.contains(out.toUtf8()),
        result.Text());
    QVERIFY2(result.err.contains("File too large"), result.Text());
    QCOMPARE(ReadWhole(out), QByteArray("before"));
    QCOMPARE(Names(m_folder.Path()), names);
}

void tst_zr_log_targets::interruptLeavesNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("signal");
    for (const auto& [name, arguments] : writers) {
        for (const int signal : {SIGINT, SIGTERM}) {
            if (signal == SIGINT || QLatin1String(name) == QLatin1String("cut"))
                QTest::newRow(qPrintable(S("%1, %2").arg(S(name)).arg(signal))) << arguments << signal;
        }
    }
}

void tst_zr_log_targets::interruptLeavesNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, signal);
    const QString in = Path("large");
    if (arguments.first() == S("import")) {
        QByteArray table("Timestamp;Depth\n");
        for (int i = 0; i < 1000000; ++i)
            table += "2022-05-30 20:00:00;5\n";
        QVERIFY(WriteWhole(in, table));
    } else {
        // 3.2 GiB of zeros, which no disk copies at once.
        QVERIFY(WriteSparseLog(in, 400, 8 * 1024 * 1024));
        arguments.replaceInStrings(QRegularExpression(S("^2$")), S("70"));
    }
    QVERIFY(WriteWhole(Path("out"), "before"));
    const QStringList names = Names(m_folder.Path());
    QProcess process;
    process.start(
        ToolPath(), QStringList{S("log")} + Filled(arguments, in, Path("out")) + QStringList{S("--force")});
    // The work has begun when the temporary file shows; that of an import has no name, its input is open
    // then.
    const bool import = arguments.first() == S("import");
    QVERIFY(
        WaitFor([&] { return import ? HasOpen(process.processId(), in) : Names(m_folder.Path()) != names; }));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    const ToolResult result = Finish(process);
    QVERIFY2(result.code == 128 + signal, result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(Names(m_folder.Path()), names);
    QCOMPARE(ReadWhole(Path("out")), QByteArray("before"));
}

void tst_zr_log_targets::interruptOfAListing()
{
    LogBytes log;
    for (int i = 0; i < 50000; ++i)
        log.Add(MakeItem(1, "x"));
    QVERIFY(WriteWhole(Path("in.log"), log.Bytes()));
    QProcess process;
    process.start(ToolPath(), {S("log"), S("items"), Path("in.log")});
    // Some lines have come, and many more wait for somebody to read them.
    QVERIFY(process.waitForReadyRead(toolPatience));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const ToolResult result = Finish(process);
    QCOMPARE(result.code, 130);
    QVERIFY(result.out.count('\n') < 50000);
    QCOMPARE(result.err, QByteArray());
}

QTEST_GUILESS_MAIN(tst_zr_log_targets)
#include "tst_zr_log_targets.moc"
