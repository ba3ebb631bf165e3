#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QFile>
#include <QObject>
#include <QString>

#include <atomic>
#include <initializer_list>
#include <mutex>
#include <vector>

struct ZrLogItem;

/// State of a log writer, see `ZrLogger::state`.
enum elogState : int
{
    lsClosed = 0, ///< no log is open
    lsOpening = 1, ///< `OpenFile` is creating the file
    lsClosing = 2, ///< `CloseLog` is closing the file
    lsLogging = 3 ///< items are written
};

/// Writes the data log of a mission: one binary file, a 48-byte header (`ZrLogHeader`) and then items
/// (`ZrLogItem` and payload), each stamped with the wall-clock time of its writing.
///
/// \code
/// ZrLogger log(nullptr);
/// log.SetLogDirectory(QStringLiteral("/data/logs"));
/// log.OpenLog();                                        // /data/logs/20210303_140509.log
/// log.LogData(CRecType(0, 16), source, format, false, { zr::bytes_of(payload) });
/// log.CloseLog();
/// \endcode
///
/// Threads: any thread may call `LogData`, `LogSerStr`, `OpenLog`, `OpenFile`, `CloseLog`, `DiskSpace` and
/// `SetLogDirectory`; each holds `mutex` for its whole duration, so items are never interleaved; what it has
/// to print comes after the lock is released, so that a message handler may itself log here (`OpenLog` also
/// releases it between finding the name and `OpenFile`). `LogState`, `IsActive`, `ToggleLogging` and
/// `WriteErrors` read atomics. `RawWrite`, `Decorate`, `LogDir` and `CurFile` take no lock and belong to the
/// owning thread.
///
/// Durability: the file is written without a buffer of its own. When `LogData` returns the whole item is with
/// the operating system, so the death of the process loses no item whose call had returned.
///
/// Errors: a file that cannot be created leaves the state closed and prints "Cannot open file: " and the
/// path; later items are then ignored. A write that fails does not stop the recording and the counters
/// advance as if it had succeeded; `WriteErrors` counts the items it happened to.
class ZR_UTIL_EXPORT ZrLogger : public QObject
{
    Q_OBJECT

public:
    using elogState = ::elogState;

    QString logDir; ///< where `OpenLog` creates files; initially the user's documents; empty: the root
    QString ext; ///< extension with its dot, initially ".log"
    QString prefix; ///< file-name prefix, initially empty
    QString curFile; ///< full path of the file being (or last) written
    QFile file;
    u16 cipherId = 0; ///< travels with the writer; the file is never encrypted
    u64 cipherKey = 0; ///< travels with the writer; the file is never encrypted
    u32 itemCount = 0; ///< items written to the current file
    u64 bytesWritten = 0; ///< header and payload bytes written to the current file
    std::mutex mutex; ///< guards every member above, and `scratch`
    std::atomic<elogState> state{lsClosed};
    std::vector<u8> scratch; ///< gathers the spans of a payload to be compressed; keeps its capacity

    explicit ZrLogger(QObject* parent);
    ~ZrLogger() override;

    /// Opens a new log in `logDir`, named by `prefix`, the local time and `ext`; creates the directory.
    ///
    /// Two logs opened in the same second share a name, and the second truncates the first.
    void OpenLog();

    /// Makes \p path the current log, truncating it, and writes the file header. An open log is closed first.
    void OpenFile(QString path);

    /// Closes the current log; harmless when none is open.
    void CloseLog();

    /// Closes the log when one is being written, otherwise opens a new one.
    void ToggleLogging();

    /// Appends one item whose payload is \p parts one after the other; does nothing unless logging.
    ///
    /// With \p compress the payload is stored as the output of `qCompress` at level 1. The spans are only
    /// read, and only during the call. A payload of 2 GiB or more (to be compressed: above 2,126,221,300
    /// bytes) is refused with a line on the debug output, because neither the size fields nor the compressor
    /// could hold it.
    void LogData(
        CRecType type, u16 source, u16 format, bool compress, std::initializer_list<zr::span<u8>> parts);

    /// As above with source 0, sub-type 0, not compressed.
    void LogData(eRecordType type, u16 format, std::initializer_list<zr::span<u8>> parts);
    /// As above with source 0 and sub-type 0.
    void LogData(eRecordType type, u16 format, bool compress, std::initializer_list<zr::span<u8>> parts);
    /// As above with source 0, sub-type 0 and a single span.
    void LogData(eRecordType type, u16 format, bool compress, zr::span<u8> part);

    /// Appends \p text as a serial-text item: its Latin-1 bytes and one zero byte.
    void LogSerStr(const QString& text);

    /// Writes \p size bytes as they are, without an item header and without counting them, if the file is
    /// open.
    void RawWrite(char* data, unsigned size);

    /// Sets prefix and extension (with its dot) of the names that `OpenLog` makes from now on.
    void Decorate(QString prefix, QString ext);

    QString LogDir() const;
    QString CurFile() const;
    elogState LogState() const;
    /// True while items are written.
    bool IsActive() const;

    /// Bytes available to the user on the volume that holds `logDir`; -1 when the volume is unknown.
    qint64 DiskSpace();

    /// A short text for a byte count: "Empty", "1024b", "1.0Kb", "5.0Gb". The bounds belong to the lower
    /// unit.
    static QString SpaceStr(u64 bytes);

    /// Items, raw writes and file header of the current file that the operating system did not take whole (a
    /// full or vanished disk, or something that cannot seek, so that no item's header can be completed), and
    /// items that were left out because the memory did not suffice to compress them.
    /// Readable from any thread.
    u64 WriteErrors() const;

public Q_SLOTS:
    /// Sets the directory of new logs and creates its path.
    void SetLogDirectory(QString dir);

private:
    friend class tst_ZrLogger;

    void SetupEncryption(u16 cipherId, u64 key);
    bool WriteBytes(const void* data, u64 size);
    bool Seek(qint64 position);
    QByteArray Pack(std::initializer_list<zr::span<u8>> parts);
    bool WritePayload(ZrLogItem& item, std::initializer_list<zr::span<u8>> parts);
    bool WritePacked(ZrLogItem& item, const QByteArray& packed);
    void WriteItem(ZrLogItem& item, std::initializer_list<zr::span<u8>> parts);

    bool m_seekable = false; ///< guarded by `mutex`
    std::atomic<u64> m_writeErrors{0};
};
