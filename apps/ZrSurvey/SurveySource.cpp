#include "apps/ZrSurvey/SurveySource.h"

#include "apps/ZrSurvey/SurveySettings.h"

#include <QFileInfo>

QString SurveySource::Name(int kind)
{
    switch (kind) {
    case simulator:
        return tr("Simulator");
    case udp:
        return tr("NMEA over UDP");
    case tcp:
        return tr("NMEA over TCP");
    case serial:
        return tr("Serial port");
    case nmeaFile:
        return tr("NMEA file");
    case replay:
        return tr("Replay of a log");
    default:
        return {};
    }
}

QString SurveySource::Describe(const SurveySettings& settings)
{
    const QString file = QFileInfo(settings.sourceFile).fileName();
    switch (settings.source) {
    case udp:
        return tr("UDP port %1").arg(settings.udpPort);
    case tcp:
        return QStringLiteral("%1:%2").arg(settings.tcpHost).arg(settings.tcpPort);
    case serial:
        return settings.serialPort.isEmpty() ? tr("No serial port chosen") : settings.serialPort;
    case nmeaFile:
    case replay:
        return file.isEmpty() ? tr("No file chosen") : file;
    default:
        return Name(settings.source);
    }
}
