// Records NMEA 0183 sentences, or a log once more, from wherever they come, and tells what comes and what
// does not.
//
//     ex_record_nmea DIR SOURCE [SECONDS]
//
// SOURCE is one of
//
//     udp:PORT            datagrams that arrive at the port
//     tcp:HOST:PORT       a server; a lost connection is tried again
//     serial:DEVICE:BAUD  a serial port; one that is not there yet is tried again
//     file:PATH           a file of sentences, replayed ten times as fast as their times say
//     log:PATH            a log, replayed likewise
//
// Records into a new log in DIR until the source is at its end, or for so many seconds; ports and servers
// have no end, and a program that is interrupted leaves a sound log. Prints a line each second and what was
// recorded. Exit code 0, 1 for wrong arguments, 2 when it cannot be recorded.

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/planning/ZrPlanRecord.h"
#include "ZrKit/recording/ZrFileSource.h"
#include "ZrKit/recording/ZrLogSource.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/recording/ZrSerialSource.h"
#include "ZrKit/recording/ZrSourceWatch.h"
#include "ZrKit/recording/ZrTcpSource.h"
#include "ZrKit/recording/ZrUdpSource.h"
#include "ZrKit/ui/ZrByteText.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>
#include <memory>

namespace {

constexpr double replaySpeed = 10.0;

/// What makes the source, on the thread of the session; empty when \p text names none.
ZrRecordingSession::MakeSource SourceOf(const QString& text)
{
    const QString kind = text.section(QLatin1Char(':'), 0, 0);
    const QString rest = text.section(QLatin1Char(':'), 1);
    const int colon = rest.lastIndexOf(QLatin1Char(':'));
    const QString name = rest.left(colon);
    bool isNumber = false;
    const int number = rest.mid(colon + 1).toInt(&isNumber);
    const bool isPort = isNumber && number > 0 && number <= 65535;
    if (kind == QLatin1String("udp") && isPort)
        return [number] { return new ZrUdpSource(static_cast<u16>(number), nullptr); };
    if (kind == QLatin1String("tcp") && isPort && colon > 0)
        return [name, number] { return new ZrTcpSource(name, static_cast<u16>(number), nullptr); };
    if (kind == QLatin1String("serial") && isNumber && colon > 0)
        return [name, number] { return new ZrSerialSource(name, number, nullptr); };
    if (kind == QLatin1String("file") && !rest.isEmpty())
        return [rest] { return new ZrFileSource(rest, replaySpeed, nullptr); };
    if (kind == QLatin1String("log") && !rest.isEmpty())
        return [rest] { return new ZrLogSource(rest, replaySpeed, nullptr); };
    return {};
}

/// The line that the vehicle is to run: every log begins with it.
std::shared_ptr<const ZrWpts> Plan()
{
    auto plan = std::make_shared<ZrWpts>();
    plan->linked = true;
    plan->Add(48.4800, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
    plan->Add(48.4806, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
    return plan;
}

void Print(const ZrRecordingSession& session, const ZrSourceFacts& facts)
{
    const ZrLiveState& state = session.State();
    const QString size = ZrByteText::Of(static_cast<double>(session.Status().bytes)).Text();
    QString what;
    if (facts.state == ZrSourceFacts::silent)
        what = QStringLiteral("silent");
    else if (facts.state == ZrSourceFacts::unreadable)
        what = QStringLiteral("no sentence among what comes; is the speed right?");
    else if (facts.IsBad())
        what = facts.reason;
    else
        what = ZrPositionShown::Text(state.latitude.value, state.longitude.value);
    std::printf("%s, %s\n", qPrintable(size), qPrintable(what));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const ZrRecordingSession::MakeSource make
        = argc >= 3 ? SourceOf(QString::fromLocal8Bit(argv[2])) : ZrRecordingSession::MakeSource();
    bool ok = argc == 3 || argc == 4;
    const double seconds = argc == 4 ? QString::fromLocal8Bit(argv[3]).toDouble(&ok) : 0.0;
    if (!ok || !make || (argc == 4 && !(seconds > 0.0)) || seconds > 86400.0) {
        std::fprintf(stderr,
            "Usage: ex_record_nmea DIR udp:PORT|tcp:HOST:PORT|serial:DEVICE:BAUD|file:PATH|"
            "log:PATH [SECONDS]\n");
        return 1;
    }

    ZrRecordingSession session;
    ZrSourceWatch watch;
    bool hasFailed = false;
    const auto fail = [&hasFailed](const QString& why) {
        std::fprintf(stderr, "%s\n", qPrintable(why));
        hasFailed = true;
        QCoreApplication::quit();
    };
    QObject::connect(&session, &ZrRecordingSession::Failed, fail);
    QObject::connect(&session, &ZrRecordingSession::SourceLost,
        [&](const QString& why) { watch.Lose(why, session.Now()); });
    QObject::connect(
        &session, &ZrRecordingSession::SourceBack, [&] { watch.Lose(QString(), session.Now()); });

    // First the log, then the source: of what comes nothing is missed.
    QObject::connect(&session, &ZrRecordingSession::SourceChanged, [&] {
        if (session.Source() == ZrRecordingSession::sourceFinished)
            session.Stop();
        else if (session.Source() == ZrRecordingSession::sourceFailed)
            fail(session.SourceText());
    });
    QObject::connect(&session, &ZrRecordingSession::RecordingChanged, [&] {
        if (session.Recording() == ZrRecordingSession::recordingOn)
            session.Open(make);
        else if (session.Recording() == ZrRecordingSession::recordingOff)
            QCoreApplication::quit();
    });

    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, [&] { Print(session, watch.Look(session)); });
    ticks.start(1000);
    if (seconds > 0.0)
        QTimer::singleShot(static_cast<int>(seconds * 1000.0), &session, &ZrRecordingSession::Stop);

    ZrRecorder::Options options;
    options.dir = QString::fromLocal8Bit(argv[1]);
    options.prefix = QStringLiteral("nmea");
    session.Start(options, [plan = Plan()] { return ZrPlanRecord::Encode(*plan); });
    QCoreApplication::exec();
    if (hasFailed)
        return 2;
    std::printf("%s: %llu lines, %llu positions, %llu items\n", qPrintable(session.Status().file),
        static_cast<unsigned long long>(session.Status().lines),
        static_cast<unsigned long long>(session.Status().fixes),
        static_cast<unsigned long long>(session.Status().items));
    return 0;
}
