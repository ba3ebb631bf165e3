// The events of a dataset: the list, its cursor and the event file.

#include "ZrUtil/ZrDataset.h"

#include <QDataStream>
#include <QDebug>
#include <QFile>
#include <QTextStream>

#include <memory>
#include <utility>

namespace {

QString EventPath(const QString& logPath)
{
    return logPath + QLatin1String(".evt");
}

} // namespace

void ZrDataset::ClearEvents()
{
    curEvt = nullptr; // its node goes with the list
    events.RemoveAll();
}

void ZrDataset::AddEvent(const ZrLogEvt& evt)
{
    auto copy = std::make_unique<ZrLogEvt>(evt);
    copy->rec = PosFromTime(copy->time);
    // 13 digits: milliseconds of the present time.
    qDebug() << "Added Event" << qSetRealNumberPrecision(13) << copy->time << copy->rec;
    ZrListPos* pos = events.GetHeadPos();
    while (pos && !(events.GetAt(pos)->time >= copy->time))
        pos = pos->next;
    if (pos)
        events.InsertBefore(pos, copy.get());
    else
        events.AddTail(copy.get());
    static_cast<void>(copy.release());
    WriteEvents(fileName);
}

void ZrDataset::WriteEvents(const QString& logPath) const
{
    if (events.IsEmpty() || logPath.isEmpty())
        return;
    QFile file(EventPath(logPath));
    if (!file.open(QIODevice::WriteOnly))
        return;
    QDataStream stream(&file);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << static_cast<qint32>(events.GetCount());
    for (ZrListPos* pos = events.GetHeadPos(); pos;)
        events.GetNext(pos)->WriteTo(stream);
}

bool ZrDataset::ReadEvents(const QString& logPath)
{
    ClearEvents();
    QFile file(EventPath(logPath));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QDataStream stream(&file);
    stream.setVersion(QDataStream::Qt_5_15);
    qint32 count = 0;
    stream >> count;
    for (qint32 i = 0; i < count; ++i) {
        auto evt = std::make_unique<ZrLogEvt>();
        evt->ReadFrom(stream);
        // The count is only what the file says: an event that is cut off or damaged ends the list.
        if (stream.status() != QDataStream::Ok)
            break;
        evt->rec = PosFromTime(evt->time);
        events.AddTail(evt.get());
        static_cast<void>(evt.release());
    }
    return true;
}

bool ZrDataset::HasNextEvt()
{
    if (!curEvt)
        curEvt = events.GetHeadPos();
    return curEvt && curEvt->next;
}

bool ZrDataset::HasPrevEvt()
{
    if (!curEvt)
        curEvt = events.GetTailPos();
    return curEvt && curEvt->prev;
}

void ZrDataset::GoNextEvt()
{
    if (HasNextEvt())
        curEvt = curEvt->next;
}

void ZrDataset::GoPrevEvt()
{
    if (HasPrevEvt())
        curEvt = curEvt->prev;
}
