// Loading a dataset in a thread of its own.

#include "ZrKit/review/ZrDatasetLoader.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using survey::EventFile;
using survey::EventItem;
using survey::EventTexts;
using survey::S;
using survey::startTime;
using survey::SurveyLog;
using survey::Uid;

constexpr int patience = 20000; ///< milliseconds

/// Holds a worker at a record until it is let go.
class Gate
{
public:
    void Arrive()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_arrived = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }

    void WaitForArrival()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_arrived; });
    }

    void Open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_arrived = false;
    bool m_open = false;
};

/// A dataset whose loading waits at the third record, and which knows the thread that fills it.
class GatedDataset : public ZrSurveyDataset
{
    Q_OBJECT

public:
    explicit GatedDataset(Gate& gate)
        : m_gate(gate)
    {
    }

    void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override
    {
        ZrSurveyDataset::FillRec(rec, inf, payload);
        filledBy = std::this_thread::get_id();
        if (recs.size() == 2)
            m_gate.Arrive();
    }

    std::thread::id filledBy;

private:
    Gate& m_gate;
};

} // namespace

class tst_ZrDatasetLoader : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void datasetIsLoadedElsewhere();
    void indexIsUsedTheSecondTime();
    void progressComesBeforeTheEnd();
    void unreadableLogIsReported();
    void cancelEndsTheLoadAndLosesNothing();
    void cancelWithoutALoadDoesNothing();
    void secondLoadIsRefusedMeanwhile();
    void nextLoadFromTheEndOfTheFirst();
    void loadWithoutADatasetIsRefused();
    void switchesReachTheReader();
    void destructionEndsTheWorkerAndItsSignals();
    void destructionWithoutEventLoopLosesNothing();
    void takenOnce();
    void manyLoadersAtOnce();

private:
    /// Runs the event loop until \p loader has finished; false when it does not.
    static bool Finish(ZrDatasetLoader& loader)
    {
        QSignalSpy spy(&loader, &ZrDatasetLoader::Finished);
        return spy.wait(patience) && spy.size() == 1;
    }
};

void tst_ZrDatasetLoader::datasetIsLoadedElsewhere()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    Gate gate;
    gate.Open();
    ZrDatasetLoader loader;
    QVERIFY(!loader.IsLoading());
    QVERIFY(!loader.Report());
    QThread* finishedIn = nullptr;
    connect(&loader, &ZrDatasetLoader::Finished, &loader,
        [&finishedIn] { finishedIn = QThread::currentThread(); });
    QVERIFY(loader.Load(m_log, std::make_unique<GatedDataset>(gate)));
    QVERIFY(loader.IsLoading());
    QVERIFY(!loader.Take());
    QVERIFY(Finish(loader));
    QVERIFY(!loader.IsLoading());
    QCOMPARE(finishedIn, QThread::currentThread());
    QCOMPARE(loader.Result(), ZrDatasetReader::Built);
    QVERIFY(loader.Report());
    QCOMPARE(loader.Report()->Reason(), S("there is no index yet"));
    const std::unique_ptr<ZrDataset> dataset = loader.Take();
    QVERIFY(dataset);
    QCOMPARE(dataset->recs.size(), std::size_t(20));
    QCOMPARE(dataset->lastRec, 19);
    QCOMPARE(dataset->thread(), QThread::currentThread());
    QVERIFY(static_cast<GatedDataset*>(dataset.get())->filledBy != std::this_thread::get_id());
}

void tst_ZrDatasetLoader::indexIsUsedTheSecondTime()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    ZrDatasetLoader loader;
    for (const ZrDatasetReader::eResult result : {ZrDatasetReader::Built, ZrDatasetReader::FromIndex}) {
        QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
        QVERIFY(Finish(loader));
        QCOMPARE(loader.Result(), result);
        QCOMPARE(loader.Take()->recs.size(), std::size_t(20));
    }
}

void tst_ZrDatasetLoader::progressComesBeforeTheEnd()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(1000).Bytes()));
    ZrDatasetLoader loader;
    QVector<int> percents;
    int atTheEnd = -1;
    connect(&loader, &ZrDatasetLoader::Progress, &loader, [&percents](int percent) { percents << percent; });
    connect(&loader, &ZrDatasetLoader::Finished, &loader, [&] { atTheEnd = percents.size(); });
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QCOMPARE(percents.size(), 0);
    QVERIFY(Finish(loader));
    QCOMPARE(atTheEnd, 101);
    for (int i = 0; i <= 100; ++i)
        QCOMPARE(percents[i], i);
}

void tst_ZrDatasetLoader::unreadableLogIsReported()
{
    ZrDatasetLoader loader;
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    QCOMPARE(loader.Result(), ZrDatasetReader::Unreadable);
    QCOMPARE(loader.Report()->Error(), S("No such file or directory"));
    const std::unique_ptr<ZrDataset> dataset = loader.Take();
    QVERIFY(dataset);
    QVERIFY(dataset->recs.empty());
}

void tst_ZrDatasetLoader::cancelEndsTheLoadAndLosesNothing()
{
    LogBytes log = SurveyLog(20);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    const QByteArray events = EventFile({{startTime + 1, S("of the user"), Uid(2)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), events));
    Gate gate;
    ZrDatasetLoader loader;
    QVERIFY(loader.Load(m_log, std::make_unique<GatedDataset>(gate)));
    gate.WaitForArrival();
    loader.Cancel();
    gate.Open();
    QVERIFY(Finish(loader));
    QCOMPARE(loader.Result(), ZrDatasetReader::Cancelled);
    QVERIFY(loader.Take()->recs.empty());
    QCOMPARE(survey::NamesBeside(m_log), (QStringList{S("dive äß.log"), S("dive äß.log.evt")}));
    QCOMPARE(ReadWhole(m_log + S(".evt")), events);
    // The flag is gone with the load that it ended.
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    QCOMPARE(loader.Result(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the log")}));
}

void tst_ZrDatasetLoader::cancelWithoutALoadDoesNothing()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    ZrDatasetLoader loader;
    loader.Cancel();
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    loader.Cancel();
    QCOMPARE(loader.Result(), ZrDatasetReader::Built);
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    QCOMPARE(loader.Result(), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetLoader::secondLoadIsRefusedMeanwhile()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    Gate gate;
    ZrDatasetLoader loader;
    QVERIFY(loader.Load(m_log, std::make_unique<GatedDataset>(gate)));
    gate.WaitForArrival();
    QVERIFY(!loader.Load(S("another.log"), std::make_unique<ZrSurveyDataset>()));
    QVERIFY(!loader.Report());
    gate.Open();
    QVERIFY(Finish(loader));
    QCOMPARE(loader.Take()->fileName, m_log);
    QSignalSpy spy(&loader, &ZrDatasetLoader::Finished);
    QVERIFY(!spy.wait(50));
}

void tst_ZrDatasetLoader::nextLoadFromTheEndOfTheFirst()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    ZrDatasetLoader loader;
    int finished = 0;
    connect(&loader, &ZrDatasetLoader::Finished, &loader, [&] {
        if (++finished < 3)
            QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    });
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QTRY_COMPARE_WITH_TIMEOUT(finished, 3, patience);
    QVERIFY(!loader.IsLoading());
}

void tst_ZrDatasetLoader::loadWithoutADatasetIsRefused()
{
    ZrDatasetLoader loader;
    QVERIFY(!loader.Load(m_log, nullptr));
    QVERIFY(!loader.IsLoading());
}

void tst_ZrDatasetLoader::switchesReachTheReader()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    ZrDatasetLoader loader;
    loader.writeIndex = false;
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    QCOMPARE(survey::NamesBeside(m_log), QStringList{S("dive äß.log")});
    loader.writeIndex = true;
    loader.rebuild = true;
    for (int i = 0; i < 2; ++i) {
        QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
        QVERIFY(Finish(loader));
        QCOMPARE(loader.Report()->Reason(), S("it was asked for"));
    }
}

void tst_ZrDatasetLoader::destructionEndsTheWorkerAndItsSignals()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(20).Bytes()));
    Gate gate;
    auto loader = std::make_unique<ZrDatasetLoader>();
    int signalCount = 0;
    connect(loader.get(), &ZrDatasetLoader::Finished, this, [&signalCount] { ++signalCount; });
    connect(loader.get(), &ZrDatasetLoader::Progress, this, [&signalCount] { ++signalCount; });
    QVERIFY(loader->Load(m_log, std::make_unique<GatedDataset>(gate)));
    gate.WaitForArrival();
    loader->Cancel();
    gate.Open();
    loader.reset();
    QCoreApplication::processEvents();
    QCOMPARE(signalCount, 0);
    QCOMPARE(survey::NamesBeside(m_log), QStringList{S("dive äß.log")});
}

void tst_ZrDatasetLoader::destructionWithoutEventLoopLosesNothing()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(200).Bytes()));
    const QByteArray events = EventFile({{startTime + 1, S("of the user"), Uid(2)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), events));
    for (int i = 0; i < 20; ++i) {
        ZrDatasetLoader loader;
        QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    }
    QCOMPARE(ReadWhole(m_log + S(".evt")), events);
}

void tst_ZrDatasetLoader::takenOnce()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(3).Bytes()));
    ZrDatasetLoader loader;
    QVERIFY(!loader.Take());
    QVERIFY(loader.Load(m_log, std::make_unique<ZrSurveyDataset>()));
    QVERIFY(Finish(loader));
    QVERIFY(loader.Take());
    QVERIFY(!loader.Take());
}

void tst_ZrDatasetLoader::manyLoadersAtOnce()
{
    // All of one log, all scanning and writing its files.
    LogBytes log = SurveyLog(50);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 1, S("of the user"), Uid(2)}})));
    constexpr int count = 6;
    int finished = 0;
    std::vector<std::unique_ptr<ZrDatasetLoader>> loaders;
    for (int i = 0; i < count; ++i) {
        loaders.push_back(std::make_unique<ZrDatasetLoader>());
        loaders.back()->rebuild = true;
        connect(loaders.back().get(), &ZrDatasetLoader::Finished, this, [&finished] { ++finished; });
        QVERIFY(loaders.back()->Load(m_log, std::make_unique<ZrSurveyDataset>()));
    }
    QTRY_COMPARE_WITH_TIMEOUT(finished, count, patience);
    for (const std::unique_ptr<ZrDatasetLoader>& loader : loaders) {
        QCOMPARE(loader->Result(), ZrDatasetReader::Built);
        QCOMPARE(loader->Report()->WriteError(), QString());
        QCOMPARE(loader->Take()->recs.size(), std::size_t(50));
    }
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the log")}));
    QCOMPARE(survey::NamesBeside(m_log).size(), 5);
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::FromIndex);
}

QTEST_GUILESS_MAIN(tst_ZrDatasetLoader)
#include "tst_ZrDatasetLoader.moc"
