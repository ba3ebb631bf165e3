#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPings.h"

#include <QFile>
#include <QString>

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

class IZrProgress;
class ZrLogScan;
struct ZrLogItem;

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
/// Opening walks the log once, in less than twice the time of a `ZrLogScan`, and keeps some 17 bytes for a
/// ping and 44 for a navigation record (`ZrSonarPings`); of compressed pings only the first fields are
/// decompressed, some microseconds each. All samples stay in the file. A port and a starboard item make one
/// ping when they have the same source, equal ping numbers and times less than half a second apart, whichever
/// comes first; up to 64 pings may be waiting for their other side. Lines are in the order of the log, as
/// they were recorded; the time of a line is that of its first item, its pose comes from the navigation
/// records of the whole log by time. The side is told by the sub-type of the item.
///
/// A log that is damaged somewhere gives the pings before the damage: `Open` is true, and `Damage` says where
/// it ends. Items whose first fields are damaged or not usable (no finite time, no slant range from 0.1 m to
/// 50 km), or that are of an unknown format, are counted in `Skipped`; damaged samples show in `ReadSamples`.
///
/// One thread at a time; `cancel` may be set from any thread or a signal handler.
class ZR_KIT_EXPORT ZrSonarLog
{
public:
    IZrProgress* progress = nullptr; ///< told each whole percent of the log while it is opened; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Open` at the next item; never cleared here

    ZrSonarLog() = default;
    ZrSonarLog(const ZrSonarLog&) = delete;
    ZrSonarLog& operator=(const ZrSonarLog&) = delete;

    /// Reads the table of \p path. False, with the reason in `Error` and an empty table, when the file cannot
    /// be read, is no log or `cancel` was set; a log without pings is none of these.
    bool Open(const QString& path);

    /// Takes over the table of \p other, which was opened, and opens its file: for a thread of its own,
    /// without walking the log once more. False, with the reason in `Error` and an empty table, when that
    /// cannot be.
    bool OpenAs(const ZrSonarLog& other);

    const QString& Path() const { return m_path; }

    const ZrSonarPings& Pings() const { return m_pings; }

    /// Gives up what \p series, read from the same log, holds of the navigation: see `ZrSonarNav::Share`.
    /// Before `Pings` are given to others.
    void ShareNavigation(std::shared_ptr<const ZrSurveySeries> series);

    /// The samples of one side of a ping, nearest first, as 16 bits: 8-bit samples times 257, of 32-bit ones
    /// the upper half. False, and \p samples empty, when that side recorded nothing, its samples are damaged,
    /// or the log has changed since it was opened or cannot be read.
    bool ReadSamples(std::size_t ping, eSonarSide side, std::vector<u16>& samples);

    QString Error() const { return m_error; } ///< why the last `Open` failed, a sentence; else empty

    /// What is damaged and where, "reason (at position N)"; empty when the log ends cleanly.
    QString Damage() const;

    QString DamageReason() const { return m_damage; } ///< what is damaged alone; empty when nothing is

    u64 DamagePos() const { return m_damagePos; } ///< where the item that cannot be read starts, in bytes

    u64 FileSize() const { return m_fileSize; } ///< bytes of the log when it was opened

    /// Ping and navigation items that could not be used.
    std::size_t Skipped() const { return m_skipped; }

private:
    bool Fail(const QString& error);
    void Clear();
    bool ReadTable(ZrLogScan& scan);
    bool ReadStart(ZrLogScan& scan, const ZrLogItem& item, u32 most, QByteArray& start) const;
    void AddNav(ZrLogScan& scan, const ZrLogItem& item);
    void AddPing(ZrLogScan& scan, const ZrLogItem& item, u64 pos);
    bool Complete(u32 number, const ZrLogItem& item, const ZrSonarChannel& channel);
    bool ReadItem(u64 pos, ZrLogItem& item, QByteArray& payload);

    QString m_path;
    QFile m_file;
    u64 m_fileSize = 0;
    ZrSonarPings m_pings;
    std::shared_ptr<ZrSonarPingTable> m_table; ///< of `m_pings`; null before they are there
    std::shared_ptr<ZrSonarNav> m_nav; ///< likewise
    std::vector<std::size_t> m_waiting; ///< pings that may still get their other side, oldest first
    std::size_t m_skipped = 0;
    QString m_error;
    QString m_damage;
    u64 m_damagePos = 0;
};
