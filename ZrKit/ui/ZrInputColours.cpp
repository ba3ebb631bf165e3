#include "ZrKit/ui/ZrInputColours.h"

#include "ZrUtil/ZrInput.h"

#include <QCoreApplication>
#include <QEvent>

ZrInputColours::ZrInputColours(QObject* parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool ZrInputColours::eventFilter(QObject* watched, QEvent* event)
{
    // A widget that was never shown hears of no second change of its style sheet.
    if (event->type() != QEvent::StyleChange && event->type() != QEvent::Polish)
        return false;
    auto* input = qobject_cast<ZrInput*>(watched);
    if (!input)
        return false;
    const QString sheet = input->styleSheet();
    // An empty sheet would delete the style that is at work on the event.
    if (sheet.contains(QLatin1String("#515151")))
        input->setStyleSheet(QStringLiteral("QLineEdit { }"));
    else if (sheet.contains(QLatin1String("#aa0000")) && !sheet.contains(QLatin1String("#ffffff")))
        input->setStyleSheet(QStringLiteral("QLineEdit { background-color : #aa0000; color : #ffffff; }"));
    return false;
}
