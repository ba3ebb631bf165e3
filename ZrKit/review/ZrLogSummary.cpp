#include "ZrKit/review/ZrLogSummary.h"

#include <cmath>

namespace {

/// Widens the extent to \p time; comparisons with NaN are false, so the first time is taken as it is.
void Extend(double& first, double& last, double time)
{
    if (!(time >= first))
        first = time;
    if (!(time <= last))
        last = time;
}

} // namespace

double ZrLogSummary::Type::Rate() const
{
    const double span = lastTime - firstTime;
    if (count < 2 || !(span > 0.0))
        return NoTime;
    return static_cast<double>(count - 1) / span;
}

void ZrLogSummary::Add(const ZrLogItem& item)
{
    ++m_items;
    Type& type = m_types[u32(item.type) << 16 | item.sub];
    type.key = item.RecType();
    ++type.count;
    type.storedBytes += item.storedSize;
    type.dataBytes += item.dataSize;
    if (item.compressed != 0)
        ++type.compressed;
    if (item.source != type.m_lastSource) {
        type.sources.insert(item.source);
        type.m_lastSource = item.source;
    }
    if (!std::isfinite(item.time))
        return;
    Extend(type.firstTime, type.lastTime, item.time);
    Extend(m_firstTime, m_lastTime, item.time);
    if (item.time < m_previousTime)
        ++m_backwardJumps;
    m_previousTime = item.time;
}
