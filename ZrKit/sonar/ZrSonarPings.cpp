#include "ZrKit/sonar/ZrSonarPings.h"

#include <utility>

ZrSonarPings::ZrSonarPings(std::vector<ZrSonarPing> list)
    : m_list(std::make_shared<const std::vector<ZrSonarPing>>(std::move(list)))
{
}

ZrSonarPings::ZrSonarPings(
    std::shared_ptr<const ZrSonarPingTable> table, std::shared_ptr<const ZrSonarNav> nav)
    : m_table(std::move(table))
    , m_nav(std::move(nav))
{
}

ZrSonarPing ZrSonarPings::operator[](std::size_t i) const
{
    ZrSonarNav::Place place;
    return At(i, place);
}

ZrSonarPing ZrSonarPings::At(std::size_t i, ZrSonarNav::Place& place) const
{
    if (!m_table)
        return (*m_list)[i];
    ZrSonarPing ping = m_table->At(i);
    ping.pose = m_nav->At(ping.time, place);
    return ping;
}

u64 ZrSonarPings::Bytes() const
{
    if (m_table)
        return m_table->Bytes() + m_nav->Bytes();
    return m_list ? m_list->capacity() * sizeof(ZrSonarPing) : 0;
}
