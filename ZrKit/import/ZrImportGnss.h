#pragma once

#include "ZrKit/import/ZrImportCsv.h"

struct ZrDepthRecord;
struct ZrFixRecord;

/// Tables of a hydrographic logger: satellite positions, or soundings of a single-beam echo sounder.
///
/// Fields between semicolons; the first line names the columns. `Timestamp` (`yyyy-MM-dd hh:mm:ss.zzzzzz`,
/// UTC, all decimals are kept) must be there, and `Longitude` with `Latitude`, or `Depth`:
///
/// | Column | In the file | Record and field |
/// |---|---|---|
/// | Longitude, Latitude | degrees, east and north positive | `ZrFixRecord` longitude, latitude |
/// | EllipsoidalHeight | metres above the ellipsoid | `ZrFixRecord` height |
/// | Status | see below | `ZrFixRecord` quality |
/// | Service | constellations used | not taken |
/// | Depth | metres below the transducer | `ZrDepthRecord` depth |
///
/// Status -1 (no fix) is quality 0, 0 (a plain fix) quality 1, 1 and 2 (corrected by satellites, by stations
/// on the ground) quality 2, for the file does not say by which kind of correction.
///
/// A position 0,0 and a depth of 0 or less mean that there is none: NaN, with a note. A row whose position
/// lies off the globe or whose field is no number is left out.
class ZrImportGnss final : public ZrImportCsv
{
public:
    /// True when \p head, the first bytes of a file, begins with the header row of such a table.
    static bool Fits(const QByteArray& head);

protected:
    bool Open(const QString& path, const ZrImportOptions& options, QString* error) override;
    bool ReadMore() override;

private:
    double Time();
    ZrFixRecord Fix();
    ZrDepthRecord Sounding();
    u8 Quality();

    int m_time = -1;
    int m_longitude = -1;
    int m_latitude = -1;
    int m_height = -1;
    int m_status = -1;
    int m_depth = -1;
};
