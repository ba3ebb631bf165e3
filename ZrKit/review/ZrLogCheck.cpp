#include "ZrKit/review/ZrLogCheck.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrRecordText.h"
#include "ZrKit/review/ZrUnpack.h"

#include <QCoreApplication>

#include <cmath>
#include <limits>

namespace {

constexpr u64 nowhere = ~u64{0};

/// What is wrong inside an item that is whole; empty when nothing is.
QString ContentProblem(const ZrLogRecovery::Kept& item)
{
    if (!std::isfinite(item.header.time))
        return QCoreApplication::translate("ZrLogCheck", "the time of the item is no number");
    const bool known = !zr::rec_type_name(item.header.RecType()).isEmpty();
    if (!known && item.header.compressed == 0)
        return QString();
    QByteArray data;
    QString error;
    if (!zr::unpack_payload(item.header, item.payload, &data, &error))
        return error;
    if (known && zr::record_fields(ZrLogItemInf(item.header), zr::bytes_of(data), &error).empty()
        && !error.isEmpty())
        return error;
    return QString();
}

} // namespace

void ZrLogCheck::Add(u64 pos, u64 length, const QString& text)
{
    ++m_count;
    m_lastProblem = pos;
    if (m_problems.size() < MaxProblems)
        m_problems.push_back({pos, length, text});
}

void ZrLogCheck::TakeItem(const ZrLogRecovery::Kept& item)
{
    // A log that begins with an item has lost nothing that a range could tell, but no player opens it.
    if (item.pos == 0)
        Add(0, 0, ZrLogRecovery::ReasonText(ZrLogRecovery::BrokenFileHeader));
    ++m_items;
    if (std::isfinite(item.header.time)) {
        m_jumps += item.header.time < m_lastTime ? 1 : 0;
        m_lastTime = item.header.time;
    }
    if (item.pos == m_lastProblem)
        return;
    const QString problem = item.repaired
        ? QCoreApplication::translate("ZrLogCheck", "its writer was interrupted; the item can be completed")
        : ContentProblem(item);
    if (!problem.isEmpty())
        Add(item.pos, ZrLogItem::Size + item.payload.size(), problem);
}

bool ZrLogCheck::Run(const QString& path)
{
    m_problems.clear();
    m_count = m_items = m_jumps = 0;
    m_lastProblem = nowhere;
    m_lastTime = std::numeric_limits<double>::quiet_NaN();
    m_error.clear();
    m_recovery.progress = progress;
    m_recovery.rangeFound = [this](const ZrLogRecovery::Range& range) {
        Add(range.offset, range.length, ZrLogRecovery::ReasonText(range.reason));
    };
    m_recovery.itemKept = [this](const ZrLogRecovery::Kept& item) { TakeItem(item); };
    const bool found = m_recovery.Examine(path);
    m_recovery.progress = nullptr;
    if (found)
        return true;
    switch (m_recovery.State()) {
    case ZrLogRecovery::NothingFound:
        // Says all that the ranges say.
        m_problems.clear();
        m_count = 0;
        Add(0, m_recovery.Report().sourceBytes,
            QCoreApplication::translate("ZrLogCheck", "neither a log header nor an item"));
        return true;
    case ZrLogRecovery::Cancelled:
        m_error = QCoreApplication::translate("ZrLogCheck", "The check was cancelled.");
        return false;
    default:
        m_error = m_recovery.Error();
        return false;
    }
}
