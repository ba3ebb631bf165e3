#pragma once

// What the tests of mosaics share: logs made on the spot, and looks at pictures.

#include "SonarLine.h"
#include "ZrKit/sonar/ZrMosaic.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace sonarline {

/// Amplitudes as grey values, without gain or curve: 0 to 65535 becomes 0 to 255 between the extremes.
inline ZrMosaicSettings PlainSettings(double resolution)
{
    ZrMosaicSettings settings;
    settings.resolution = resolution;
    settings.gain.mode = ZrSonarGainSettings::gainNone;
    settings.clip = 0.0;
    settings.gamma = 1.0;
    settings.palette = QStringLiteral("linear");
    return settings;
}

/// A log with its bottom line.
struct Loaded
{
    ZrSonarLog log;
    ZrBottomLine bottom;
};

/// The middle of all pixels brighter than \p grey, in columns and rows.
inline bool Brightest(const QImage& image, int grey, double& column, double& row)
{
    double count = 0.0;
    column = row = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 255 && qGray(image.pixel(x, y)) > grey) {
                column += x;
                row += y;
                count += 1.0;
            }
        }
    }
    column /= count;
    row /= count;
    return count > 0.0;
}

/// How many transparent pixels are not connected with the outside.
inline int Holes(const QImage& image)
{
    const int width = image.width() + 2; // a border of outside
    const int height = image.height() + 2;
    const auto isSeen = [&](int x, int y) {
        return x > 0 && y > 0 && x < width - 1 && y < height - 1 && qAlpha(image.pixel(x - 1, y - 1)) != 0;
    };
    std::vector<bool> outside(static_cast<std::size_t>(width * height), false);
    std::vector<QPoint> open{{0, 0}};
    outside[0] = true;
    while (!open.empty()) {
        const QPoint at = open.back();
        open.pop_back();
        for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            const QPoint to = at + step;
            if (to.x() < 0 || to.y() < 0 || to.x() >= width || to.y() >= height || isSeen(to.x(), to.y()))
                continue;
            const auto index = static_cast<std::size_t>(to.y() * width + to.x());
            if (!outside[index]) {
                outside[index] = true;
                open.push_back(to);
            }
        }
    }
    int holes = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            holes += !isSeen(x, y) && !outside[static_cast<std::size_t>(y * width + x)] ? 1 : 0;
    }
    return holes;
}

/// Square metres that were seen.
inline double Area(const ZrMosaic& mosaic)
{
    const double pixel = mosaic.Frame().resolution;
    return static_cast<double>(mosaic.PixelsSeen()) * pixel * pixel;
}

/// Logs in a folder of their own.
class LogShelf
{
public:
    void Renew()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        if (!m_folder->isValid())
            qFatal("no temporary folder");
    }

    QString Path(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    /// A log of these pings, read, with the recorded altitudes as its bottom line.
    std::unique_ptr<Loaded> Load(const std::vector<Ping>& pings)
    {
        auto loaded = std::make_unique<Loaded>();
        const QString path = m_folder->filePath(QStringLiteral("line %1.log").arg(++m_logs));
        if (!Write(path, pings) || !loaded->log.Open(path))
            qFatal("the test log cannot be written");
        loaded->bottom = RecordedBottom(loaded->log);
        return loaded;
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    int m_logs = 0;
};

} // namespace sonarline
