#include "ZrUtil/ZrLogEvt.h"

#include <QDataStream>
#include <QIODevice>

#include <utility>

template class ZrLstMgd<ZrLogEvt>;

ZrLogEvt::ZrLogEvt() = default;

ZrLogEvt::ZrLogEvt(const ZrLogEvt&) = default;

ZrLogEvt::ZrLogEvt(double evtTime, eEvtSrc evtSrc, QString evtText)
    : time(evtTime)
    , src(evtSrc)
    , text(std::move(evtText))
{
}

ZrLogEvt::~ZrLogEvt() = default;

void ZrLogEvt::Load(QByteArray& bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    ReadFrom(stream);
}

void ZrLogEvt::Save(QByteArray& bytes)
{
    bytes.clear();
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    WriteTo(stream);
}

void ZrLogEvt::WriteTo(QDataStream& stream)
{
    stream << code << time << static_cast<qint32>(src) << text << detail << uid;
}

void ZrLogEvt::ReadFrom(QDataStream& stream)
{
    qint32 number = 0;
    uid = QUuid(); // a stream that ends before it would leave the old one
    stream >> code >> time >> number >> text >> detail >> uid;
    src = static_cast<eEvtSrc>(number);
}
