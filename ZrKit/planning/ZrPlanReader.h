#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrPlanState.h"
#include "ZrKit/planning/ZrRouteFile.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// Reads the file of a plan, or a draft, in any thread; `ZrPlanDocument::Take` makes it the plan.
///
/// \code
/// auto reader = std::make_shared<ZrPlanReader>();
/// worker.Start([reader, path](IZrProgress&) { reader->Load(path); }, {});
/// connect(&worker, &ZrWorker::Finished, &plan, [&plan, reader] {
///     if (!plan.Take(*reader))
///         tell(plan.Error());
/// });
/// \endcode
class ZR_KIT_EXPORT ZrPlanReader
{
    Q_DECLARE_TR_FUNCTIONS(ZrPlanReader)

public:
    /// Reads a plan of any form of `ZrRouteFile`. False, with the reason in `Error`.
    bool Load(const QString& path);

    /// Reads a draft, or a plan of `ZrPlanDrafts`; likewise.
    bool LoadDraft(const QString& path);

    /// Reads what `ZrPlanState::ToDraft` made. \p name begins the reason.
    bool FromDraft(const QByteArray& bytes, const QString& name);

    QString Error() const { return m_error; } ///< of the last call; empty when it succeeded

    QStringList Warnings() const { return m_file.Warnings(); }

private:
    friend class ZrPlanDocument;

    bool Fail(const QString& error);
    void Begin(bool isDraft, const QString& path);
    bool ReadDraft(const QByteArray& bytes, const QString& name);

    ZrRouteFile m_file;
    ZrPlanState m_state; ///< with the route as it was written: nothing is computed yet
    QByteArray m_bytes; ///< of a draft
    QString m_path; ///< that was read; empty for none
    bool m_isDraft = false;
    bool m_isLoaded = false;
    QString m_error;
};
