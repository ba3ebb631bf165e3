#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <cstddef>
#include <memory>

/// Writes a data log whose items carry the time of their data rather than the time of writing.
///
/// For imports, conversions and repairs: the bytes are those that `ZrLogger::LogData` would have written at
/// the given times, but the final header is written at once and in blocks of 1 MiB. The log is built in a
/// temporary file in the target's folder (without a name where the system has such files) and takes its place
/// only in `Commit`, in one step; until then, and after any failure, an existing target is untouched.
/// Destroying a writer that was not committed removes the temporary file.
///
/// \code
/// ZrLogWriter log;
/// bool ok = log.Open(path, firstTime);
/// for (const ZrDecodedRecord& r : records)
///     ok = ok && log.Write(r.type, source, r.format, time, false, zr::bytes_of(r.payload));
/// if (!ok || !log.Commit())
///     return log.Error();
/// \endcode
///
/// Errors: once `Open` failed or the disk refused a write, every later call fails with the same reason,
/// `Commit` too, until the next `Open`. A refused argument (too large, not an item) leaves the log as it was,
/// and writing may go on.
///
/// Live recording is the task of `ZrLogger`. One thread at a time.
class ZR_KIT_EXPORT ZrLogWriter
{
public:
    static constexpr std::size_t MaxPayload = 0x7FFFFFFF; ///< bytes, payloads stored as they are
    /// Bytes of payloads to be compressed: what cannot be compressed grows a little and must stay below 2
    /// GiB.
    static constexpr std::size_t MaxCompressed = 2000000000;

    ZrLogWriter();
    ~ZrLogWriter();
    ZrLogWriter(const ZrLogWriter&) = delete;
    ZrLogWriter& operator=(const ZrLogWriter&) = delete;

    /// Begins a log for \p path whose header says \p created (seconds since the epoch). A log begun before
    /// and not committed is dropped. False, with the reason in `Error`, when the temporary file cannot be
    /// created or \p path is a symbolic link.
    bool Open(const QString& path, double created);

    /// Appends one item. False when it cannot be written (the reason stays in `Error`) or the payload is
    /// larger than `MaxPayload`, with \p compress `MaxCompressed`. The payload is only read during the call.
    bool Write(CRecType type, u16 source, u16 format, double time, bool compress, zr::span<u8> payload);

    /// Appends header and payload of an item of another log unchanged (\p headerAndPayload begins with the 40
    /// bytes). False also when it does not begin with an item header or is not as long as that says.
    bool WriteRaw(zr::span<u8> headerAndPayload);

    /// Puts the finished log in the place of \p path and closes it; permissions of an existing file stay.
    /// False when the disk did not take it all; nothing is replaced then.
    bool Commit();

    u64 Items() const; ///< items accepted since `Open`
    u64 Bytes() const; ///< bytes of the log so far, the file header included
    QString Error() const; ///< why the last failing call since `Open` failed, a sentence with the path

private:
    struct Private;
    std::unique_ptr<Private> d;
};
