#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <atomic>

class IZrProgress;
struct ZrSurveySeries;

/// Fills the series of a review from a data log, in one pass.
///
/// A row is made of each navigation record, type 16. A log without any has a row for each position fix, type
/// 18: with the latest sounding as altitude, with its offset (transducer below the surface) as depth, and
/// heading or else course from the latest motion record. Values are taken when they are in range: headings
/// and rolls within ±360 and ±180 degrees, pitches within ±90 degrees, depths from −1,000 to 12,000 m,
/// altitudes above 0 up to 12,000 m, speeds up to 50 m/s, positions on the earth. Soundings and motion count
/// for 5 seconds. A navigation record without a position whose depth, altitude and heading are all exactly 0
/// was not filled: nothing of it is known.
///
/// The speed over ground is that of the motion records. Where there is none it comes from the positions: from
/// one 4 seconds ago or more, up to a minute, to that of the row; repeated positions do not count.
///
/// Of a damaged log the rows in front of the damage are read. Payloads that are damaged or of an unknown
/// format are counted in `Skipped`. Samples of the sonar are not read. Memory is that of the rows, twice that
/// while it reads.
///
/// One thread at a time; `cancel` may be set from any thread or a signal handler.
class ZR_KIT_EXPORT ZrSurveySeriesReader
{
public:
    IZrProgress* progress = nullptr; ///< told each whole percent of the log; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Read` at the next item; never cleared here

    /// Replaces \p series. False, with the reason in `Error` and \p series empty, when the file cannot be
    /// read, is no log or `cancel` was set; a log without rows is none of these.
    bool Read(const QString& logPath, ZrSurveySeries& series);

    QString Error() const { return m_error; } ///< why the last `Read` failed, a sentence; else empty

    QString Damage() const { return m_damage; } ///< what is damaged; empty when the log ends cleanly

    u64 DamagePos() const { return m_damagePos; } ///< position of the item that cannot be read

    u64 Skipped() const { return m_skipped; } ///< records that could not be used

    bool IsOfFixes() const { return m_isOfFixes; } ///< the rows are those of position fixes

private:
    bool Fail(const QString& error, ZrSurveySeries& series);

    QString m_error;
    QString m_damage;
    u64 m_damagePos = 0;
    u64 m_skipped = 0;
    bool m_isOfFixes = false;
};
