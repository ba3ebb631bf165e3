#include "ZrKit/planning/ZrPlanState.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/planning/ZrRouteLoss.h"
#include "ZrKit/planning/ZrRouteSettings.h"

#include <QCoreApplication>
#include <QJsonDocument>

QByteArray ZrPlanState::ToDraft() const
{
    QJsonObject root({{QStringLiteral("format"), QStringLiteral("zr-plan-draft")},
        {QStringLiteral("path"), path}, {QStringLiteral("route"), ZrRouteSettings::Whole(head, route)}});
    areas.ToJson(root);
    if (!sketch.IsEmpty())
        root[QLatin1String("sketch")] = sketch.ToJson();
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

bool ZrPlanState::Save(const QString& file, QString& error, QStringList& warnings) const
{
    if (ZrRouteFile::FormatOf(file) != ZrRouteFile::Settings)
        return Export(file, error, warnings);
    QJsonObject root = ZrRouteSettings::Whole(head, route);
    areas.ToJson(root);
    const QByteArray bytes = QJsonDocument(root).toJson();
    if (bytes.size() > ZrRouteFile::MaxSize) {
        error = QCoreApplication::translate(
            "ZrPlanState", "%1: the plan would take more than 64 MiB, which could not be read again")
                    .arg(file);
        return false;
    }
    return zr::replace_file(file, bytes, &error);
}

bool ZrPlanState::Export(const QString& file, QString& error, QStringList& warnings) const
{
    ZrRouteFile out;
    const bool isWritten = out.Write(file, ZrRouteFile::FormatOf(file), route);
    error = out.Error();
    warnings = out.Warnings();
    return isWritten;
}

QStringList ZrPlanState::NotHeld(const QString& file) const
{
    QStringList lost;
    const ZrRouteFile::eFormat format = ZrRouteFile::FormatOf(file);
    if (format == ZrRouteFile::Settings)
        return lost;
    if (!areas.IsEmpty())
        lost << areas.Text();
    return lost << ZrRouteLoss::Of(format, route);
}
