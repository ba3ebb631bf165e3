#pragma once

#include "ZrKit/planning/ZrRouteFinding.h"
#include "ZrUtil/ZrTypes.h"

#include <QJsonArray>
#include <QString>

#include <vector>

class ZrWpts;

/// What the check of a route has found, as the verbs show it.
namespace cli {

u64 count_findings(const std::vector<ZrRouteFinding>& findings, ZrRouteFinding::eSeverity severity);

/// "1 error, 2 warnings, 1 remark"; "none".
QString findings_text(const std::vector<ZrRouteFinding>& findings);

/// Prints them as a table; nothing when there are none.
void print_findings(const std::vector<ZrRouteFinding>& findings, const ZrWpts& route);

/// Objects with `severity`, `code`, `index`, `uuid`, `text`, `lat` and `long`; null for what there is not.
QJsonArray findings_json(const std::vector<ZrRouteFinding>& findings);

} // namespace cli
