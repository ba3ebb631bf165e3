// What exports of a recording make of its side-scan sonar.

#include "ZrKit/sonar/ZrMosaic.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrKit/survey/ZrSurveyExport.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetFile.h"

#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include <cmath>

bool ZrSurveyExport::WriteTargets(const QString& path)
{
    ZrTargetFile out;
    m_items = m_targets.size();
    return out.Write(m_targets, path) || Fail(out.Error());
}

QString ZrSurveyExport::Palette() const
{
    return palette.isEmpty() ? ZrSonarPalette::Names().constFirst() : palette;
}

/// The samples are read from a log of its own: that of the recording is in use.
bool ZrSurveyExport::OpenLog(ZrSonarLog& log)
{
    if (!log.OpenAs(m_recording->SonarLog()))
        return Fail(log.Error());
    m_items = m_endPing - m_firstPing;
    return true;
}

bool ZrSurveyExport::DrawWaterfall(const QString& path, IZrProgress* progress)
{
    constexpr int widestPicture = 4096; ///< pixels
    constexpr int narrowest = 512;
    ZrSonarLog log;
    if (!OpenLog(log))
        return false;
    ZrWaterfall drawing(log);
    const Step step(*this, drawing.cancel);
    drawing.progress = progress;
    ZrWaterfallSettings settings;
    settings.palette = Palette();
    settings.slantCorrected = slant;
    settings.blanking = blanking;
    settings.shownGain = gain;
    settings.shownContrast = contrast;
    QImage image;
    for (const int width : {0, widestPicture, 2048, 1024, narrowest}) {
        settings.width = width;
        const ZrWaterfallMap map(
            log.Pings(), m_recording->Track(), m_bottom, settings, m_firstPing, m_endPing - 1);
        if (map.IsTooLarge() && width != narrowest)
            continue;
        if (!drawing.Render(map, image))
            return Fail(drawing.Error());
        const bool isBottomKnown = !std::isnan(map.Altitude(static_cast<double>(m_firstPing)));
        m_isSlantCorrected = map.IsSlantCorrected();
        m_blanking = blanking == ZrSonarBlanking::water && !isBottomKnown ? ZrSonarBlanking::pulse : blanking;
        break;
    }
    return WritePicture(image, path);
}

bool ZrSurveyExport::WritePicture(const QImage& image, const QString& path)
{
    QSaveFile out(path);
    const auto fail = [&](const QString& why) { return Fail(tr("Cannot write %1: %2").arg(path, why)); };
    if (!out.open(QIODevice::WriteOnly))
        return fail(out.errorString());
    QImageWriter writer(&out, QFileInfo(path).suffix().toLower().toLatin1());
    if (!writer.write(image))
        return fail(writer.errorString());
    return (!m_cancel && out.flush() && out.commit()) || fail(out.errorString());
}

bool ZrSurveyExport::DrawMosaic(const QString& path, IZrProgress* progress)
{
    ZrSonarLog log;
    if (!OpenLog(log))
        return false;
    ZrMosaicSettings settings;
    settings.palette = Palette();
    ZrMosaic drawing(settings);
    {
        const Step step(*this, drawing.cancel);
        drawing.progress = progress;
        drawing.AddLine(log, m_bottom, m_recording->Track(), m_firstPing, m_endPing - 1);
        if (!drawing.Build())
            return Fail(drawing.Error());
    }
    ZrMosaicFile file;
    const Step step(*this, file.cancel);
    return file.Write(drawing.Image(), drawing.Frame(), path) || Fail(file.Error());
}
