#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrBtn.h"

#include <QImage>
#include <QString>

/// A large button that leads somewhere: an icon at the left, a title, and below it what is there. Several of
/// them below one another are in line.
///
/// \code
/// auto* plan = new ZrEntryBtn(page, tr("Plan"), tr("Waypoints and survey lines"));
/// plan->icon = QImage(QStringLiteral(":/icons/plan.png"));
/// connect(plan, &ZrBtn::Clicked, view, [view] { view->SetPageTo(QStringLiteral("Plan"), true); });
/// \endcode
class ZR_KIT_EXPORT ZrEntryBtn : public ZrBtn
{
    Q_OBJECT

public:
    QImage icon; ///< an alpha mask

    ZrEntryBtn(QWidget* parent, const QString& title, const QString& hint);

    QString Title() const { return m_title; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    QString m_hint;
};
