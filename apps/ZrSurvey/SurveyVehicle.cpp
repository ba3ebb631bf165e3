#include "apps/ZrSurvey/SurveyVehicle.h"

#include <cmath>
#include <utility>

void SurveyVehicle::Set(const Pose& pose, const QString& source, bool isLive, bool hasNewFix)
{
    if (isLive && !m_isLive)
        SetWay({});
    m_pose = pose;
    m_source = source;
    m_isLive = isLive;
    m_hasNewFix = hasNewFix && std::isfinite(pose.lat) && std::isfinite(pose.lng);
    if (isLive && m_hasNewFix) {
        if (m_way.size() >= MostPlaces) {
            m_way.erase(m_way.begin(), m_way.begin() + MostPlaces / 10);
            ++m_revision;
        }
        m_way.push_back({pose.lat, pose.lng, pose.depth, pose.altitude});
    }
    Q_EMIT Changed();
}

void SurveyVehicle::SetWay(std::vector<ZrScenePlace> way)
{
    m_way = std::move(way);
    ++m_revision;
}

void SurveyVehicle::Clear()
{
    SetWay({});
    Set(Pose(), QString(), false);
}
