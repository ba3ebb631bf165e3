#include "ZrUtil/ZglObject.h"

#include "ZrUtil/ZrObjReader.h"

#include <QDebug>

bool ZglObject::LoadObj(QString path, ZglObject& object)
{
    ZrObjReader reader;
    if (reader.Read(path, object))
        return true;
    if (reader.Line() == 0)
        qDebug() << qUtf8Printable(reader.Error()) << path;
    else
        qDebug() << qUtf8Printable(reader.Error());
    return false;
}
