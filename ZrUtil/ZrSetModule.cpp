#include "ZrUtil/ZrSetModule.h"

#include "ZrUtil/IPersistable.h"

namespace zr {

ZrSetModule::ZrSetModule(ePersistMode passMode, QJsonObject& passObject)
    : mode(passMode)
    , object(&passObject)
{
}

void ZrSetModule::add_item(const QString& key, const QJsonValue& value)
{
    object->insert(key, value);
}

bool ZrSetModule::try_get_item(const QString& key, QJsonValue& out) const
{
    const auto found = object->constFind(key);
    if (found == object->constEnd())
        return false;
    out = *found;
    return true;
}

void ZrSetModule::sub_item(const QString& key, IPersistable& child)
{
    QJsonObject part;
    ZrSetModule module(mode, part);
    if (is_storing()) {
        child.settings(module);
        add_item(key, part);
        return;
    }
    part = (*object)[key].toObject(); // the index operator leaves a null under a missing key
    child.settings(module);
}

void ZrSetModule::sub_item(const QString& key, const std::function<void(ZrSetModule&)>& fn)
{
    QJsonObject part;
    ZrSetModule module(mode, part);
    if (is_storing()) {
        fn(module);
        add_item(key, part);
        return;
    }
    QJsonValue stored;
    if (!try_get_item(key, stored) || !stored.isObject())
        return;
    part = stored.toObject();
    fn(module);
}

} // namespace zr
