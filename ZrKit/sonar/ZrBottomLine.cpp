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

/// What is found of no pings.
const std::shared_ptr<const std::vector<double>>& ZrBottomLine::Nothing()
{
    static const auto nothing = std::make_shared<const std::vector<double>>();
    return nothing;
}

ZrBottomLine::ZrBottomLine(ZrBottomLine&& other) noexcept
    : m_found(std::exchange(other.m_found, Nothing()))
    , m_edited(std::exchange(other.m_edited, {}))
{
}

ZrBottomLine& ZrBottomLine::operator=(ZrBottomLine&& other) noexcept
{
    m_found = std::exchange(other.m_found, Nothing());
    m_edited = std::exchange(other.m_edited, {});
    return *this;
}

ZrBottomLine::ZrBottomLine(std::size_t pings)
    : m_found(std::make_shared<const std::vector<double>>(pings, unknown))
{
}

double ZrBottomLine::Altitude(std::size_t ping) const
{
    if (ping >= m_found->size())
        return unknown;
    return IsEdited(ping) ? m_edited[ping] : (*m_found)[ping];
}

bool ZrBottomLine::IsEdited(std::size_t ping) const
{
    return !std::isnan(EditedAltitude(ping));
}

double ZrBottomLine::EditedAltitude(std::size_t ping) const
{
    return ping < m_edited.size() ? m_edited[ping] : unknown;
}

std::vector<double> ZrBottomLine::Edited() const
{
    return m_edited.empty() ? std::vector<double>(Count(), unknown) : m_edited;
}

void ZrBottomLine::MakeEdits()
{
    if (m_edited.empty())
        m_edited.resize(Count(), unknown);
}

void ZrBottomLine::SetFound(std::vector<double> altitudes)
{
    for (double& altitude : altitudes) {
        if (!IsAltitude(altitude))
            altitude = unknown;
    }
    m_found = std::make_shared<const std::vector<double>>(std::move(altitudes));
    if (!m_edited.empty())
        m_edited.resize(Count(), unknown);
}

bool ZrBottomLine::Draw(std::size_t first, double from, std::size_t last, double to)
{
    if (first > last) {
        std::swap(first, last);
        std::swap(from, to);
    }
    if (!IsAltitude(from) || !IsAltitude(to) || first >= Count())
        return false;
    MakeEdits();
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
    const auto isSet = [](double altitude) { return IsAltitude(altitude); };
    if (first >= Count() || (m_edited.empty() && std::none_of(altitudes.begin(), altitudes.end(), isSet)))
        return;
    MakeEdits();
    const std::size_t count = std::min(altitudes.size(), m_edited.size() - first);
    for (std::size_t i = 0; i < count; ++i)
        m_edited[first + i] = IsAltitude(altitudes[i]) ? altitudes[i] : unknown;
}
