#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrRecent.h"
#include "ZrKit/review/ZrRecording.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

#include <atomic>
#include <memory>
#include <thread>

/// Looks through a folder for the latest recordings, in a thread of its own.
///
/// \code
/// connect(&list, &ZrRecordingList::Finished, this, [this] { Show(list.Recordings()); });
/// list.List(folder, 20);
/// \endcode
///
/// In a folder of many the first `AtOnce` are there early, told by `Listed`; `Finished` tells of all. What
/// has not changed since it was listed last is not opened again.
///
/// What a recording is, and how little of it is read, see `ZrRecent`; of its index up to `Points` records are
/// read too.
///
/// Threads: all functions belong to the thread that the list lives in; `OutlineOf` and
/// `FreeBytesOf` to any. The destructor ends the
/// work at the next file and waits for it.
class ZR_KIT_EXPORT ZrRecordingList : public QObject
{
    Q_OBJECT

public:
    static constexpr int Points = 200; ///< of an outline, at most
    static constexpr int AtOnce = 50; ///< listed before all others

    explicit ZrRecordingList(QObject* parent = nullptr);
    ~ZrRecordingList() override;

    /// Begins to list at most \p most recordings of \p folder. While it is at work, it begins anew when it is
    /// through, with what it was told last; then there is one `Finished` only.
    void List(const QString& folder, int most);

    bool IsListing() const { return m_isListing; }

    const QVector<ZrRecording>& Recordings() const { return m_recordings; } ///< the latest first

    qint64 FreeBytes() const { return m_freeBytes; } ///< on the volume of the folder; -1 when not known

    /// Why nothing was listed, a sentence; empty also when the folder is not there yet.
    QString Error() const { return m_error; }

    int Looks() const { return m_looks; } ///< recordings that were opened and looked into, counted

    /// See `ZrRecording::outline`: of longitudes and latitudes.
    static QPolygonF OutlineOf(const QPolygonF& positions);

    /// See `ZrRecording::outline`.
    static QPolygonF OutlineOf(const ZrRecentLog& log);

    /// Free bytes on the volume that holds \p folder, or would hold it once it is made; -1 when not known.
    static qint64 FreeBytesOf(const QString& folder);

Q_SIGNALS:
    void Listed(); ///< the first ones of many are there; not where they are all
    void Finished();

private:
    struct Job;

    /// A recording, and the files that it was told from.
    struct Known
    {
        ZrRecording recording;
        ZrRecent::Seen file;
        qint64 indexed = -1; ///< when its index was made, ms since 1970; -1 for none
    };

    void Start(const QString& folder, int most);
    Q_INVOKABLE void TakeFirst();
    Q_INVOKABLE void Conclude();

    std::unique_ptr<Job> m_job; ///< the worker's while it is at work
    std::thread m_worker;
    QHash<QString, Known> m_known; ///< by path
    QHash<QString, ZrRecent::Seen> m_seen;
    int m_looks = 0;
    bool m_isListing = false;
    bool m_isAsked = false; ///< again
    QString m_nextFolder;
    int m_nextMost = 0;
    QVector<ZrRecording> m_recordings;
    qint64 m_freeBytes = -1;
    QString m_error;
};
