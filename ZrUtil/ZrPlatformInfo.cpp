#include "ZrUtil/ZrPlatformInfo.h"

#include "ZrUtil/ZrSetModule.h"

#include <QHostInfo>
#include <QSysInfo>

void zr::ZrPlatformInfo::serialise(ZrSetModule& module)
{
    if (!module.is_storing())
        return;
    const auto store = [&module](const QString& key, QString value) { module.item(key, value); };
    store(QStringLiteral("qt abi"), QSysInfo::buildAbi());
    store(QStringLiteral("cpu arch"), QSysInfo::currentCpuArchitecture());
    store(QStringLiteral("hostname"), QHostInfo::localHostName());
    store(QStringLiteral("os"), QSysInfo::productType());
    store(QStringLiteral("os version"), QSysInfo::productVersion());
}
