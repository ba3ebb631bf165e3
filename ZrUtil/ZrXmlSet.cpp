#include "ZrUtil/ZrXmlSet.h"

#include "ZrUtil/ZrXmlStore.h"

template class ZrLstMgd<ZrXmlObj>;

ZrXmlSet::ZrXmlSet(const QString& setName, ZrXmlStore* owner)
    : name(setName)
    , store(owner)
{
}

bool ZrXmlSet::IsLoading() const
{
    return store && store->IsLoading();
}

bool ZrXmlSet::IsStoring() const
{
    return !IsLoading();
}

ZrXmlObj* ZrXmlSet::GetObj(QString objName) const
{
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        ZrXmlObj* obj = GetNext(pos);
        if (obj->name == objName)
            return obj;
    }
    return nullptr;
}

ZrXmlObj* ZrXmlSet::AddObj(QString objName, QString objType)
{
    if (ZrXmlObj* found = GetObj(objName))
        return found;
    auto* obj = new ZrXmlObj(objName, objType, this);
    AddTail(obj);
    return obj;
}

ZrXmlObj* ZrXmlSet::Obj(QString objName, QString objType)
{
    return IsStoring() ? AddObj(objName, objType) : GetObj(objName);
}
