#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrWorker.h"

#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class ZrImportSession;

/// Makes a log of one recording in a foreign form, in a worker.
///
/// \code
/// const ZrImportTask::Place place = ZrImportTask::PlaceFor(path, folder);
/// if (place.HasPresent())
///     return Open(place.present);
/// connect(&task, &ZrImportTask::Finished, this, [this](int result) { … });
/// task.Start(path, place.log);
/// \endcode
///
/// Every `Start` that returns true ends in one `Finished`. The destructor stops the work and waits for it. A
/// log that is not finished is not there. The thread of the object only.
class ZR_KIT_EXPORT ZrImportTask : public QObject
{
    Q_OBJECT

public:
    enum eResult : int
    {
        done = 0, ///< the log is there, perhaps with flaws
        failed = 1, ///< see `Error`
        cancelled = 2
    };

    /// Where the log of a recording goes.
    struct Place
    {
        QString log; ///< of a name that is free
        QString present; ///< made before of it, and not older; empty for none

        bool HasPresent() const { return !present.isEmpty(); }
    };

    explicit ZrImportTask(QObject* parent = nullptr);
    ~ZrImportTask() override;

    static QStringList Suffixes(); ///< that such recordings usually have
    static bool IsForeign(
        const QString& path); ///< by its content; false for logs and for what cannot be read

    /// In \p folder under the name of the recording, with a number behind it where that is taken.
    static Place PlaceFor(const QString& path, const QString& folder);

    /// Makes the folder if need be. False, with the reason in `Error`, when that is not possible, and while
    /// another import is under way.
    bool Start(const QString& path, const QString& log);

    void Cancel() { m_worker.Cancel(); }

    ZrWorker& Worker() { return m_worker; } ///< for a `ZrWorkPanel`

    bool IsWorking() const { return m_worker.IsWorking(); }

    QString Path() const { return m_path; } ///< of the import under way, or the last one

    QString Log() const { return m_log; }

    QString Error() const { return m_error; } ///< a sentence

    quint64 FlawCount() const { return m_flawCount; } ///< of the recording, as far as it was read

    QString FlawText() const { return m_flawText; } ///< the first of them; of several one is told

Q_SIGNALS:
    void Finished(int result); ///< an `eResult`

private:
    void OnFinished();

    std::shared_ptr<ZrImportSession> m_session;
    QString m_path;
    QString m_log;
    QString m_error;
    quint64 m_flawCount = 0;
    QString m_flawText;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
