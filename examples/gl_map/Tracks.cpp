#include "examples/gl_map/Tracks.h"

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrSurveyDataset.h"

#include <cmath>
#include <random>

Track ReadTrack(const QString& logPath)
{
    Track track;
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    const auto result = reader.Read(logPath, dataset);
    if (result != ZrDatasetReader::FromIndex && result != ZrDatasetReader::Built) {
        track.error = QStringLiteral("%1: %2").arg(logPath, reader.Error());
        return track;
    }
    std::vector<double> lats;
    std::vector<double> lngs;
    for (const ZrLogRec& rec : dataset.recs) {
        if (!std::isfinite(rec.latitude) || !std::isfinite(rec.longitude))
            continue;
        lats.push_back(rec.latitude);
        lngs.push_back(rec.longitude);
    }
    if (lats.empty()) {
        track.error = QStringLiteral("%1: there is no position in it").arg(logPath);
        return track;
    }
    track.grid = ZrGridBatch::UtmAt(lats[0], lngs[0]);
    std::vector<double> easts(lats.size());
    std::vector<double> norths(lats.size());
    track.grid.ToGrid(lats, lngs, easts, norths);
    for (std::size_t i = 0; i < easts.size(); ++i)
        track.positions.emplace_back(easts[i], norths[i]);
    return track;
}

std::vector<QPointF> Wander(const QPointF& start, int count)
{
    std::mt19937 random(1);
    std::normal_distribution<double> turn(0.0, 0.02);
    std::vector<QPointF> positions;
    positions.reserve(static_cast<std::size_t>(count));
    QPointF at = start;
    double heading = 0.0;
    for (int i = 0; i < count; ++i) {
        positions.push_back(at);
        heading += turn(random);
        at += QPointF(2.0 * std::sin(heading), 2.0 * std::cos(heading));
    }
    return positions;
}
