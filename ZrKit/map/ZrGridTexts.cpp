#include "ZrKit/map/ZrGridTexts.h"

#include "ZrKit/map/ZrMapObstacles.h"

#include <algorithm>

namespace {

class Choice
{
public:
    Choice(const std::vector<QRectF>& taken, const ZrMapObstacles& obstacles, double clear)
        : m_obstacles(obstacles)
        , m_clear(clear)
        , m_taken(taken)
    {
    }

    /// Takes the first place of \p line of one of the kinds up to \p most that is free. False when none is.
    bool Take(const ZrGridTexts::Line& line, ZrGridLines::ePlace most, bool isOverLines)
    {
        for (const ZrGridLines::Place& place : line.places) {
            if (place.kind > most || !IsFree(place.box, isOverLines))
                continue;
            // Each keeps as much free: between two of them there is twice as much.
            m_taken.push_back(place.box.adjusted(-m_clear, 0.0, m_clear, 0.0));
            m_labels.push_back(place.label);
            return true;
        }
        return false;
    }

    std::vector<ZrMapLabel> Labels() && { return std::move(m_labels); }

private:
    bool IsFree(const QRectF& box, bool isOverLines) const
    {
        const QRectF around = box.adjusted(-m_clear, -m_clear, m_clear, m_clear);
        const auto isHit = [&around](const QRectF& other) { return other.intersects(around); };
        return std::none_of(m_taken.begin(), m_taken.end(), isHit) && !m_obstacles.HasMark(around)
            && (isOverLines || !m_obstacles.HasLine(around));
    }

    const ZrMapObstacles& m_obstacles;
    double m_clear;
    std::vector<QRectF> m_taken;
    std::vector<ZrMapLabel> m_labels;
};

} // namespace

std::vector<ZrMapLabel> ZrGridTexts::Choose(const std::vector<Line>& lines, const std::vector<QRectF>& taken,
    const ZrMapObstacles& obstacles, double clear)
{
    struct Try
    {
        ZrGridLines::ePlace most;
        bool isOverLines;
    };

    constexpr Try others[] = {
        {ZrGridLines::atOtherEdge, false}, {ZrGridLines::alongLine, false}, {ZrGridLines::alongLine, true}};
    Choice choice(taken, obstacles, clear);
    bool hasText[2] = {false, false};
    for (const Line& line : lines) {
        bool& has = hasText[line.isNorthSouth ? 1 : 0];
        has = choice.Take(line, ZrGridLines::atEdge, false) || has;
    }
    for (const bool isNorthSouth : {true, false}) {
        bool& has = hasText[isNorthSouth ? 1 : 0];
        for (const Try& other : others) {
            for (const Line& line : lines)
                has = has
                    || (line.isNorthSouth == isNorthSouth
                        && choice.Take(line, other.most, other.isOverLines));
        }
    }
    return std::move(choice).Labels();
}
