#include "ZrUtil/ZrXmlStore.h"

template class ZrLstMgd<ZrXmlSet>;

namespace {

ZrXmlSet* FindSet(const ZrXmlStore& store, const QString& name)
{
    for (ZrListPos* pos = store.GetHeadPos(); pos;) {
        ZrXmlSet* set = store.GetNext(pos);
        if (set->name == name)
            return set;
    }
    return nullptr;
}

} // namespace

ZrXmlStore::ZrXmlStore(bool forStoring)
    : storing(forStoring)
{
}

ZrXmlSet* ZrXmlStore::AddSet(QString name)
{
    if (ZrXmlSet* found = FindSet(*this, name))
        return found;
    auto* set = new ZrXmlSet(name, this);
    AddTail(set);
    return set;
}

ZrXmlSet* ZrXmlStore::Set(QString name)
{
    return storing ? AddSet(name) : FindSet(*this, name);
}
