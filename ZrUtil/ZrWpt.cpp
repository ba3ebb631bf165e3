#include "ZrUtil/ZrWpt.h"

#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrXmlObj.h"

namespace {

constexpr int Decimals = 10; // of positions in the tag-structured form

void SyncUuid(ZrXmlObj& obj, const QString& key, QUuid& uuid)
{
    QString text = uuid.toString();
    obj.Item(key, text);
    if (obj.IsLoading())
        uuid = QUuid(text);
}

void SyncUuid(zr::ZrSetModule& module, const QString& key, QUuid& uuid)
{
    QString text = uuid.toString();
    module.item(key, text);
    if (module.is_loading())
        uuid = QUuid(text);
}

void SyncLetter(zr::ZrSetModule& module, const QString& key, QChar& letter)
{
    QString text(letter);
    module.item(key, text);
    if (module.is_loading() && !text.isEmpty())
        letter = text.front();
}

} // namespace

QString ZrWpt::Name() const
{
    return name.isEmpty() ? pseudo : name;
}

void ZrWpt::SyncXml(ZrXmlObj& obj)
{
    SyncUuid(obj, QStringLiteral("UUID"), uuid);
    SyncUuid(obj, QStringLiteral("GridId"), gridId);
    obj.Item(QStringLiteral("Pseudo"), pseudo);
    obj.Item(QStringLiteral("Name"), name);
    obj.Item(QStringLiteral("Colour"), colour);
    obj.Item(QStringLiteral("Lat"), lat, Decimals);
    obj.Item(QStringLiteral("Lng"), lng, Decimals);
    obj.Item(QStringLiteral("X"), x, Decimals);
    obj.Item(QStringLiteral("Y"), y, Decimals);
    obj.Item(QStringLiteral("Z"), z);
    obj.Item(QStringLiteral("Alt"), alt);
    obj.Item(QStringLiteral("R"), r);
    obj.Item(QStringLiteral("P"), p);
    obj.Item(QStringLiteral("Q"), q);
    obj.Item(QStringLiteral("RX"), rx);
    obj.Item(QStringLiteral("RZ"), rz);
    obj.Item(QStringLiteral("Speed"), speed);
    obj.Item(QStringLiteral("SpdType"), spdType);
    obj.Item(QStringLiteral("Flags"), flags);
    obj.Item(QStringLiteral("Head"), head);
    obj.Item(QStringLiteral("HeadType"), headType);
    obj.Item(QStringLiteral("ZType"), zType);
    obj.Item(QStringLiteral("AtWpt"), atWpt);
    obj.Item(QStringLiteral("Time"), time, Decimals);
    obj.Item(QStringLiteral("Filename"), filename);
    obj.Item(QStringLiteral("FileType"), fileType);
    SyncUuid(obj, QStringLiteral("LookAt"), lookAt);
    obj.Item(QStringLiteral("Type"), type);
    obj.Item(QStringLiteral("RICX"), ricX, Decimals);
    obj.Item(QStringLiteral("RICY"), ricY, Decimals);
    obj.Item(QStringLiteral("RIT"), rit);
    obj.Item(QStringLiteral("TP1X"), tp1X, Decimals);
    obj.Item(QStringLiteral("TP1Y"), tp1Y, Decimals);
    obj.Item(QStringLiteral("TP1Q"), tp1Q);
    obj.Item(QStringLiteral("TP2X"), tp2X, Decimals);
    obj.Item(QStringLiteral("TP2Y"), tp2Y, Decimals);
    obj.Item(QStringLiteral("TP2Q"), tp2Q);
    obj.Item(QStringLiteral("Src"), src);
    obj.Item(QStringLiteral("Shape"), shape);
    obj.Item(QStringLiteral("Burial"), burial);
    obj.Item(QStringLiteral("Length"), length);
    obj.Item(QStringLiteral("Height"), height);
    obj.Item(QStringLiteral("Width"), width);
    obj.Item(QStringLiteral("Viz"), viz);
    obj.Item(QStringLiteral("BottomA"), bottomA);
    obj.Item(QStringLiteral("BottomN"), bottomN);
    obj.Item(QStringLiteral("Bottom"), bottom);
    obj.Item(QStringLiteral("Veg"), veg);
    obj.Item(QStringLiteral("Ripples"), ripples);
    obj.Item(QStringLiteral("Current"), current);
    obj.Item(QStringLiteral("ClassA"), classA);
    obj.Item(QStringLiteral("ClassB"), classB);
    obj.Item(QStringLiteral("ClassC"), classC);
    obj.Item(QStringLiteral("ClassD"), classD);
}

void ZrWpt::serialise(ZrWpt& wpt, zr::ZrSetModule& module)
{
    module.item(QStringLiteral("name"), wpt.name);
    SyncUuid(module, QStringLiteral("UUID"), wpt.uuid);
    SyncUuid(module, QStringLiteral("GridId"), wpt.gridId);
    module.item(QStringLiteral("pseudo"), wpt.pseudo);
    module.item(QStringLiteral("filename"), wpt.filename);
    module.item(QStringLiteral("filetype"), wpt.fileType);
    module.item(QStringLiteral("colour"), wpt.colour);
    module.item(QStringLiteral("lat"), wpt.lat);
    module.item(QStringLiteral("long"), wpt.lng);
    module.item(QStringLiteral("x"), wpt.x);
    module.item(QStringLiteral("y"), wpt.y);
    module.item(QStringLiteral("z"), wpt.z);
    module.item(QStringLiteral("alt"), wpt.alt);
    module.item(QStringLiteral("r"), wpt.r);
    module.item(QStringLiteral("p"), wpt.p);
    module.item(QStringLiteral("q"), wpt.q);
    module.item(QStringLiteral("rx"), wpt.rx);
    module.item(QStringLiteral("rz"), wpt.rz);
    module.item(QStringLiteral("time"), wpt.time);
    module.item(QStringLiteral("speed"), wpt.speed);
    module.item(QStringLiteral("speedtype"), wpt.spdType);
    module.item(QStringLiteral("flags"), wpt.flags);
    module.item(QStringLiteral("head"), wpt.head);
    module.item(QStringLiteral("head type"), wpt.headType);
    module.item(QStringLiteral("z type"), wpt.zType);
    module.item(QStringLiteral("at wpt"), wpt.atWpt);
    SyncUuid(module, QStringLiteral("LookAt"), wpt.lookAt);
    module.item(QStringLiteral("RICX"), wpt.ricX);
    module.item(QStringLiteral("RICY"), wpt.ricY);
    module.item(QStringLiteral("RIT"), wpt.rit);
    module.item(QStringLiteral("TP1X"), wpt.tp1X);
    module.item(QStringLiteral("TP1Y"), wpt.tp1Y);
    module.item(QStringLiteral("TP1Q"), wpt.tp1Q);
    module.item(QStringLiteral("TP2X"), wpt.tp2X);
    module.item(QStringLiteral("TP2Y"), wpt.tp2Y);
    module.item(QStringLiteral("TP2Q"), wpt.tp2Q);
    module.item(QStringLiteral("type"), wpt.type);
    module.item(QStringLiteral("src"), wpt.src);
    module.item(QStringLiteral("shape"), wpt.shape);
    module.item(QStringLiteral("burial"), wpt.burial);
    module.item(QStringLiteral("length"), wpt.length);
    module.item(QStringLiteral("width"), wpt.width);
    module.item(QStringLiteral("height"), wpt.height);
    module.item(QStringLiteral("viz"), wpt.viz);
    SyncLetter(module, QStringLiteral("bottomA"), wpt.bottomA);
    module.item(QStringLiteral("bottomN"), wpt.bottomN);
    module.item(QStringLiteral("bottom"), wpt.bottom);
    module.item(QStringLiteral("veg"), wpt.veg);
    module.item(QStringLiteral("ripples"), wpt.ripples);
    module.item(QStringLiteral("current"), wpt.current);
    module.item(QStringLiteral("classA"), wpt.classA);
    module.item(QStringLiteral("classB"), wpt.classB);
    module.item(QStringLiteral("classC"), wpt.classC);
    module.item(QStringLiteral("classD"), wpt.classD);
}
