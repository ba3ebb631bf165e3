#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrXmlObj.h"

#include <QString>

class ZrXmlStore;

extern template class ZR_UTIL_EXPORT ZrLstMgd<ZrXmlObj>;

/// One named set of a tag-structured settings store: the objects, in order, which it owns.
///
/// A set without a store stores. Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrXmlSet : public ZrLstMgd<ZrXmlObj>
{
public:
    QString name;
    ZrXmlStore* store = nullptr; ///< the owner, null for a detached set

    ZrXmlSet() = default;
    explicit ZrXmlSet(const QString& setName, ZrXmlStore* owner = nullptr);

    bool IsLoading() const;
    bool IsStoring() const;

    /// The first object of this name, whatever its type; null if there is none.
    ZrXmlObj* GetObj(QString objName) const;

    /// The object of this name, whatever its type; if there is none, a new one with \p objType, appended.
    ZrXmlObj* AddObj(QString objName, QString objType);

    /// What settings functions use: `AddObj` while storing, `GetObj` while loading. Null when the object is
    /// missing on loading.
    ZrXmlObj* Obj(QString objName, QString objType);
};
