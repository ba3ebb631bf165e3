#pragma once

#include "ZrKit/import/ZrImportLines.h"
#include "ZrKit/import/ZrImportQueue.h"
#include "ZrKit/records/ZrNmeaDecoder.h"

#include <limits>

/// NMEA 0183 sentences, one per line, as a ship's instruments send them.
///
/// Each sound sentence becomes an item of serial text (type 2: its bytes and one zero byte) and the records
/// that `ZrNmeaDecoder` makes of it. Sentences of other kinds are counted as ignored besides, AIS for
/// instance. Lines that are no sentence, or whose checksum is wrong, are left out as issues.
///
/// Time, in this order:
///
/// - The time at which the line was received, when the line begins with one: `yyyy-MM-dd hh:mm:ss` (or with
///   'T', decimals, `Z`, an offset such as `+02:00`), seconds since the epoch (ten digits, perhaps decimals)
///   or milliseconds (thirteen digits), then spaces, tabs, commas or semicolons; or a tag block with `c:`. It
///   is not part of the serial text. Lines without one then carry that of the line before.
/// - The time that the sentences tell, by `ZrNmeaDecoder::Time`.
/// - Lines before the first time carry the first time, so that none is lost; when no line tells any, they
///   carry the time of modification of the file.
///
/// Date of times of day: the one told by the sentences within the first `DateLines` lines (and `DateBytes`
/// bytes), counted back over a midnight for the lines before; else that of the options; else that of the
/// modification of the file (or the day before, when the data would otherwise be younger than the file), with
/// a note. A date told later is used from there on.
class ZrImportNmea final : public ZrImportQueue
{
public:
    static constexpr u64 DateLines = 20000;
    static constexpr u64 DateBytes = 4u << 20;

    /// True when \p head, the first bytes of a file, holds sentences.
    static bool Fits(const QByteArray& head);

    u64 FileSize() const override { return m_lines.Length(); }

protected:
    bool Open(const QString& path, const ZrImportOptions& options, QString* error) override;
    bool ReadMore() override;

private:
    void TakeLine(const QByteArray& line);
    double LineTime(double received);

    ZrImportLines m_lines;
    ZrNmeaDecoder m_decoder;
    double m_startTime = 0.0; ///< for the lines before the first time
    double m_received = std::numeric_limits<double>::quiet_NaN(); ///< time of reception told last
    bool m_hasReceived = false; ///< the times are those of reception
    bool m_noTime = false; ///< `m_startTime` is that of the file
    bool m_dateOfFile = false; ///< the date is that of the file until a sentence tells one
};
