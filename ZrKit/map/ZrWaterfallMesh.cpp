#include "ZrKit/map/ZrWaterfallMesh.h"

#include "ZrKit/sonar/ZrSlantRange.h"

#include <algorithm>
#include <cmath>

namespace {

using Row = ZrWaterfallLayout::Row;
using Vertex = ZrWaterfallMesh::Vertex;

constexpr double mostError = 0.5; ///< pixels between a sample's place and the square root's
constexpr double mostShift = 0.25; ///< pixels by which one altitude for several lines moves samples

/// Lines in one quad; along in pixels from the edge of the newest lines.
struct Band
{
    double from;
    double to;
    double tFrom;
    double tTo;
};

/// The triangles of one draw.
struct Group
{
    eSonarSide side;
    int page;
    float perRange;
    std::vector<Vertex> vertices;
};

class Builder
{
public:
    Builder(const ZrWaterfallLayout& layout, const ZrWaterfallMesh::Settings& settings, eSonarSide side,
        std::vector<Group>& groups)
        : m_layout(layout)
        , m_settings(settings)
        , m_side(side)
        , m_groups(groups)
    {
    }

    void Build();

private:
    int PageOf(const Row& row) const { return row.row / m_settings.pageRows; }

    double TextureRow(const Row& row, double part) const
    {
        return (row.row % m_settings.pageRows + part) / m_settings.pageRows;
    }

    double AltitudeOf(const Row& row) const
    {
        return m_layout.IsSlantCorrected() && !std::isnan(row.altitude) ? row.altitude : 0.0;
    }

    bool IsDrawn(const Row& row) const { return row.isThere && row.count[m_side] > 0; }

    bool IsNeighbour(const Row& row, const Row& older) const;
    bool IsSameBand(const Row& first, const Row& row) const;
    void AddBand(std::size_t first, std::size_t last);
    void AddQuad(Band band, const Row& row);
    Group& GroupOf(const Row& row);

    const ZrWaterfallLayout& m_layout;
    const ZrWaterfallMesh::Settings& m_settings;
    eSonarSide m_side;
    std::vector<Group>& m_groups;
};

void Builder::Build()
{
    const std::vector<Row>& rows = m_layout.Rows();
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t last = i;
        while (last + 1 < rows.size() && IsNeighbour(rows[last], rows[last + 1])
            && IsSameBand(rows[i], rows[last + 1]))
            ++last;
        if (IsDrawn(rows[i]))
            AddBand(i, last);
        i = last + 1;
    }
}

/// Whether the texture goes on from \p row to the next older one as the view does.
bool Builder::IsNeighbour(const Row& row, const Row& older) const
{
    return IsDrawn(row) && IsDrawn(older) && PageOf(row) == PageOf(older) && row.row == older.row + 1
        && row.to == older.from && row.range[m_side] == older.range[m_side]
        && row.count[m_side] == older.count[m_side];
}

bool Builder::IsSameBand(const Row& first, const Row& row) const
{
    constexpr double rounding = 1e-6;
    const double a = AltitudeOf(first);
    const double b = AltitudeOf(row);
    // Nearest to the middle, where an altitude moves samples most: from 0 to this.
    const double shift = std::sqrt(std::fabs(a * a - b * b)) / m_layout.MetresPerPixel();
    const bool isFlat = a == 0.0;
    return std::fabs((first.to - first.from) - (row.to - row.from)) < rounding && isFlat == (b == 0.0)
        && shift <= mostShift;
}

void Builder::AddBand(std::size_t first, std::size_t last)
{
    const std::vector<Row>& rows = m_layout.Rows();
    const Row& newest = rows[first];
    const Row& oldest = rows[last];
    Band band{newest.from, oldest.to, TextureRow(newest, 1.0), TextureRow(oldest, 0.0)};
    if (m_settings.isSmooth && (first == 0 || !IsNeighbour(rows[first - 1], newest))) {
        // Up to the middle of its line the texture would be blended with a row that is no neighbour.
        const double middle = TextureRow(newest, 0.5);
        const double to = (newest.from + newest.to) / 2.0;
        AddQuad({band.from, to, middle, middle}, newest);
        band.from = to;
        band.tFrom = middle;
    }
    if (m_settings.isSmooth && (last + 1 == rows.size() || !IsNeighbour(oldest, rows[last + 1]))) {
        const double middle = TextureRow(oldest, 0.5);
        const double from = (oldest.from + oldest.to) / 2.0;
        AddQuad({from, band.to, middle, middle}, newest);
        band.to = from;
        band.tTo = middle;
    }
    AddQuad(band, newest);
}

void Builder::AddQuad(Band band, const Row& row)
{
    const double height = m_layout.View().rect.height();
    const double slope = band.to > band.from ? (band.tTo - band.tFrom) / (band.to - band.from) : 0.0;
    if (band.from < 0.0) {
        band.tFrom -= slope * band.from;
        band.from = 0.0;
    }
    if (band.to > height) {
        band.tTo -= slope * (band.to - height);
        band.to = height;
    }
    // Without the middle of a pixel in it nothing would be drawn; the rest leaves room for rounding.
    constexpr double rounding = 1e-3;
    if (std::floor(band.to - 0.5 + rounding) < std::ceil(band.from - 0.5 - rounding))
        return;
    const double metres = m_layout.MetresPerPixel();
    const double altitude = AltitudeOf(row);
    const double end = std::min(m_layout.EndRange(row, m_side), m_layout.Range(m_side));
    if (!(end > 0.0))
        return;
    const double perMetre = row.count[m_side] / (row.range[m_side] * m_settings.width);
    std::vector<Vertex>& out = GroupOf(row).vertices;
    const auto z = static_cast<float>(altitude);
    const auto add = [&](double slant, double along, double t) {
        const auto s = static_cast<float>(slant * perMetre);
        out.push_back({static_cast<float>(slant), static_cast<float>(along), z, s, static_cast<float>(t)});
    };
    // Repeated vertices join the bands to one strip.
    if (!out.empty()) {
        out.push_back(out.back());
        add(altitude, band.from, band.tFrom);
    }
    for (const double ground : ZrWaterfallMesh::Steps(altitude / metres, end / metres)) {
        const double slant = ZrSlantRange::Slant(ground * metres, altitude);
        add(slant, band.from, band.tFrom);
        add(slant, band.to, band.tTo);
    }
}

Group& Builder::GroupOf(const Row& row)
{
    float perRange = 1.0F;
    if (m_settings.isByRange) {
        // Rounded to a hundredth, lest every one of many ranges needs a draw.
        constexpr double steps = 64.0;
        const double exact = row.range[m_side] * m_settings.width / row.count[m_side]
            / (m_layout.WiderColumns() * m_layout.MetresPerPixel());
        perRange = static_cast<float>(std::exp2(std::round(std::log2(exact) * steps) / steps));
    }
    const auto found = std::find_if(m_groups.begin(), m_groups.end(), [&](const Group& group) {
        return group.side == m_side && group.page == PageOf(row) && group.perRange == perRange;
    });
    if (found != m_groups.end())
        return *found;
    m_groups.push_back({m_side, PageOf(row), perRange, {}});
    return m_groups.back();
}

} // namespace

ZrWaterfallMesh::ZrWaterfallMesh(const ZrWaterfallLayout& layout, const Settings& settings)
{
    if (settings.width <= 0 || settings.pageRows <= 0)
        return;
    std::vector<Group> groups;
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        if (layout.Columns(side) > 0)
            Builder(layout, settings, side, groups).Build();
    }
    for (const Group& group : groups) {
        float reach = 0.0F;
        for (const Vertex& vertex : group.vertices)
            reach = std::max(reach, vertex.s * group.perRange);
        m_draws.push_back({group.side, group.page, group.perRange, reach, static_cast<int>(m_vertices.size()),
            static_cast<int>(group.vertices.size())});
        m_vertices.insert(m_vertices.end(), group.vertices.begin(), group.vertices.end());
    }
}

// Between two places the texture runs evenly over the ground, the slant range s = √(g² + h²) does not. Over a
// step d it is off by at most d²/8 × s″ with s″ = h²/s³, which on the ground is s/g times as much. The first
// step, where s/g has no limit, is off by at most a quarter of itself.
std::vector<double> ZrWaterfallMesh::Steps(double altitude, double end)
{
    std::vector<double> steps{0.0};
    double ground = altitude > 0.0 ? 4.0 * mostError : end;
    while (ground < end) {
        steps.push_back(ground);
        ground += std::sqrt(8.0 * mostError * ground) * std::hypot(ground, altitude) / altitude;
    }
    steps.push_back(end);
    return steps;
}

// Each step makes the root of the ground range larger by 0.78 or more.
int ZrWaterfallMesh::MostSteps(int columns)
{
    return 2 + static_cast<int>(std::sqrt(static_cast<double>(std::max(columns, 0))) / 0.78);
}
