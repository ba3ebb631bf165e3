#include "apps/ZrSurvey/SurveySettings.h"

#include "ZrUtil/ZrSetModule.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

namespace {

/// A value that a person wrote into the file may be anything.
template <class T> void Clamp(T& value, T least, T most, T otherwise)
{
    if constexpr (std::is_floating_point_v<T>) {
        if (!std::isfinite(value))
            value = otherwise;
    }
    value = std::clamp(value, least, most);
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
    if (!module.is_loading())
        return;
    Clamp(colours, 0, 2, 1);
    Clamp(splitMegabytes, 0, 1024 * 1024, 0);
    Clamp(splitMinutes, 0, 24 * 60, 0);
    Clamp(stopBelowMegabytes, 50, 1024 * 1024, 500);
    Clamp(source, 0, 5, 0);
    Clamp(udpPort, 1, 65535, 10110);
    Clamp(tcpPort, 1, 65535, 10110);
    Clamp(simSpeed, 0.1, 50.0, 1.0);
    Clamp(simCurrent, 0.0, 5.0, 0.0);
    Clamp(simSet, 0.0, 360.0, 0.0);
    Clamp(palette, 0, 255, 1);
    Clamp(gain, -20.0, 20.0, 0.0);
    Clamp(contrast, 0.25, 4.0, 1.0);
}
