#include "ZrKit/import/ZrImporter.h"

#include "ZrKit/import/ZrImportGlider.h"
#include "ZrKit/import/ZrImportGnss.h"
#include "ZrKit/import/ZrImportNmea.h"
#include "ZrKit/import/ZrImportXtf.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr qint64 HeadSize = 65536; // bytes that the choice by content looks at

/// One format: its name, how to recognise it and how to make its importer.
struct Format
{
    QString name;
    bool (*fits)(const QByteArray& head);
    std::unique_ptr<ZrImporter> (*make)();
};

template <class Importer> std::unique_ptr<ZrImporter> make()
{
    return std::make_unique<Importer>();
}

/// In the order of the choice by content: a glider's table would do as one of the logger's tables too.
const QVector<Format>& formats()
{
    static const QVector<Format> all{
        {QStringLiteral("xtf"), &ZrImportXtf::Fits, &make<ZrImportXtf>},
        {QStringLiteral("glider"), &ZrImportGlider::Fits, &make<ZrImportGlider>},
        {QStringLiteral("nmea"), &ZrImportNmea::Fits, &make<ZrImportNmea>},
        {QStringLiteral("gnss"), &ZrImportGnss::Fits, &make<ZrImportGnss>},
    };
    return all;
}

/// The first bytes of the file; empty, with a sentence in \p error, when there are none to be had.
QByteArray readHead(const QString& path, QString* error)
{
    const QFileInfo info(path);
    QFile file(path);
    if (path.isEmpty()) {
        *error = QCoreApplication::translate("ZrImporter", "the name of the file is empty");
    } else if (info.isDir()) {
        *error = QCoreApplication::translate("ZrImporter", "%1: is a folder, not a file").arg(path);
    } else if (info.exists() && !info.isFile()) {
        // A pipe or a device has no size and may never end.
        *error = QCoreApplication::translate("ZrImporter", "%1: is not a regular file").arg(path);
    } else if (!file.open(QIODevice::ReadOnly)) {
        *error = QCoreApplication::translate("ZrImporter", "%1: cannot be read: %2")
                     .arg(path, file.errorString());
    } else {
        QByteArray head = file.read(HeadSize);
        if (head.isEmpty())
            *error = QCoreApplication::translate("ZrImporter", "%1: the file is empty").arg(path);
        return head;
    }
    return QByteArray();
}

const Format* choose(const QString& name, const QByteArray& head)
{
    for (const Format& format : formats()) {
        if (name == QLatin1String("auto") ? format.fits(head) : format.name == name)
            return &format;
    }
    return nullptr;
}

} // namespace

ZrImporter::~ZrImporter() = default;

QStringList ZrImporter::Formats()
{
    QStringList names;
    for (const Format& format : formats())
        names.append(format.name);
    return names;
}

std::unique_ptr<ZrImporter> ZrImporter::Create(
    const QString& path, const QString& format, const ZrImportOptions& options, QString* error)
{
    QString ignoredError;
    QString* reason = error ? error : &ignoredError;
    if (format != QLatin1String("auto") && !Formats().contains(format)) {
        *reason = QCoreApplication::translate(
            "ZrImporter", "\"%1\" is not the name of an import format; these are: auto, %2")
                      .arg(format, Formats().join(QStringLiteral(", ")));
        return nullptr;
    }
    const QByteArray head = readHead(path, reason);
    if (head.isEmpty())
        return nullptr;
    const Format* chosen = choose(format, head);
    if (!chosen) {
        *reason = QCoreApplication::translate(
            "ZrImporter", "%1: the content is of no format that can be imported")
                      .arg(path);
        return nullptr;
    }
    std::unique_ptr<ZrImporter> importer = chosen->make();
    if (!importer->Open(path, options, reason))
        return nullptr;
    return importer;
}

void ZrImporter::Account(const ZrImportItem& item)
{
    if (m_report.items == 0) {
        m_report.firstTime = item.time;
        m_report.lastTime = item.time;
    } else {
        m_report.firstTime = std::min(m_report.firstTime, item.time);
        m_report.lastTime = std::max(m_report.lastTime, item.time);
        if (item.time < m_previousTime)
            ++m_report.backwards;
    }
    m_previousTime = item.time;
    ++m_report.items;
}
