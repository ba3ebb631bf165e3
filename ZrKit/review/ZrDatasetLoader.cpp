#include "ZrKit/review/ZrDatasetLoader.h"

#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrDataset.h"

#include <QMetaObject>

/// Sends the percentages of the worker through the event loop. Only whole percents arrive, so the queue of
/// a busy screen holds a hundred of them at most.
class ZrDatasetLoader::Relay final : public IZrProgress
{
public:
    explicit Relay(ZrDatasetLoader& loader)
        : m_loader(loader)
    {
    }

    void UpdateProgress(int percent) override
    {
        m_percent = percent;
        QMetaObject::invokeMethod(&m_loader, "Progress", Qt::QueuedConnection, Q_ARG(int, percent));
    }

    int GetProgress() override { return m_percent; }

private:
    ZrDatasetLoader& m_loader;
    int m_percent = 0;
};

ZrDatasetLoader::ZrDatasetLoader(QObject* parent)
    : QObject(parent)
{
}

ZrDatasetLoader::~ZrDatasetLoader()
{
    Cancel();
    Join();
}

bool ZrDatasetLoader::Load(const QString& logPath, std::unique_ptr<ZrDataset> dataset)
{
    if (m_loading || !dataset)
        return false;
    m_dataset = std::move(dataset);
    m_reader = std::make_unique<ZrDatasetReader>();
    m_reader->writeIndex = writeIndex;
    m_reader->restorePlan = restorePlan;
    m_reader->rebuild = rebuild;
    m_loading = true;
    m_worker = std::thread([this, logPath] { Run(logPath); });
    return true;
}

/// The worker. Its last act is to ask the owning thread to conclude, which joins it before it looks at
/// anything.
void ZrDatasetLoader::Run(const QString& logPath)
{
    Relay relay(*this);
    m_reader->progress = &relay;
    m_result = m_reader->Read(logPath, *m_dataset);
    m_reader->progress = nullptr;
    QMetaObject::invokeMethod(this, "Conclude", Qt::QueuedConnection);
}

void ZrDatasetLoader::Conclude()
{
    Join();
    m_loading = false;
    Q_EMIT Finished();
}

void ZrDatasetLoader::Join()
{
    if (m_worker.joinable())
        m_worker.join();
}

void ZrDatasetLoader::Cancel()
{
    if (m_loading)
        m_reader->cancel = true;
}

std::unique_ptr<ZrDataset> ZrDatasetLoader::Take()
{
    return m_loading ? nullptr : std::move(m_dataset);
}
