#include "ZrUtil/ZrSetApp.h"

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/IPersistableLinked.h"
#include "ZrUtil/ZrSetModule.h"

#include <QFile>
#include <QJsonDocument>

namespace zr {
namespace {

    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED

    QJsonDocument FromBinary(const QByteArray& bytes)
    {
        return QJsonDocument::fromBinaryData(bytes);
    }

    QByteArray ToBinary(const QJsonDocument& document)
    {
        return document.toBinaryData();
    }

    QT_WARNING_POP

} // namespace

ZrSetApp::ZrSetApp(ePersistMode passMode)
    : mode(passMode)
{
}

bool ZrSetApp::load_from_file(const QString& path, eFmt fmt)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    const QByteArray bytes = file.readAll();
    const QJsonDocument document = fmt == eFmtBinary ? FromBinary(bytes) : QJsonDocument::fromJson(bytes);
    if (document.isNull())
        return false;
    root = document.object();
    return true;
}

bool ZrSetApp::save_to_file(const QString& path, eFmt fmt) const
{
    QFile file(path);
    // Unbuffered: a full disk shows in the write and not only when the file is closed.
    QIODevice::OpenMode open = QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered;
    if (fmt != eFmtBinary)
        open |= QIODevice::Text;
    if (!file.open(open))
        return false;
    const QJsonDocument document(root);
    if (fmt == eFmtBinary)
        file.write(ToBinary(document));
    else
        file.write(document.toJson(fmt == eFmtCompact ? QJsonDocument::Compact : QJsonDocument::Indented));
    return file.error() == QFileDevice::NoError;
}

void ZrSetApp::synchronise(IPersistable& p)
{
    if (is_storing())
        root = QJsonObject();
    apply_settings(p);
    if (!is_loading())
        return;
    if (auto* linked = dynamic_cast<IPersistableLinked*>(&p))
        apply_post_cfg_load(*linked);
}

void ZrSetApp::apply_settings(IPersistable& p)
{
    ZrSetModule module(mode, root);
    p.settings(module);
}

void ZrSetApp::apply_post_cfg_load(IPersistableLinked& p)
{
    ZrSetModule module(mode, root);
    p.post_cfg_load(module);
}

} // namespace zr
