#pragma once

#include "ZrKit/review/ZrWorker.h"

#include <QObject>
#include <QStringList>

#include <memory>

class SurveyView;
class ZrImportSession;
class ZrWorkPanel;

/// Makes a log of a recording in a foreign form, in a worker with progress and cancel, and opens it.
///
/// The log lies in the folder of recordings under the name of the recording. One that is there already and
/// not older is opened at once, with the offer to import once more beside it.
class SurveyImport : public QObject
{
    Q_OBJECT

public:
    explicit SurveyImport(SurveyView& view);

    static QStringList Suffixes(); ///< that such recordings usually have
    static bool IsForeign(const QString& path); ///< by its content

    void Start(const QString& path); ///< nothing while another import is under way

    void Cancel() { m_worker.Cancel(); } ///< as the button of the panel that shows how far it is

    bool IsWorking() const { return m_worker.IsWorking(); }

private:
    void Run(const QString& path, const QString& log);
    void OnFinished();

    SurveyView& m_view;
    ZrWorkPanel* m_work;
    std::shared_ptr<ZrImportSession> m_session;
    QString m_path;
    QString m_log;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
