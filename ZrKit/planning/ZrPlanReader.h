#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrPlanState.h"
#include "ZrKit/planning/ZrRouteFile.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// Reads the file of a plan, or its draft, in any thread; `ZrPlanDocument::Take` makes it the plan.
///
/// \code
/// auto reader = std::make_shared<ZrPlanReader>();
/// worker.Start([reader, path](IZrProgress&) { reader->Load(path); }, {});
/// connect(&worker, &ZrWorker::Finished, &plan, [&plan, reader] { plan.Take(*reader); });
/// \endcode
class ZR_KIT_EXPORT ZrPlanReader
{
    Q_DECLARE_TR_FUNCTIONS(ZrPlanReader)

public:
    /// Reads a plan of any form of `ZrRouteFile`. False, with the reason in `Error`.
    bool Load(const QString& path);

    /// Reads a draft, see `ZrPlanDocument::RestoreDraft`; likewise.
    bool LoadDraft(const QString& path);

    /// Reads what `ZrPlanState::ToDraft` made. \p name begins the reason.
    bool FromDraft(const QByteArray& bytes, const QString& name);

    QString Error() const { return m_error; } ///< of the last call; empty when it succeeded

    QStringList Warnings() const { return m_file.Warnings(); }

private:
    friend class ZrPlanDocument;

    bool Fail(const QString& error);
    bool Finish(ZrPlanState& state);

    ZrRouteFile m_file;
    ZrPlanState m_rest; ///< all but the route
    bool m_isDraft = false;
    bool m_hasRoute = false;
    QString m_name;
    QString m_error;
};
