#include "ZrKit/sonar/ZrBottomLine.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

bool IsAltitude(double metres)
{
    return std::isfinite(metres) && metres >= 0.0;
}

} // namespace

ZrBottomLine::ZrBottomLine(std::size_t pings)
    : m_found(pings, unknown)
    , m_edited(pings, unknown)
{
}

double ZrBottomLine::Altitude(std::size_t ping) const
{
    if (ping >= m_found.size())
        return unknown;
    return IsEdited(ping) ? m_edited[ping] : m_found[ping];
}

bool ZrBottomLine::IsEdited(std::size_t ping) const
{
    return ping < m_edited.size() && !std::isnan(m_edited[ping]);
}

void ZrBottomLine::SetFound(std::vector<double> altitudes)
{
    m_found = std::move(altitudes);
    for (double& altitude : m_found) {
        if (!IsAltitude(altitude))
            altitude = unknown;
    }
    m_edited.resize(m_found.size(), unknown);
}

bool ZrBottomLine::Draw(std::size_t first, double from, std::size_t last, double to)
{
    if (first > last) {
        std::swap(first, last);
        std::swap(from, to);
    }
    if (!IsAltitude(from) || !IsAltitude(to) || first >= m_edited.size())
        return false;
    const double steps = static_cast<double>(last - first);
    for (std::size_t i = first; i <= std::min(last, m_edited.size() - 1); ++i) {
        const double share = last == first ? 0.0 : static_cast<double>(i - first) / steps;
        m_edited[i] = from + (to - from) * share;
    }
    return true;
}

void ZrBottomLine::Clear(std::size_t first, std::size_t last)
{
    if (first > last)
        std::swap(first, last);
    for (std::size_t i = first; i <= last && i < m_edited.size(); ++i)
        m_edited[i] = unknown;
}

void ZrBottomLine::SetEdited(std::size_t first, zr::span<const double> altitudes)
{
    if (first >= m_edited.size())
        return;
    const std::size_t count = std::min(altitudes.size(), m_edited.size() - first);
    for (std::size_t i = 0; i < count; ++i)
        m_edited[first + i] = IsAltitude(altitudes[i]) ? altitudes[i] : unknown;
}
