// The exports of ZrPlayer: parts of a log copied into new files, and the census of its record types.

#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrConsole.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogger.h"
#include "ZrUtil/ZrPlayer.h"
#include "ZrUtil/ZrReadAhead.h"
#include "ZrUtil/ZrSameFile.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <limits>

namespace {

/// Items are gathered into blocks of this size before they are handed to the output file.
constexpr std::size_t gatherSize = std::size_t(1024) * 1024;

void Report(IZrProgress* progress, u64 percent)
{
    if (progress)
        progress->UpdateProgress(static_cast<int>(std::min<u64>(percent, std::numeric_limits<int>::max())));
}

/// Which record types an export lets through.
class TypeFilter
{
public:
    TypeFilter() = default;

    TypeFilter(const u8* table, u16 length)
        : m_all(false)
        , m_table(table)
        , m_length(length)
    {
    }

    bool Passes(u16 type) const { return m_all || (type < m_length && m_table[type] != 0); }

private:
    bool m_all = true;
    const u8* m_table = nullptr;
    u16 m_length = 0;
};

/// The log that is copied from.
class Input
{
public:
    explicit Input(const QString& path)
        : m_file(path)
    {
        if (zr::is_possible_path(path))
            m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    u64 Size() const { return m_size; }

    /// Bytes from \p pos to the end; 0 when \p pos lies beyond it.
    u64 Left(u64 pos) const { return pos < m_size ? m_size - pos : 0; }

    bool CheckHeader()
    {
        if (!m_file.isOpen())
            return false;
        m_size = static_cast<u64>(m_file.size());
        std::array<u8, ZrLogHeader::Size> bytes;
        if (m_size < bytes.size() || !m_ahead.Read(m_file, bytes))
            return false;
        m_pos = bytes.size();
        const ZrLogHeader header = ZrLogHeader::Decode(bytes.data());
        return header.magic == ZrLogHeader::Magic && header.headerSize == ZrLogHeader::Size;
    }

    bool SeekTo(u64 pos)
    {
        m_ahead.Restart();
        m_pos = pos;
        return pos <= static_cast<u64>(std::numeric_limits<qint64>::max())
            && m_file.seek(static_cast<qint64>(pos));
    }

    /// Reads the item at the current place: \p item gets its fields, \p bytes header and payload as they
    /// stand.
    bool ReadItem(ZrLogItem& item, std::vector<u8>& bytes)
    {
        const u8* const header = m_ahead.TakeFresh(m_file, m_pos, ZrLogItem::Size, &ZrLogItem::IsPlaceholder);
        if (!header)
            return false;
        bytes.assign(header, header + ZrLogItem::Size);
        item = ZrLogItem::Decode(bytes.data());
        m_pos += ZrLogItem::Size;
        if (item.magic != ZrLogItem::Magic || item.headerSize != ZrLogItem::Size || !Holds(item.storedSize))
            return false;
        bytes.resize(ZrLogItem::Size + static_cast<std::size_t>(item.storedSize));
        m_pos += item.storedSize;
        return m_ahead.Read(m_file, zr::span<u8>(bytes).subspan(ZrLogItem::Size, item.storedSize));
    }

private:
    /// Whether \p size bytes are left in the file. Asks it only when the size known at opening is not enough:
    /// it may have grown since.
    bool Holds(u64 size) const
    {
        return size <= Left(m_pos) || static_cast<qint64>(m_pos + size) <= m_file.size();
    }

    QFile m_file;
    ZrReadAhead m_ahead;
    u64 m_size = 0; ///< at opening
    u64 m_pos = 0; ///< where the next item is read
};

/// The file that is copied to. What was appended is written at the latest when the object goes.
class Output
{
public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    virtual ~Output() = default;

    void Append(zr::span<u8> bytes)
    {
        if (bytes.size() >= gatherSize) { // large enough by itself: not copied
            Flush();
            m_ok = Write(bytes) && m_ok;
            return;
        }
        m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.end());
        if (m_gathered.size() >= gatherSize)
            Flush();
    }

    /// True when the disk has taken everything so far.
    bool Flush()
    {
        if (!m_gathered.empty())
            m_ok = Write(m_gathered) && m_ok;
        m_gathered.clear();
        return m_ok;
    }

private:
    virtual bool Write(zr::span<u8> bytes) = 0;

    std::vector<u8> m_gathered;
    bool m_ok = true;
};

/// A log with a file header of its own. One that cannot be opened swallows everything: the export then runs
/// to its end all the same.
class LogOutput : public Output
{
public:
    explicit LogOutput(const QString& path)
        : m_logger(nullptr)
    {
        m_logger.OpenFile(path);
    }

    ~LogOutput() override { Flush(); }

    /// False when the disk has refused anything, the file header included.
    bool IsWhole() const { return m_logger.WriteErrors() == 0; }

    void Close() { m_logger.CloseLog(); }

private:
    bool Write(zr::span<u8> bytes) override
    {
        for (std::size_t at = 0; at < bytes.size(); at += maxWrite) {
            const std::size_t count = std::min(maxWrite, bytes.size() - at);
            m_logger.RawWrite(reinterpret_cast<char*>(bytes.data() + at), static_cast<unsigned>(count));
        }
        return IsWhole();
    }

    static constexpr std::size_t maxWrite = 0x40000000; ///< RawWrite takes an unsigned size
    ZrLogger m_logger;
};

/// A plain file without any headers.
class PlainOutput : public Output
{
public:
    explicit PlainOutput(const QString& path)
        : m_file(path)
        , m_open(zr::is_possible_path(path) && m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    {
    }

    ~PlainOutput() override { Flush(); }

    bool IsOpen() const { return m_open; }

private:
    bool Write(zr::span<u8> bytes) override
    {
        const qint64 size = static_cast<qint64>(bytes.size());
        return m_file.write(reinterpret_cast<const char*>(bytes.data()), size) == size;
    }

    QFile m_file;
    bool m_open;
};

struct Segment
{
    u64 from;
    u64 to;
    u64 done; ///< where copying stands, in positions of the input
    u64 count; ///< items copied
};

bool CopySegment(
    Input& input, Output& output, const TypeFilter& filter, Segment& segment, IZrProgress* progress)
{
    ZrLogItem item;
    std::vector<u8> bytes;
    while (segment.done < segment.to && input.Left(segment.done) > ZrLogItem::Size) {
        if (!input.ReadItem(item, bytes))
            return false;
        segment.done += bytes.size();
        if (!filter.Passes(item.type))
            continue;
        ++segment.count;
        output.Append(bytes);
        Report(progress, (segment.done - segment.from) * 100 / (segment.to - segment.from));
    }
    return true;
}

bool FinishLog(LogOutput& output, u64 count)
{
    const bool ok = output.Flush() && output.IsWhole();
    output.Close();
    if (!ok)
        return false;
    qDebug() << "Exported" << count << "Items";
    return true;
}

bool ExportSegment(
    const QString& in, const QString& out, const TypeFilter& filter, u64 from, u64 to, IZrProgress* progress)
{
    Input input(in);
    Report(progress, 0);
    if (!input.CheckHeader() || !input.SeekTo(from) || zr::is_same_file(in, out))
        return false;
    LogOutput output(out);
    Segment segment{from, to, from, 0};
    if (!CopySegment(input, output, filter, segment, progress))
        return false;
    return FinishLog(output, segment.count);
}

/// Copies what passes from the whole of \p input; \p skip bytes of each item's header and payload stay out.
bool CopyFiltered(Input& input, Output& output, const TypeFilter& filter, std::size_t skip, u64& count,
    IZrProgress* progress)
{
    ZrLogItem item;
    std::vector<u8> bytes;
    u64 pos = ZrLogHeader::Size;
    while (input.Left(pos) > ZrLogItem::Size) {
        if (!input.ReadItem(item, bytes))
            return false;
        pos += bytes.size();
        if (filter.Passes(item.type)) {
            ++count;
            output.Append(zr::span<u8>(bytes).subspan(skip, bytes.size() - skip));
        }
        Report(progress, pos * 100 / input.Size());
    }
    return true;
}

bool ExportPayloads(Input& input, const QString& out, const TypeFilter& filter, IZrProgress* progress)
{
    PlainOutput output(out);
    if (!output.IsOpen()) {
        qDebug() << "Failed to open output file: " << out;
        return false;
    }
    u64 count = 0;
    if (!CopyFiltered(input, output, filter, ZrLogItem::Size, count, progress) || !output.Flush())
        return false;
    qDebug() << "Exported" << count << "Items";
    return true;
}

} // namespace

bool ZrPlayer::ExportFileSegment(QString in, QString out, u64 from, u64 to, IZrProgress* progress)
{
    return ExportSegment(in, out, TypeFilter(), from, to, progress);
}

bool ZrPlayer::ExportFileSegment(
    QString in, QString out, u8* typeFilter, u16 filterLen, u64 from, u64 to, IZrProgress* progress)
{
    return ExportSegment(in, out, TypeFilter(typeFilter, filterLen), from, to, progress);
}

bool ZrPlayer::ExportFileSegmentWithVideo(
    QString in, QString out, u64 from, u64 to, u64 lead, IZrProgress* progress)
{
    Input input(in);
    Report(progress, 0);
    if (!input.CheckHeader() || !input.SeekTo(lead) || zr::is_same_file(in, out))
        return false;
    LogOutput output(out);
    ZrLogItem item;
    std::vector<u8> bytes;
    if (!input.ReadItem(item, bytes))
        return false;
    output.Append(bytes);
    if (!input.SeekTo(from))
        return false;
    // The running position counts the lead item's bytes too, so the segment ends that many bytes before `to`.
    Segment segment{from, to, from + bytes.size(), 1};
    if (!CopySegment(input, output, TypeFilter(), segment, progress))
        return false;
    return FinishLog(output, segment.count);
}

bool ZrPlayer::ExportFilteredFile(
    QString in, QString out, u8* typeFilter, u16 filterLen, bool asLog, IZrProgress* progress)
{
    Input input(in);
    Report(progress, 0);
    if (!input.CheckHeader() || zr::is_same_file(in, out))
        return false;
    const TypeFilter filter(typeFilter, filterLen);
    if (!asLog)
        return ExportPayloads(input, out, filter, progress);
    LogOutput output(out);
    u64 count = 0;
    if (!CopyFiltered(input, output, filter, 0, count, progress))
        return false;
    return FinishLog(output, count);
}

void ZrPlayer::ExportIndexInf(const QString& in, const QString& out)
{
    constexpr u16 uncounted = 65535; // has no row of its own, only its share of the total
    std::vector<u64> counts(65536, 0);
    u64 total = 0;
    ZrPlayer player;
    if (player.OpenFile(in)) {
        QObject::connect(
            &player, &ZrPlayer::NewPayload, &player, [&counts](const ZrLogItemInf& inf, zr::span<u8>) {
                if (inf.type < uncounted)
                    ++counts[inf.type];
            });
        while (player.ReadNextItem(true))
            ++total;
        player.CloseFile();
    }
    qDebug() << "Number of items read:" << total;

    QFile file(out);
    if (zr::is_same_file(in, out) || !zr::is_possible_path(out) || !file.open(QIODevice::WriteOnly)) {
        ZrConsole::Debug(0, "Cannot open index information file: %s", qUtf8Printable(out));
        return;
    }
    QByteArray text("Index, Count\r\nTotal, " + QByteArray::number(total) + "\r\n");
    for (std::size_t type = 0; type < uncounted; ++type) {
        if (counts[type] > 0)
            text += QByteArray::number(static_cast<int>(type)) + ", " + QByteArray::number(counts[type])
                + "\r\n";
    }
    if (file.write(text) != text.size() || !file.flush())
        ZrConsole::Debug(0, "Cannot write index information file: %s", qUtf8Printable(out));
}
