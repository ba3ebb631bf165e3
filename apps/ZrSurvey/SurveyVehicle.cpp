#include "apps/ZrSurvey/SurveyVehicle.h"

void SurveyVehicle::Set(const Pose& pose, const QString& source, bool isLive)
{
    m_pose = pose;
    m_source = source;
    m_isLive = isLive;
    Q_EMIT Changed();
}

void SurveyVehicle::Clear()
{
    Set(Pose(), QString(), false);
}
