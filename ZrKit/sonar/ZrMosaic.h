#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrMosaicFrame.h"
#include "ZrKit/sonar/ZrMosaicSettings.h"
#include "ZrUtil/ZrTypes.h"

#include <QCoreApplication>
#include <QImage>
#include <QString>

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

class IZrProgress;
class ZrBottomLine;
class ZrSonarLog;
class ZrSonarTrack;
struct ZrMosaicPing;

/// Lays side-scan lines on the map: a picture with north up, in the metres of the UTM zone that holds the
/// middle of the lines.
///
/// \code
/// ZrMosaic mosaic(settings);
/// mosaic.AddLine(log, bottom);
/// if (!mosaic.Build())
///     return mosaic.Error();
/// mosaic.Image().save(path); // or ZrMosaicFile, which writes the place as well
/// \endcode
///
/// The seabed between two pings that follow each other is filled, unless the settings see a gap between them.
/// What no ping has seen is transparent. Samples come to the place that `ZrSonarGeo` tells for them; across a
/// range of some hundred metres the grid is taken as straight, which is off by less than a millimetre.
///
/// The log is read twice, ping by ping: for the automatic gain, and for the picture. Memory goes by the
/// pixels, and by the pings for their places.
///
/// One thread at a time; `cancel` may be set from any thread.
class ZR_KIT_EXPORT ZrMosaic
{
    Q_DECLARE_TR_FUNCTIONS(ZrMosaic)

public:
    static constexpr std::size_t ToTheEnd = static_cast<std::size_t>(-1);

    IZrProgress* progress = nullptr; ///< told each whole percent; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Build` soon

    explicit ZrMosaic(const ZrMosaicSettings& settings);
    ~ZrMosaic();
    ZrMosaic(const ZrMosaic&) = delete;
    ZrMosaic& operator=(const ZrMosaic&) = delete;

    /// Adds the pings \p first ... \p last of a log. Log and bottom line must stay as they are until `Build`
    /// is done. Lines added later are newer.
    void AddLine(
        ZrSonarLog& log, const ZrBottomLine& bottom, std::size_t first = 0, std::size_t last = ToTheEnd);

    /// The same along \p track, which was made of the pings of \p log, whatever the settings say of tracks:
    /// at once, however long the log. The track must stay as well.
    void AddLine(ZrSonarLog& log, const ZrBottomLine& bottom, const ZrSonarTrack& track,
        std::size_t first = 0, std::size_t last = ToTheEnd);

    /// Makes the picture. False, with the reason in `Error` and no picture, when settings make no sense,
    /// nothing was seen, the lines lie too far apart for one zone, the picture would be too large or `cancel`
    /// was set.
    bool Build();

    const ZrMosaicFrame& Frame() const { return m_frame; }

    const QImage& Image() const { return m_image; } ///< ARGB; null before `Build` has succeeded

    u64 Strips() const { return m_strips; } ///< stretches between two pings of one side that were filled

    u64 Gaps() const { return m_gaps; } ///< those that were left out as gaps

    u64 PixelsSeen() const { return m_seen; }

    QString Error() const { return m_error; } ///< a sentence; empty when all is well

private:
    struct Line;
    struct Work;

    bool Fail(const QString& error);
    QString NoMemory() const;
    bool CheckSettings();
    ZrGeoPoint Middle() const;
    bool PlaceFrame();
    bool HasSamples() const;
    bool IsFar(ZrGeoPoint at) const;
    void PlaceSide(Line& line, int side);
    bool AreJoined(const Line& line, const ZrMosaicPing& a, const ZrMosaicPing& b, double maxTurn) const;
    double AutomaticResolution() const;
    bool FitFrame();
    bool LearnGain();
    bool Draw();
    bool Colour();
    bool Report(double share);

    ZrMosaicSettings m_settings;
    std::vector<std::unique_ptr<Line>> m_lines;
    std::unique_ptr<Work> m_work;
    ZrMosaicFrame m_frame;
    QImage m_image;
    QString m_error;
    u64 m_strips = 0;
    u64 m_gaps = 0;
    u64 m_seen = 0;
    u64 m_placed = 0; ///< pings on the grid, each side for itself
    u64 m_far = 0; ///< likewise, too far from the grid's middle
    u64 m_short = 0; ///< likewise, that show no seabed
    int m_percent = -1;
};
