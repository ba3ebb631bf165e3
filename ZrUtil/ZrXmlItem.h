#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>

/// One name and value of a `ZrXmlObj`; the value is held as text, whatever it was before.
///
/// Neither text is checked or escaped. The file form needs a name without white space and a non-empty value
/// without double quotes to give the item back unchanged.
class ZR_UTIL_EXPORT ZrXmlItem
{
public:
    ZrXmlItem() = default;

    ZrXmlItem(const QString& itemName, const QString& itemValue)
        : name(itemName)
        , value(itemValue)
    {
    }

    QString name;
    QString value;
};
