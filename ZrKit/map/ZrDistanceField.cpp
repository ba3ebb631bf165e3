#include "ZrKit/map/ZrDistanceField.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int oversampling = ZrDistanceField::Oversampling;
/// Instead of infinity, with which the parabolas could not be intersected.
constexpr float farAway = 1e12F;

/// One pass of the transform: squared distances along a row or a column.
class Pass
{
public:
    explicit Pass(std::size_t longest)
        : m_from(longest)
        , m_start(longest + 1)
        , m_row(longest)
    {
    }

    /// \p count values, \p step apart from each other.
    void Run(float* values, std::size_t count, std::size_t step)
    {
        for (std::size_t i = 0; i < count; ++i)
            m_row[i] = values[i * step];
        std::size_t last = 0;
        m_from[0] = 0;
        m_start[0] = -farAway;
        m_start[1] = farAway;
        for (std::size_t q = 1; q < count; ++q) {
            float cut = Cut(q, m_from[last]);
            while (last > 0 && cut <= m_start[last])
                cut = Cut(q, m_from[--last]);
            m_from[++last] = q;
            m_start[last] = cut;
            m_start[last + 1] = farAway;
        }
        std::size_t at = 0;
        for (std::size_t q = 0; q < count; ++q) {
            const auto x = static_cast<float>(q);
            while (m_start[at + 1] < x)
                ++at;
            const float d = x - static_cast<float>(m_from[at]);
            values[q * step] = d * d + m_row[m_from[at]];
        }
    }

private:
    /// Where the parabola over \p q begins to be below that over \p p.
    float Cut(std::size_t q, std::size_t p) const
    {
        const auto a = static_cast<float>(q);
        const auto b = static_cast<float>(p);
        return (m_row[q] - m_row[p] + a * a - b * b) / (2.0F * (a - b));
    }

    std::vector<std::size_t> m_from; ///< the lowest parabolas, left to right
    std::vector<float> m_start; ///< where each begins
    std::vector<float> m_row;
};

/// For each pixel of \p mask the squared distance to the next one that is \p isInk.
std::vector<float> SquaredDistances(const QImage& mask, bool isInk)
{
    const auto w = static_cast<std::size_t>(mask.width());
    const auto h = static_cast<std::size_t>(mask.height());
    std::vector<float> field(w * h);
    for (std::size_t y = 0; y < h; ++y) {
        const uchar* row = mask.constScanLine(static_cast<int>(y));
        for (std::size_t x = 0; x < w; ++x)
            field[y * w + x] = (row[x] >= 128) == isInk ? 0.0F : farAway;
    }
    Pass pass(std::max(w, h));
    for (std::size_t x = 0; x < w; ++x)
        pass.Run(&field[x], h, w);
    for (std::size_t y = 0; y < h; ++y)
        pass.Run(&field[y * w], w, 1);
    return field;
}

} // namespace

QImage ZrDistanceField::Make(const QPainterPath& path, const QRect& box, double spread)
{
    if (box.isEmpty() || box.width() > LargestSide || box.height() > LargestSide || !(spread > 0.0))
        return {};
    QImage mask(box.size() * oversampling, QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(oversampling, oversampling);
    painter.translate(-box.topLeft());
    painter.fillPath(path, Qt::black);
    painter.end();

    const std::vector<float> toInk = SquaredDistances(mask, true);
    const std::vector<float> toPaper = SquaredDistances(mask, false);
    const auto wide = static_cast<std::size_t>(mask.width());
    const float scale = static_cast<float>(127.5 / spread) / (oversampling * oversampling * oversampling);
    QImage image(box.size(), QImage::Format_Alpha8);
    for (int y = 0; y < box.height(); ++y) {
        uchar* row = image.scanLine(y);
        for (int x = 0; x < box.width(); ++x) {
            float sum = 0.0F;
            for (int j = 0; j < oversampling; ++j) {
                for (int i = 0; i < oversampling; ++i) {
                    const std::size_t at = static_cast<std::size_t>(y * oversampling + j) * wide
                        + static_cast<std::size_t>(x * oversampling + i);
                    // The edge is half way to the next pixel of the other kind.
                    sum += toInk[at] > 0.0F ? 0.5F - std::sqrt(toInk[at]) : std::sqrt(toPaper[at]) - 0.5F;
                }
            }
            row[x] = static_cast<uchar>(std::clamp(127.5F + sum * scale + 0.5F, 0.0F, 255.0F));
        }
    }
    return image;
}

std::vector<float> ZrDistanceField::SquaresToInk(const QImage& mask)
{
    return mask.isNull() ? std::vector<float>() : SquaredDistances(mask, true);
}
