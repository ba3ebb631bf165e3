// zr log record: a live recorder for lines from standard input, the network or a file that is replayed.

#include "CmdLogRecord.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/recording/ZrFileSource.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/recording/ZrStdinSource.h"
#include "ZrKit/recording/ZrTcpSource.h"
#include "ZrKit/recording/ZrUdpSource.h"
#include "ZrKit/ui/ZrByteText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QTimer>

#include <memory>
#include <unistd.h>

namespace {

/// How soon a signal to stop is heard, in milliseconds.
constexpr int signalCheckMs = 50;

constexpr u16 highestPort = 65535;
constexpr qint64 gigabyte = 1000000000;

struct Options
{
    std::string dir;
    std::string prefix;
    bool fromStdin = false;
    int udpPort = 0;
    std::string tcp;
    std::string file;
    double speed = 1.0;
    int source = 1;
    std::string minFree = "100"; ///< see `cli::bytes`
    bool json = false;
};

/// "HOST:PORT" taken apart; the host may be an IPv6 address in brackets. False when it is not of that form.
bool SplitHostPort(const QString& text, QString& host, u16& port)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool ok = false;
    const uint number = text.mid(colon + 1).toUInt(&ok);
    if (colon < 1 || !ok || number == 0 || number > highestPort)
        return false;
    host = text.left(colon);
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        host = host.mid(1, host.size() - 2);
    port = static_cast<u16>(number);
    return !host.isEmpty();
}

/// The source that the options ask for; null after a complaint.
std::unique_ptr<ZrLineSource> MakeSource(const Options& options)
{
    if (options.udpPort != 0)
        return std::make_unique<ZrUdpSource>(static_cast<u16>(options.udpPort), nullptr);
    if (!options.file.empty())
        return std::make_unique<ZrFileSource>(QString::fromStdString(options.file), options.speed, nullptr);
    if (options.tcp.empty())
        return std::make_unique<ZrStdinSource>(nullptr);
    QString host;
    u16 port = 0;
    if (!SplitHostPort(QString::fromStdString(options.tcp), host, port)) {
        cli::complain(QStringLiteral("--tcp: %1 is not HOST:PORT").arg(QString::fromStdString(options.tcp)));
        return nullptr;
    }
    return std::make_unique<ZrTcpSource>(host, port, nullptr);
}

/// In thousands, as the recorder's messages are and the limit is given.
QString SizeText(u64 bytes)
{
    return ZrByteText::Of(static_cast<double>(bytes)).Text();
}

/// The line that a terminal shows while recording.
class StatusLine
{
public:
    void Show(const ZrRecorder::Status& status)
    {
        if (!m_terminal)
            return;
        QString text = QStringLiteral("\r\033[K%1  %2  %3/s  %4 items/s")
                           .arg(cli::count_text(status.items, "item", "items"), SizeText(status.bytes),
                               SizeText(static_cast<u64>(status.bytesPerSecond)),
                               QString::number(status.itemsPerSecond, 'f', 1));
        if (status.freeBytes >= 0)
            text += QStringLiteral("  %1 free").arg(SizeText(static_cast<u64>(status.freeBytes)));
        if (status.secondsLeft >= 0.0)
            text += QStringLiteral(" (%1 h)").arg(status.secondsLeft / 3600.0, 0, 'f', 1);
        Write(text);
        m_shown = true;
    }

    void Clear()
    {
        if (m_shown)
            Write(QStringLiteral("\r\033[K"));
        m_shown = false;
    }

private:
    static void Write(const QString& text)
    {
        const QByteArray bytes = text.toUtf8();
        const ssize_t written
            = ::write(STDERR_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size()));
        static_cast<void>(written); // a status that cannot be shown must not end a recording
    }

    bool m_terminal = ::isatty(STDERR_FILENO) != 0;
    bool m_shown = false;
};

void PrintResult(const Options& options, const ZrRecorder::Status& status, u64 dropped, const QString& reason)
{
    if (options.json) {
        CliOutput::Get().Json({
            {QStringLiteral("path"), status.file},
            {QStringLiteral("items"), cli::json_count(status.items)},
            {QStringLiteral("bytes"), cli::json_count(status.bytes)},
            {QStringLiteral("lines"), cli::json_count(status.lines)},
            {QStringLiteral("damaged_lines"), cli::json_count(status.damagedLines)},
            {QStringLiteral("dropped_lines"), cli::json_count(dropped)},
            {QStringLiteral("fixes"), cli::json_count(status.fixes)},
            {QStringLiteral("seconds"), cli::json_number(status.seconds)},
            {QStringLiteral("free_bytes"), static_cast<double>(status.freeBytes)},
            {QStringLiteral("reason"), reason},
        });
        return;
    }
    const auto field = [](const char* name, const QString& value) {
        CliOutput::Get().Line(QString::fromLatin1(name).leftJustified(12) + value);
    };
    field("Log", status.file);
    field("Size", QStringLiteral("%1 (%2 bytes)").arg(SizeText(status.bytes)).arg(status.bytes));
    field("Items", QString::number(status.items));
    field("Lines",
        QStringLiteral("%1 (%2 no sound NMEA sentence, %3 too long and dropped)")
            .arg(status.lines)
            .arg(status.damagedLines)
            .arg(dropped));
    field("Positions", QString::number(status.fixes));
    field("Duration", cli::duration_text(status.seconds));
    field("Ended by", reason);
}

/// Runs the event loop until the source ends, a signal arrives or the recorder gives up.
int Record(const Options& options, ZrLineSource& source, ZrRecorder& recorder)
{
    StatusLine line;
    QString reason;
    int code = exDone;
    const auto say = [&line](const QString& text) {
        line.Clear();
        cli::complain(text);
    };
    const auto end = [&reason](const QString& why) {
        if (reason.isEmpty())
            reason = why;
        QCoreApplication::quit();
    };
    QObject::connect(&source, &ZrLineSource::Line, &recorder, &ZrRecorder::AddLine);
    QObject::connect(&source, &ZrLineSource::Trouble, &recorder, say);
    QObject::connect(
        &source, &ZrLineSource::Finished, &recorder, [&] { end(QStringLiteral("end of input")); });
    QObject::connect(&recorder, &ZrRecorder::Warning, &recorder, say);
    QObject::connect(&recorder, &ZrRecorder::Failed, &recorder, [&](const QString& text) {
        say(text);
        code = exBadOutput;
        end(QStringLiteral("no more space"));
    });
    QObject::connect(
        &recorder, &ZrRecorder::StatusChanged, &recorder, [&] { line.Show(recorder.CurrentStatus()); });
    QTimer signalCheck;
    QObject::connect(&signalCheck, &QTimer::timeout, &recorder, [&] {
        if (cli::interrupted())
            end(QStringLiteral("signal"));
    });
    signalCheck.start(signalCheckMs);

    QCoreApplication::exec();
    recorder.Stop();
    // A signal is the ordinary way to end a recording, so it is no failure.
    cli::forget_interrupt();
    line.Clear();
    PrintResult(options, recorder.CurrentStatus(), source.Dropped(), reason);
    return code;
}

int Run(const Options& options)
{
    const QString dir = QString::fromStdString(options.dir);
    if (QFileInfo(dir).exists() && !QFileInfo(dir).isDir())
        return cli::fail(exBadOutput, QStringLiteral("%1 is not a folder").arg(dir));
    const std::unique_ptr<ZrLineSource> source = MakeSource(options);
    if (!source)
        return exUsage;

    ZrRecorder::Options settings;
    settings.dir = dir;
    settings.prefix = QString::fromStdString(options.prefix);
    settings.source = static_cast<u16>(options.source);
    settings.stopBelow = static_cast<qint64>(cli::bytes(options.minFree));
    settings.warnBelow = settings.stopBelow + gigabyte;
    ZrRecorder recorder(settings, nullptr);
    QString error;
    // The source first: a port that is taken must not leave an empty log behind.
    if (!source->Start(&error))
        return cli::fail(exBadInput, error);
    if (!recorder.Start(&error))
        return cli::fail(exBadOutput, error);
    cli::complain(QStringLiteral("Recording %1 to %2; Ctrl-C ends it")
                      .arg(source->Name(), recorder.CurrentStatus().file));
    return Record(options, *source, recorder);
}

} // namespace

void AddLogRecord(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "record",
        "Record live lines into a new log\n"
        "\n"
        "Every line is logged as serial text with the time of its arrival; a sound NMEA 0183\n"
        "sentence is followed by the records decoded from it (position, depth, motion,\n"
        "environment). The log is named by the local time. Ctrl-C or SIGTERM ends the\n"
        "recording cleanly; killing the program loses no line that was logged.",
        "Units: sizes in MB, a million bytes, given and told. M may name another one:\n"
        "kB, GB, TB, or KiB, MiB, GiB, TiB, which count in 1024s: --min-free 2GB.\n"
        "\n"
        "Examples:\n"
        "  zr log record /data/logs --udp 10110 --prefix dive\n"
        "  zr log record /data/logs --tcp 192.168.1.20:10110\n"
        "  zr log record /data/logs --nmea-file boat.log --speed 10\n"
        "  cat /dev/ttyUSB0 | zr log record /data/logs --stdin");
    cli::add_argument(*verb, "DIR", options->dir, "Folder of the log; made when it is missing");
    verb->add_option("--prefix", options->prefix, "Begin the log's name with P and an underscore")
        ->option_text("P");
    auto* from = verb->add_option_group("Source", "Where the lines come from (one of them)");
    from->add_flag("--stdin", options->fromStdin, "Standard input, until it ends");
    from->add_option("--udp", options->udpPort, "Datagrams that arrive at this UDP port")
        ->option_text("PORT")
        ->check(CLI::Range(1, int(highestPort)));
    from->add_option("--tcp", options->tcp, "A TCP server; a lost connection is tried again")
        ->option_text("HOST:PORT");
    CLI::Option* file
        = from->add_option("--nmea-file", options->file, "Replay a file of NMEA sentences by its times")
              ->option_text("F");
    from->require_option(1);
    verb->add_option(
            "--speed", options->speed, "With --nmea-file: times faster than real time, 0 without waiting (1)")
        ->option_text("X")
        ->check(CLI::Range(0.0, 1e6))
        ->needs(file);
    verb->add_option("--source", options->source, "Source identifier of every item, 0 to 65535 (1)")
        ->option_text("N")
        ->check(CLI::Range(0, 65535));
    verb->add_option("--min-free", options->minFree, "End the recording when less than M MB are free (100)")
        ->option_text("M")
        ->check(cli::check_bytes);
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
