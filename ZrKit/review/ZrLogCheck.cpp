#include "ZrKit/review/ZrLogCheck.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrRecordText.h"
#include "ZrKit/review/ZrLogRecovery.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/IZrProgress.h"

#include <QFile>

#include <algorithm>
#include <cmath>

namespace {

/// What is wrong inside the item \p item at \p pos of \p file; empty when nothing is.
QString ContentProblem(QFile& file, const ZrLogItem& item, u64 pos, std::vector<u8>& stored)
{
    if (!std::isfinite(item.time))
        return QStringLiteral("the time of the item is no number");
    const bool known = !zr::rec_type_name(item.RecType()).isEmpty();
    if (!known && item.compressed == 0)
        return QString();
    stored.resize(item.storedSize);
    const qint64 size = static_cast<qint64>(stored.size());
    if (!file.seek(static_cast<qint64>(pos + ZrLogItem::Size))
        || file.read(reinterpret_cast<char*>(stored.data()), size) != size)
        return QStringLiteral("the payload cannot be read");
    QByteArray data;
    QString error;
    if (!zr::unpack_payload(item, stored, &data, &error))
        return error;
    if (known && zr::record_fields(ZrLogItemInf(item), zr::bytes_of(data), &error).empty()
        && !error.isEmpty())
        return error;
    return QString();
}

/// Hands the percentage on, and at each step the wish to cancel from one flag to another.
class CancellingProgress final : public IZrProgress
{
public:
    CancellingProgress(IZrProgress* next, const std::atomic<bool>& from, std::atomic<bool>& to)
        : m_next(next)
        , m_from(from)
        , m_to(to)
    {
    }

    void UpdateProgress(int percent) override
    {
        m_percent = percent;
        if (m_from)
            m_to = true;
        if (m_next)
            m_next->UpdateProgress(percent);
    }

    int GetProgress() override { return m_percent; }

private:
    IZrProgress* m_next;
    const std::atomic<bool>& m_from;
    std::atomic<bool>& m_to;
    int m_percent = 0;
};

} // namespace

void ZrLogCheck::Add(u64 pos, u64 length, const QString& text)
{
    ++m_count;
    if (m_problems.size() < MaxProblems)
        m_problems.push_back({pos, length, text});
}

bool ZrLogCheck::Run(const QString& path)
{
    m_problems.clear();
    m_damage.clear();
    m_count = m_items = m_jumps = 0;
    m_error.clear();
    if (!CheckStructure(path) || !CheckContents(path))
        return false;
    std::stable_sort(m_problems.begin(), m_problems.end(),
        [](const Problem& a, const Problem& b) { return a.pos < b.pos; });
    return true;
}

bool ZrLogCheck::CheckStructure(const QString& path)
{
    ZrLogRecovery recovery;
    CancellingProgress steps(progress, cancel, recovery.cancel);
    recovery.progress = &steps;
    const bool found = recovery.Examine(path);
    const ZrLogRecovery::Result& report = recovery.Report();
    if (!found && recovery.State() != ZrLogRecovery::NothingFound) {
        m_error = recovery.Error();
        return false;
    }
    if (!found)
        Add(0, report.sourceBytes, QStringLiteral("neither a log header nor an item"));
    for (const ZrLogRecovery::Range& range : report.ranges) {
        m_damage.push_back({range.offset, range.length, QString()});
        Add(range.offset, range.length, ZrLogRecovery::ReasonText(range.reason));
    }
    m_count += report.rangeCount - report.ranges.size();
    if (report.repaired > 0)
        Add(report.sourceBytes, 0,
            QStringLiteral("items whose writer was interrupted and that can be completed: %1")
                .arg(report.repaired));
    return true;
}

/// Where sound items may go on behind damage met at \p pos; the position itself when nothing is known.
u64 ZrLogCheck::EndOfDamageAt(u64 pos) const
{
    for (const Problem& damage : m_damage) {
        if (damage.pos + damage.length > pos)
            return damage.pos + damage.length;
    }
    return pos;
}

bool ZrLogCheck::CheckContents(const QString& path)
{
    ZrLogScan scan;
    QFile file(path);
    if (!scan.Open(path) || !file.open(QIODevice::ReadOnly)) {
        // Damage of the file header is a finding of the first pass; a file that cannot be opened is not.
        m_error = scan.State() == ZrLogScan::Unreadable ? scan.Error() : QString();
        return m_error.isEmpty();
    }
    ZrLogItem item;
    std::vector<u8> stored;
    u64 pos = 0;
    double before = -std::numeric_limits<double>::infinity();
    while (!cancel) {
        if (!scan.Next(item, pos)) {
            const u64 next
                = scan.State() == ZrLogScan::Damaged ? EndOfDamageAt(scan.ErrorPos()) : scan.FileSize();
            if (next >= scan.FileSize() || next <= scan.ErrorPos() || !scan.SeekTo(next))
                return true;
            continue;
        }
        ++m_items;
        m_jumps += item.time < before ? 1 : 0;
        before = item.time;
        const QString problem = ContentProblem(file, item, pos, stored);
        // What the first pass has found already is not told twice.
        const auto same = [pos](const Problem& damage) { return damage.pos == pos; };
        if (!problem.isEmpty() && std::none_of(m_damage.begin(), m_damage.end(), same))
            Add(pos, ZrLogItem::Size + u64(item.storedSize), problem);
    }
    m_error = QStringLiteral("The check was cancelled.");
    return false;
}
