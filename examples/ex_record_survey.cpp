// Records a simulated survey with events, as an application does it: the session works in a thread of its
// own, this one only listens.
//
//     ex_record_survey DIR [SECONDS]
//
// Records into a new log in DIR until the survey is over, or for so many seconds. Prints a line each second
// and what was recorded. Exit code 0, 1 for wrong arguments, 2 when it cannot be recorded.

#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/sim/ZrSimSource.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

ZrWpts MakePlan()
{
    ZrWpts plan;
    plan.linked = true;
    plan.speed = 2.0;
    plan.Add(48.4800, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
    plan.Add(48.4806, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
    return plan;
}

ZrLineSource* MakeVehicle()
{
    ZrSimSettings settings;
    settings.sonar.range = 40.0;
    settings.sonar.samples = 512;
    auto* vehicle = new ZrSimSource(MakePlan(), settings, nullptr);
    vehicle->SetFactor(20.0);
    return vehicle;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    bool ok = argc == 2 || argc == 3;
    const double seconds = argc == 3 ? QString::fromLocal8Bit(argv[2]).toDouble(&ok) : 0.0;
    if (!ok || (argc == 3 && !(seconds > 0.0)) || seconds > 86400.0) {
        std::fprintf(stderr, "Usage: ex_record_survey DIR [SECONDS]\n");
        return 1;
    }

    ZrRecordingSession session;
    bool hasFailed = false;
    QObject::connect(&session, &ZrRecordingSession::Failed, [&](const QString& message) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
        hasFailed = true;
        QCoreApplication::quit();
    });

    // The recording begins once the vehicle is there, and ends with it.
    ZrRecorder::Options options;
    options.dir = QString::fromLocal8Bit(argv[1]);
    options.prefix = QStringLiteral("survey");
    bool wasAsked = false;
    QObject::connect(&session, &ZrRecordingSession::SourceChanged, [&] {
        if (session.Source() == ZrRecordingSession::sourceOpen && !wasAsked) {
            wasAsked = true;
            session.Start(options);
        } else if (session.Source() == ZrRecordingSession::sourceFinished) {
            session.Stop();
        } else if (session.Source() == ZrRecordingSession::sourceFailed) {
            std::fprintf(stderr, "%s\n", qPrintable(session.SourceText()));
            hasFailed = true;
            QCoreApplication::quit();
        }
    });
    bool hasEvent = false;
    QObject::connect(&session, &ZrRecordingSession::RecordingChanged, [&] {
        if (session.Recording() == ZrRecordingSession::recordingOn)
            hasEvent = session.AddEvent(QStringLiteral("Line begins"));
        else if (session.Recording() == ZrRecordingSession::recordingOff)
            QCoreApplication::quit();
    });

    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        const ZrLiveState& state = session.State();
        std::printf("%.7f %.7f, heading %.1f, %.1f m deep, %llu bytes\n", state.latitude.value,
            state.longitude.value, state.heading.value, state.depth.value,
            static_cast<unsigned long long>(session.Status().bytes));
    });
    ticks.start(1000);
    if (seconds > 0.0)
        QTimer::singleShot(static_cast<int>(seconds * 1000.0), &session, &ZrRecordingSession::Stop);

    session.Open(MakeVehicle);
    QCoreApplication::exec();
    if (hasFailed)
        return 2;
    std::printf("%s: %llu items, %llu bytes%s\n", qPrintable(session.Status().file),
        static_cast<unsigned long long>(session.Status().items),
        static_cast<unsigned long long>(session.Status().bytes), hasEvent ? ", with an event" : "");
    return 0;
}
