#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrDatasetReader.h"

#include <QObject>
#include <QString>

#include <memory>
#include <thread>

class ZrDataset;

/// Loads a dataset in a thread of its own, so that the screen stays alive.
///
/// \code
/// connect(&loader, &ZrDatasetLoader::Progress, bar, &QProgressBar::setValue);
/// connect(&loader, &ZrDatasetLoader::Finished, this, [this] {
///     if (loader.Result() == ZrDatasetReader::FromIndex || loader.Result() == ZrDatasetReader::Built)
///         Show(loader.Take());
/// });
/// loader.Load(path, std::make_unique<ZrSurveyDataset>());
/// \endcode
///
/// See `ZrDatasetReader` for what is read, rebuilt and written. Every `Load` that returns true ends in one
/// `Finished`, which comes through the event loop of the thread that the loader lives in.
///
/// Threads: all functions belong to that thread. The dataset is the worker's from `Load` to `Finished` and is
/// touched by nobody else meanwhile; it stays in the thread that made it, in the sense of Qt. `Cancel` is
/// honoured at the next item of a scan; reading an index and writing the files is not interrupted. The
/// destructor cancels and waits for the worker; no `Finished` comes then.
class ZR_KIT_EXPORT ZrDatasetLoader : public QObject
{
    Q_OBJECT

public:
    bool writeIndex = true; ///< see `ZrDatasetReader`; as are all three, taken over by `Load`
    bool restorePlan = true;
    bool rebuild = false;

    explicit ZrDatasetLoader(QObject* parent = nullptr);
    ~ZrDatasetLoader() override;

    /// Starts to load \p logPath into \p dataset. False, and nothing is done, while another load is under way
    /// (cancel it and begin the next one in `Finished`) and without a dataset.
    bool Load(const QString& logPath, std::unique_ptr<ZrDataset> dataset);

    /// Ends the load soon; `Finished` comes all the same. Nothing when there is none.
    void Cancel();

    /// True from `Load` to `Finished`.
    bool IsLoading() const { return m_loading; }

    /// How the last load ended. Not while one is under way.
    ZrDatasetReader::eResult Result() const { return m_result; }

    /// What the last load has to tell (reason, damage, files that could not be written); null before the
    /// first one. Not while one is under way.
    const ZrDatasetReader* Report() const { return m_loading ? nullptr : m_reader.get(); }

    /// The dataset of the last load, empty unless the log could be read; null while a load is under way and
    /// after the first call.
    std::unique_ptr<ZrDataset> Take();

Q_SIGNALS:
    void Progress(int percent); ///< of a scan
    void Finished();

private:
    class Relay;

    void Run(const QString& logPath);
    Q_INVOKABLE void Conclude();
    void Join();

    bool m_loading = false;
    ZrDatasetReader::eResult m_result = ZrDatasetReader::Unreadable;
    std::unique_ptr<ZrDataset> m_dataset;
    std::unique_ptr<ZrDatasetReader> m_reader;
    std::thread m_worker;
};
