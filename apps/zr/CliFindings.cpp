#include "CliFindings.h"

#include "CliOutput.h"
#include "CliTable.h"
#include "CliText.h"
#include "ZrUtil/ZrWpts.h"

#include <QJsonObject>

#include <algorithm>

namespace {

/// "3 Wpt: 3"; "-" for the whole route.
QString Place(const ZrRouteFinding& finding, const std::vector<const ZrWpt*>& wpts)
{
    if (finding.index < 0 || finding.index >= static_cast<int>(wpts.size()))
        return QStringLiteral("-");
    return QStringLiteral("%1 %2")
        .arg(finding.index)
        .arg(wpts[static_cast<std::size_t>(finding.index)]->Name());
}

} // namespace

u64 cli::count_findings(const std::vector<ZrRouteFinding>& findings, ZrRouteFinding::eSeverity severity)
{
    return static_cast<u64>(std::count_if(findings.begin(), findings.end(),
        [severity](const ZrRouteFinding& finding) { return finding.severity == severity; }));
}

QString cli::findings_text(const std::vector<ZrRouteFinding>& findings)
{
    QStringList parts;
    const auto add = [&](ZrRouteFinding::eSeverity severity, const char* singular, const char* plural) {
        if (const u64 count = count_findings(findings, severity))
            parts << count_text(count, singular, plural);
    };
    add(ZrRouteFinding::eError, "error", "errors");
    add(ZrRouteFinding::eWarning, "warning", "warnings");
    add(ZrRouteFinding::eInfo, "remark", "remarks");
    return parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", "));
}

void cli::print_findings(const std::vector<ZrRouteFinding>& findings, const ZrWpts& route)
{
    if (findings.empty())
        return;
    std::vector<const ZrWpt*> wpts;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        wpts.push_back(route.GetNext(pos));
    CliTable table({QStringLiteral("Severity"), QStringLiteral("Code"), QStringLiteral("Waypoint"),
        QStringLiteral("Finding")});
    for (const ZrRouteFinding& finding : findings)
        table.Row({finding.SeverityName(), finding.CodeName(), Place(finding, wpts), finding.text});
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

QJsonArray cli::findings_json(const std::vector<ZrRouteFinding>& findings)
{
    QJsonArray array;
    for (const ZrRouteFinding& finding : findings) {
        const bool whole = finding.index < 0;
        array << QJsonObject{
            {QStringLiteral("severity"), finding.SeverityName()},
            {QStringLiteral("code"), finding.CodeName()},
            {QStringLiteral("index"), whole ? QJsonValue() : QJsonValue(finding.index)},
            {QStringLiteral("uuid"), whole ? QJsonValue() : QJsonValue(finding.uuid.toString())},
            {QStringLiteral("text"), finding.text},
            {QStringLiteral("lat"), json_number(finding.place.lat)},
            {QStringLiteral("long"), json_number(finding.place.lng)},
        };
    }
    return array;
}
