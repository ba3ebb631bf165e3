#include "ZrKit/planning/ZrSurveyLine.h"

QString ZrSurveyLine::Name() const
{
    QString name = (cross ? QLatin1Char('X') : QLatin1Char('L')) + QString::number(number);
    if (piece > 0)
        name += QLatin1Char('.') + QString::number(piece);
    return name;
}
