#include "apps/ZrSurvey/HomePage.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyView.h"

HomePage::HomePage(SurveyView& view)
    : SurveyPage(view, QStringLiteral("ZrSurvey"))
{
    m_back->hide();
    AddEntry(QStringLiteral("plan"), tr("Plan"), tr("Plan a survey (F2)"), QStringLiteral("Plan"));
    AddEntry(QStringLiteral("record"), tr("Record"), tr("Run and record (F3)"), QStringLiteral("Record"));
    AddEntry(QStringLiteral("review"), tr("Review"), tr("Review recordings (F4)"), QStringLiteral("Review"));
    AddEntry(QStringLiteral("scene"), tr("3D"), tr("The vehicle in 3D (F5)"), QStringLiteral("Scene"));
}

ZrBtn* HomePage::AddEntry(const QString& icon, const QString& text, const QString& hint, const QString& page)
{
    auto* entry = new ZrBtn(this, ZrBtn::typeStd);
    entry->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    entry->text = text;
    entry->setToolTip(hint);
    connect(entry, &ZrBtn::Clicked, this, [this, page] { View().Show(page); });
    m_entries.append(entry);
    return entry;
}

void HomePage::Place()
{
    const QRect area = Content().adjusted(2 * Gap(), 2 * Gap(), -2 * Gap(), -2 * Gap());
    const int count = m_entries.size();
    const int width = (area.width() - (count - 1) * 2 * Gap()) / count;
    for (int i = 0; i < count; ++i)
        m_entries[i]->setGeometry(area.x() + i * (width + 2 * Gap()), area.y(), width, ZrTheme::DpI(120));
}
