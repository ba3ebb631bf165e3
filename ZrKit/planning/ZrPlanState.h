#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrUtil/ZrWpts.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

/// All of a plan at one moment, by itself: to be written in any thread while the plan is edited, or to be
/// brought back later.
struct ZR_KIT_EXPORT ZrPlanState
{
    ZrWpts route;
    QJsonObject head; ///< of the route in the settings form, with the speed presets of that moment
    std::vector<ZrArea> areas; ///< that surveys are planned over
    std::vector<ZrArea> noGo; ///< that the path must keep clear of
    double margin = 0.0; ///< metres to keep from those
    QString path; ///< of the file; empty for a plan that was never saved
    int edits = 0; ///< of the plan, counted: which moment it was
    int plan = 0; ///< plans that there were before it

    QByteArray ToDraft() const; ///< the form that drafts are kept in

    /// Replaces the file, in the form that its suffix names; in the settings form the areas are in it. False,
    /// with a sentence in \p error. What could not be kept is told in \p warnings.
    bool Save(const QString& file, QString& error, QStringList& warnings) const;

    /// Likewise, but the route alone, whatever the form.
    bool Export(const QString& file, QString& error, QStringList& warnings) const;

    /// \name Areas in JSON
    /// @{
    void AreasToJson(QJsonObject& root) const;
    void AreasFromJson(const QJsonObject& root); ///< those without a valid corner are left out
    /// @}
};
