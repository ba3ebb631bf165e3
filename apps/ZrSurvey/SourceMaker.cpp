#include "apps/ZrSurvey/SourceMaker.h"

#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/recording/ZrFileSource.h"
#include "ZrKit/recording/ZrLogSource.h"
#include "ZrKit/recording/ZrSerialSource.h"
#include "ZrKit/recording/ZrTcpSource.h"
#include "ZrKit/recording/ZrUdpSource.h"
#include "ZrKit/sim/ZrSimSource.h"
#include "apps/ZrSurvey/SurveySettings.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QDateTime>

#include <memory>

namespace {

/// Lanes of 400 m, 60 m apart, in a quiet bay.
ZrWpts TrialPlan()
{
    constexpr double length = 400.0;
    constexpr double spacing = 60.0;
    constexpr int lanes = 6;
    const ZrLocalFrame frame({50.3320, -4.1480});
    ZrWpts plan;
    for (int lane = 0; lane < lanes; ++lane) {
        const bool isUp = lane % 2 == 0;
        for (const double y : {isUp ? 0.0 : length, isUp ? length : 0.0}) {
            const ZrGeoPoint at = frame.ToGeo({lane * spacing, y});
            plan.Add(at.lat, at.lng, eZrWptBlue, ZrWpts::eAddTail);
        }
    }
    return plan;
}

ZrSimSettings SimSettings(const SurveySettings& settings)
{
    ZrSimSettings sim;
    sim.start = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    sim.recordsPlan = false; // the recording has it at its head
    sim.vehicle.currentDrift = settings.simCurrent;
    sim.vehicle.currentSet = settings.simSet;
    return sim;
}

} // namespace

ZrWpts SourceMaker::PlanOf(const SurveySettings& settings, const ZrWpts& plan)
{
    return settings.source == SurveySource::simulator && plan.GetCount() < 2 ? TrialPlan() : plan;
}

ZrRecordingSession::MakeSource SourceMaker::Make(const SurveySettings& settings, const ZrWpts& plan)
{
    const QString file = settings.sourceFile;
    switch (settings.source) {
    case SurveySource::simulator: {
        const auto route = std::make_shared<const ZrWpts>(PlanOf(settings, plan));
        return [route, sim = SimSettings(settings), factor = settings.simSpeed] {
            auto source = std::make_unique<ZrSimSource>(*route, sim, nullptr);
            source->SetFactor(factor);
            return source.release();
        };
    }
    case SurveySource::udp:
        return [port = settings.udpPort] { return new ZrUdpSource(static_cast<u16>(port), nullptr); };
    case SurveySource::tcp:
        return [host = settings.tcpHost, port = settings.tcpPort] {
            return new ZrTcpSource(host, static_cast<u16>(port), nullptr);
        };
    case SurveySource::serial:
        return [port = settings.serialPort, baud = settings.serialBaud] {
            return new ZrSerialSource(port, baud, nullptr);
        };
    case SurveySource::nmeaFile:
        return [file] { return new ZrFileSource(file, 1.0, nullptr); };
    case SurveySource::replay:
        return [file] { return new ZrLogSource(file, 1.0, nullptr); };
    default:
        return {};
    }
}

QString SourceMaker::Key(const SurveySettings& settings)
{
    switch (settings.source) {
    case SurveySource::simulator:
        return QStringLiteral("0 %1 %2 %3")
            .arg(settings.simSpeed)
            .arg(settings.simCurrent)
            .arg(settings.simSet);
    case SurveySource::udp:
        return QStringLiteral("1 %1").arg(settings.udpPort);
    case SurveySource::tcp:
        return QStringLiteral("2 %1:%2").arg(settings.tcpHost).arg(settings.tcpPort);
    case SurveySource::serial:
        return QStringLiteral("3 %1 %2").arg(settings.serialPort).arg(settings.serialBaud);
    default:
        return QStringLiteral("%1 %2").arg(settings.source).arg(settings.sourceFile);
    }
}
