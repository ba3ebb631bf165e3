#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrRecording.h"
#include "ZrKit/review/ZrWorker.h"

#include <QCache>
#include <QHash>
#include <QObject>
#include <QVector>

#include <memory>

class ZrDatasetReader;

/// Makes the outlines of recordings that have none, and their indexes with them, in a thread of its own: one
/// recording after the other.
///
/// \code
/// connect(&previews, &ZrRecordingPreviews::Made, this, [this] { Show(); });
/// previews.Want(list.Recordings());
/// \endcode
///
/// The index is that which a review makes, see `ZrDatasetReader`: it opens at once then. In a folder that
/// cannot be written to the outline alone is kept, here. Logs of more than `LargestLog` bytes are left to the
/// review. Each log is tried once as long as it does not grow, whatever comes of it.
///
/// Threads: all functions belong to the thread that the object lives in. The destructor ends the work and
/// waits for it.
class ZR_KIT_EXPORT ZrRecordingPreviews : public QObject
{
    Q_OBJECT

public:
    static constexpr u64 LargestLog = u64(1) << 30; ///< bytes: some seconds
    static constexpr int Kept = 500; ///< outlines; of more those go that were asked for longest ago

    explicit ZrRecordingPreviews(QObject* parent = nullptr);
    ~ZrRecordingPreviews() override;

    /// Makes those of \p recordings that are missing, the first one first, in place of what was wanted
    /// before. One that is under way is made.
    void Want(const QVector<ZrRecording>& recordings);

    void Cancel(); ///< ends the work at the next item; wants nothing any more

    bool IsWorking() const { return m_worker.IsWorking(); }

    /// See `ZrRecording::outline`; that of the recording if it has one.
    QPolygonF Outline(const ZrRecording& recording) const;

    int Tries() const { return m_tries; } ///< logs read, counted

Q_SIGNALS:
    void Made(const QString& path); ///< there is an outline of it

private:
    struct Job;

    bool IsMissing(const ZrRecording& recording) const;
    void StartNext();
    void OnFinished();

    ZrWorker m_worker;
    std::shared_ptr<Job> m_job; ///< under way
    QVector<ZrRecording> m_wanted;
    QHash<QString, u64> m_tried; ///< size by path
    QCache<QString, QPolygonF> m_outlines; ///< by path
    int m_tries = 0;
};
