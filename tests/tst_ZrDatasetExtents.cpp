// ZrDataset: extents and plots made of the record table.

#include "ZrDatasetFixture.h"

#include <cmath>

class tst_ZrDatasetExtents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extentsOfRecords();
    void extentsWithoutRecords();
    void extentsLeaveOutWhatIsNoNumber();
    void extentsOfNegativeValues();
    void extentsOfInfinities();
};

void tst_ZrDatasetExtents::extentsOfRecords()
{
    ZrDataset dataset;
    const double latitudes[] = {60.0, 58.5, 61.0, 60.5};
    const double longitudes[] = {-5.0, 7.0, 3.0, -6.0};
    const float altitudes[] = {5.0f, 2.5f, 100.0f, 0.0f};
    const float depths[] = {10.0f, 20.0f, 1.0f, 50.0f};
    for (int i = 0; i < 4; ++i) {
        ZrLogRec rec;
        rec.latitude = latitudes[i];
        rec.longitude = longitudes[i];
        rec.altitude = altitudes[i];
        rec.depth = depths[i];
        dataset.recs.push_back(rec);
    }
    dataset.curRec = 3;
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, 58.5);
    QCOMPARE(dataset.maxLatitude, 61.0);
    QCOMPARE(dataset.minLongitude, -6.0);
    QCOMPARE(dataset.maxLongitude, 7.0);
    QCOMPARE(dataset.meanLatitude, 60.0);
    QCOMPARE(dataset.meanLongitude, -0.25);
    QCOMPARE(dataset.maxSeabed, 111.1f); // 101 x 1.1
    QCOMPARE(dataset.curRec, 0);
    const std::vector<float> altitudePlot{0, 5, 1, 2.5, 2, 100, 3, 0};
    const std::vector<float> seabedPlot{0, 0, 0, 15, 1, 0, 1, 22.5, 2, 0, 2, 101, 3, 0, 3, 50};
    QVERIFY(dataset.altitudePlot == altitudePlot);
    QVERIFY(dataset.seabedPlot == seabedPlot);
    dataset.UpdateExtents(); // built anew, not added to
    QVERIFY(dataset.altitudePlot == altitudePlot);
    QVERIFY(dataset.seabedPlot == seabedPlot);
}

void tst_ZrDatasetExtents::extentsWithoutRecords()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0});
    dataset.recs[0].latitude = 5.0;
    dataset.recs[0].depth = 5.0f;
    dataset.UpdateExtents();
    QCOMPARE(dataset.curRec, 0);
    dataset.recs.clear();
    dataset.UpdateExtents();
    QCOMPARE(dataset.curRec, -1);
    QVERIFY(dataset.altitudePlot.empty() && dataset.seabedPlot.empty());
    for (double extent : {dataset.minLatitude, dataset.maxLatitude, dataset.minLongitude,
             dataset.maxLongitude, dataset.meanLatitude, dataset.meanLongitude, double(dataset.maxSeabed)})
        QCOMPARE(extent, 0.0);
}

void tst_ZrDatasetExtents::extentsLeaveOutWhatIsNoNumber()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0, 3.0});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double latitudes[] = {nan, 10.0, 20.0};
    for (std::size_t i = 0; i < 3; ++i) {
        dataset.recs[i].latitude = latitudes[i];
        dataset.recs[i].longitude = nan;
        dataset.recs[i].depth = i == 1 ? std::numeric_limits<float>::quiet_NaN() : float(i);
    }
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, 10.0);
    QCOMPARE(dataset.maxLatitude, 20.0);
    QCOMPARE(dataset.meanLatitude, 15.0);
    QCOMPARE(dataset.minLongitude, 0.0);
    QCOMPARE(dataset.meanLongitude, 0.0);
    QCOMPARE(dataset.maxSeabed, 2.2f);
    QVERIFY(std::isnan(dataset.seabedPlot[7])); // the plots show what is there
}

void tst_ZrDatasetExtents::extentsOfNegativeValues()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0});
    dataset.recs[0].latitude = -10.0;
    dataset.recs[1].latitude = -20.0;
    dataset.recs[0].depth = -4.0f;
    dataset.recs[1].depth = -2.0f;
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, -20.0);
    QCOMPARE(dataset.maxLatitude, -10.0);
    QCOMPARE(dataset.maxSeabed, -2.2f);
}

void tst_ZrDatasetExtents::extentsOfInfinities()
{
    const double inf = std::numeric_limits<double>::infinity();
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0, 3.0});
    dataset.recs[0].latitude = inf;
    dataset.recs[1].latitude = -inf;
    dataset.recs[0].longitude = inf;
    dataset.recs[2].depth = std::numeric_limits<float>::max();
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, -inf);
    QCOMPARE(dataset.maxLatitude, inf);
    QVERIFY(std::isnan(dataset.meanLatitude)); // of both infinities there is no mean
    QCOMPARE(dataset.minLongitude, 0.0);
    QCOMPARE(dataset.meanLongitude, inf);
    QVERIFY(std::isinf(dataset.maxSeabed)); // 1.1 times the greatest float is none
}

QTEST_GUILESS_MAIN(tst_ZrDatasetExtents)
#include "tst_ZrDatasetExtents.moc"
