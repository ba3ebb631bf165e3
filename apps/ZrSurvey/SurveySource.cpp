#include "apps/ZrSurvey/SurveySource.h"

#include "apps/ZrSurvey/SurveySettings.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("SurveySource", text);
}

} // namespace

QString SurveySource::Name(int kind)
{
    switch (kind) {
    case simulator:
        return Tr("Simulator");
    case udp:
        return Tr("NMEA over UDP");
    case tcp:
        return Tr("NMEA over TCP");
    case serial:
        return Tr("Serial port");
    case nmeaFile:
        return Tr("NMEA file");
    case replay:
        return Tr("Replay of a log");
    default:
        return {};
    }
}

QString SurveySource::Describe(const SurveySettings& settings)
{
    const QString file = QFileInfo(settings.sourceFile).fileName();
    switch (settings.source) {
    case udp:
        return Tr("UDP port %1").arg(settings.udpPort);
    case tcp:
        return QStringLiteral("%1:%2").arg(settings.tcpHost).arg(settings.tcpPort);
    case serial:
        return settings.serialPort.isEmpty() ? Tr("No serial port chosen") : settings.serialPort;
    case nmeaFile:
    case replay:
        return file.isEmpty() ? Tr("No file chosen") : file;
    default:
        return Name(settings.source);
    }
}
