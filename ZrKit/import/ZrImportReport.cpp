#include "ZrKit/import/ZrImportReport.h"

void ZrImportReport::AddIssue(u64 place, const QString& text)
{
    ++issueCount;
    if (issues.size() < MaxIssues)
        issues.append({place, text});
}

QString ZrImportReport::IssueText(const Issue& issue) const
{
    const QString where = byLine ? QStringLiteral("line %1: %2") : QStringLiteral("offset %1: %2");
    // Both arguments at once: a "%1" inside the words of the issue stays what it is.
    return where.arg(QString::number(issue.place), issue.text);
}
