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

QByteArray Encoded(const QJsonDocument& document, ZrSetApp::eFmt fmt)
{
    if (fmt == ZrSetApp::eFmtBinary)
        return ToBinary(document);
    return document.toJson(fmt == ZrSetApp::eFmtCompact ? QJsonDocument::Compact : QJsonDocument::Indented);
}

} // namespace

ZrSetApp::ZrSetApp(ePersistMode passMode)
    : mode(passMode)
{
}

bool ZrSetApp::load_from_file(const QString& path, eFmt fmt)
{
    QFile file(path);
    // Qt writes a message about an empty name.
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
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
    if (path.isEmpty() || !file.open(open))
        return false;
    const QByteArray bytes = Encoded(QJsonDocument(root), fmt);
    // A disk that fills up takes a part; that is all it reports.
    return file.write(bytes) == bytes.size();
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
