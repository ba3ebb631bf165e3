#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrPlanAreas.h"
#include "ZrKit/planning/ZrPlanSketch.h"
#include "ZrUtil/ZrWpts.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/// All of a plan at one moment, by itself: to be written in any thread while the plan is edited, or to be
/// brought back later.
struct ZR_KIT_EXPORT ZrPlanState
{
    ZrWpts route;
    QJsonObject head; ///< of the route in the settings form, with the speed presets of that moment
    ZrPlanAreas areas;
    ZrPlanSketch sketch; ///< the ring that was being drawn
    QString path; ///< of the file; empty for a plan that was never saved
    int revision = 0; ///< of the plan: which moment it was
    int plan = 0; ///< plans that there were before it

    QByteArray ToDraft() const; ///< the form that drafts and kept plans have

    /// Replaces the file, in the form that its suffix names; in the settings form the areas are in it. False,
    /// with a sentence in \p error. What could not be kept is told in \p warnings.
    bool Save(const QString& file, QString& error, QStringList& warnings) const;

    /// Likewise, but the route alone, whatever the form.
    bool Export(const QString& file, QString& error, QStringList& warnings) const;

    /// What a file of that form does not hold, parts of a sentence: "2 areas", "turn radii". Takes about as
    /// long as to write and read the file. What is being drawn is in no file and does not count.
    QStringList NotHeld(const QString& file) const;
};
