#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPing.h"

#include <QFile>
#include <QString>

#include <atomic>
#include <cstddef>
#include <vector>

class IZrProgress;
class ZrLogItem;

/// The side-scan pings of a data log: a table of lines with their navigation, and the samples on demand.
///
/// \code
/// ZrSonarLog log;
/// if (!log.Open(path))
///     return log.Error();
/// std::vector<u16> samples;
/// for (std::size_t i = 0; i < log.Pings().size(); ++i)
///     if (log.ReadSamples(i, sidePort, samples)) { … }
/// \endcode
///
/// Opening walks the log once and keeps about 200 bytes for a ping; samples stay in the file. A port and a
/// starboard item make one ping when their ping numbers are equal and their times less than half a second
/// apart, whichever comes first. Lines are in the order of the log, as they were recorded; their poses come
/// from the navigation records of the whole log by time.
///
/// A log that is damaged somewhere gives the pings before the damage: `Open` is true, and `Damage` says where
/// it ends. Items whose payload is damaged or of an unknown format are counted in `Skipped`.
///
/// One thread at a time; `cancel` may be set from any thread.
class ZR_KIT_EXPORT ZrSonarLog
{
public:
    IZrProgress* progress = nullptr; ///< told each whole percent of the log while it is opened; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Open` at the next item

    ZrSonarLog() = default;
    ZrSonarLog(const ZrSonarLog&) = delete;
    ZrSonarLog& operator=(const ZrSonarLog&) = delete;

    /// Reads the table of \p path. False, with the reason in `Error`, when the file cannot be read, is no log
    /// or `cancel` was set; a log without pings is none of these.
    bool Open(const QString& path);

    const QString& Path() const { return m_path; }

    const std::vector<ZrSonarPing>& Pings() const { return m_pings; }

    /// The samples of one side of a ping, nearest first, as 16 bits: 8-bit samples times 257, of 32-bit ones
    /// the upper half. False, and \p samples empty, when that side recorded nothing, the log has changed or
    /// cannot be read.
    bool ReadSamples(std::size_t ping, eSonarSide side, std::vector<u16>& samples);

    QString Error() const { return m_error; } ///< why the last `Open` failed, a sentence; else empty

    QString Damage() const { return m_damage; } ///< where and how the log is damaged; else empty

    std::size_t Skipped() const { return m_skipped; } ///< ping and navigation items that could not be read

private:
    bool ReadPayload(u64 pos, const ZrLogItem& item, u64 most, QByteArray& payload);
    void AddPing(const ZrLogItem& item, u64 pos);

    QString m_path;
    QFile m_file;
    std::vector<ZrSonarPing> m_pings;
    std::size_t m_skipped = 0;
    QString m_error;
    QString m_damage;
};
