#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarContrast.h"

#include <QImage>
#include <QString>

#include <atomic>

class IZrProgress;
class ZrSonarGain;
class ZrSonarLog;
class ZrWaterfallLines;
class ZrWaterfallMap;

/// Draws side-scan lines as an image.
///
/// \code
/// ZrWaterfall waterfall(log);
/// QImage image;
/// if (!waterfall.Render(map, image))
///     return waterfall.Error();
/// \endcode
///
/// The gain is learnt from, and the contrast measured on, what the image shows beyond the bottom: neither the
/// outgoing pulse nor the water column has a part in them. Of long lines some thousands of pings and rows,
/// evenly spread, stand for all. Pings are read one by one; memory is that of the image and of a few lines.
///
/// A row between two pings is blended from both, one with several pings is their mean. Pixels to which
/// nothing was recorded have the colour `noData`.
///
/// One thread at a time; `cancel` may be set from any thread.
class ZR_KIT_EXPORT ZrWaterfall
{
public:
    IZrProgress* progress = nullptr; ///< told each whole percent; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Render` at the next line

    /// \p log must stay.
    explicit ZrWaterfall(ZrSonarLog& log);

    ZrWaterfall(const ZrWaterfall&) = delete;
    ZrWaterfall& operator=(const ZrWaterfall&) = delete;

    /// Draws what \p map lays out, by its settings, as `QImage::Format_RGB32`, or `Format_ARGB32` when a
    /// colour of the settings is not opaque. False, \p image being null and the reason in `Error`, when the
    /// map has an error, there is no such palette, memory is short or `cancel` was set.
    bool Render(const ZrWaterfallMap& map, QImage& image);

    /// The amplitudes drawn black and white last, after gain.
    float Lo() const { return m_contrast.Lo(); }

    float Hi() const { return m_contrast.Hi(); }

    QString Error() const { return m_error; }

private:
    bool Fail(const QString& reason);
    bool Learn(const ZrWaterfallMap& map, ZrSonarGain& gain);
    bool Measure(const ZrWaterfallMap& map, ZrWaterfallLines& lines);
    bool GoOn(double share);

    ZrSonarLog& m_log;
    ZrSonarContrast m_contrast;
    QString m_error;
    int m_percent = -1; ///< told last
};
