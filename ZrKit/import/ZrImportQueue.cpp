#include "ZrKit/import/ZrImportQueue.h"

#include <utility>

bool ZrImportQueue::Next(ZrImportItem& item)
{
    while (m_taken == m_ready.size()) {
        m_ready.clear();
        m_taken = 0;
        if (!ReadMore())
            return false;
    }
    item = std::move(m_ready[m_taken++]);
    Account(item);
    return true;
}

void ZrImportQueue::PushPayload(CRecType type, u16 format, double time, const QByteArray& payload)
{
    m_ready.push_back({type, m_source, format, time, payload});
}

void ZrImportQueue::Note(const QString& text)
{
    ++m_report.notes[text];
}

void ZrImportQueue::Ignore(const QString& kind)
{
    const bool room = m_report.ignored.size() < MaxKinds || m_report.ignored.contains(kind);
    ++m_report.ignored[room ? kind : QStringLiteral("others")];
}
