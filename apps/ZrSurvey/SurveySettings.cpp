#include "apps/ZrSurvey/SurveySettings.h"

#include "ZrUtil/ZrSetModule.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

namespace {

void Clamp(double& value, double least, double most, double otherwise)
{
    value = std::isfinite(value) ? std::clamp(value, least, most) : otherwise;
}

/// The nearest one would be as wrong as any.
void Choose(int& value, int first, int last, int otherwise)
{
    if (value < first || value > last)
        value = otherwise;
}

} // namespace

SurveySettings::SurveySettings()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    recordDir = QDir(documents).filePath(QStringLiteral("ZrSurvey"));
    const auto label = [](const char* text) { return QCoreApplication::translate("SurveySettings", text); };
    eventLabels = QStringList({label(QT_TRANSLATE_NOOP("SurveySettings", "Target")),
        label(QT_TRANSLATE_NOOP("SurveySettings", "Line start")),
        label(QT_TRANSLATE_NOOP("SurveySettings", "Line end")),
        label(QT_TRANSLATE_NOOP("SurveySettings", "Remark"))});
}

void SurveySettings::settings(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("colours"), colours);
    module.item(QStringLiteral("record folder"), recordDir);
    module.item(QStringLiteral("record prefix"), recordPrefix);
    module.item(QStringLiteral("split megabytes"), splitMegabytes);
    module.item(QStringLiteral("split minutes"), splitMinutes);
    module.item(QStringLiteral("stop below megabytes"), stopBelowMegabytes);
    QString labels = eventLabels.join(QLatin1Char('\n'));
    module.item(QStringLiteral("event labels"), labels);
    eventLabels = labels.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    module.item(QStringLiteral("source"), source);
    module.item(QStringLiteral("udp port"), udpPort);
    module.item(QStringLiteral("tcp host"), tcpHost);
    module.item(QStringLiteral("tcp port"), tcpPort);
    module.item(QStringLiteral("serial port"), serialPort);
    module.item(QStringLiteral("serial baud"), serialBaud);
    module.item(QStringLiteral("source file"), sourceFile);
    module.item(QStringLiteral("simulator speed"), simSpeed);
    module.item(QStringLiteral("simulator current"), simCurrent);
    module.item(QStringLiteral("simulator set"), simSet);
    module.item(QStringLiteral("palette"), palette);
    module.item(QStringLiteral("gain"), gain);
    module.item(QStringLiteral("contrast"), contrast);
    module.item(QStringLiteral("slant"), slant);
    module.item(QStringLiteral("bottom"), bottom);
    module.item(QStringLiteral("blanking"), blanking);
    module.item(QStringLiteral("gaps cut"), gapsCut);
    module.item(QStringLiteral("plan latitude"), planLat);
    module.item(QStringLiteral("plan longitude"), planLng);
    module.item(QStringLiteral("plan scale"), planScale);
    module.item(QStringLiteral("plan rotation"), planRotation);
    if (module.is_loading())
        PutRight();
}

/// What a file holds may be anything.
void SurveySettings::PutRight()
{
    const SurveySettings standard;
    Choose(colours, 0, 2, standard.colours);
    if (recordDir.trimmed().isEmpty())
        recordDir = standard.recordDir;
    if (!PrefixProblem(recordPrefix).isEmpty())
        recordPrefix = standard.recordPrefix;
    splitMegabytes = std::clamp(splitMegabytes, 0, MostSplitMegabytes);
    splitMinutes = std::clamp(splitMinutes, 0, MostSplitMinutes);
    stopBelowMegabytes = std::clamp(stopBelowMegabytes, LeastStopBelow, MostStopBelow);
    eventLabels = UsableLabels(eventLabels);
    Choose(source, 0, LastSource, standard.source);
    Choose(udpPort, 1, MostPort, standard.udpPort);
    if (tcpHost.trimmed().isEmpty())
        tcpHost = standard.tcpHost;
    Choose(tcpPort, 1, MostPort, standard.tcpPort);
    Choose(serialBaud, LeastBaud, MostBaud, standard.serialBaud);
    Clamp(simSpeed, LeastSimSpeed, MostSimSpeed, standard.simSpeed);
    Clamp(simCurrent, 0.0, MostSimCurrent, standard.simCurrent);
    Clamp(simSet, 0.0, 360.0, standard.simSet);
    Choose(blanking, 0, LastBlanking, standard.blanking);
    Choose(palette, 0, LastPalette, standard.palette);
    Clamp(gain, -MostGain, MostGain, standard.gain);
    Clamp(contrast, LeastContrast, MostContrast, standard.contrast);
    const bool isPlace = std::fabs(planLat) <= 90.0 && std::fabs(planLng) <= 180.0;
    if (!isPlace || !(planScale >= LeastPlanScale && planScale <= MostPlanScale)) {
        planLat = planLng = planScale = 0.0;
    }
    Clamp(planRotation, -360.0, 360.0, 0.0);
}

void SurveySettings::TakeSource(const SurveySettings& other)
{
    source = other.source;
    udpPort = other.udpPort;
    tcpHost = other.tcpHost;
    tcpPort = other.tcpPort;
    serialPort = other.serialPort;
    serialBaud = other.serialBaud;
    sourceFile = other.sourceFile;
    simSpeed = other.simSpeed;
    simCurrent = other.simCurrent;
    simSet = other.simSet;
}

bool SurveySettings::HasSource() const
{
    switch (source) {
    case SurveySource::serial:
        return !serialPort.isEmpty();
    case SurveySource::nmeaFile:
    case SurveySource::replay:
        return !sourceFile.isEmpty();
    default:
        return true;
    }
}

QString SurveySettings::PrefixProblem(const QString& prefix)
{
    if (prefix.size() > LongestPrefix)
        return QCoreApplication::translate("SurveySettings", "At most %1 characters").arg(LongestPrefix);
    const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    const auto isBad
        = [&forbidden](QChar c) { return forbidden.contains(c) || c.category() == QChar::Other_Control; };
    if (std::any_of(prefix.begin(), prefix.end(), isBad))
        return QCoreApplication::translate("SurveySettings", "None of %1 in the name of a file")
            .arg(QStringLiteral("/ \\ : * ? \" < > |"));
    if (prefix.startsWith(QLatin1Char('.')))
        return QCoreApplication::translate("SurveySettings", "A dot in front would hide the file");
    return {};
}

QStringList SurveySettings::UsableLabels(const QStringList& labels)
{
    QStringList usable;
    for (const QString& label : labels) {
        const QString text = label.simplified().left(LongestLabel).trimmed();
        if (!text.isEmpty() && usable.size() < MostLabels)
            usable.append(text);
    }
    return usable;
}
