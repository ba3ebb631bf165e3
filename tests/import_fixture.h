#pragma once

#include "ZrKit/import/ZrImporter.h"
#include "ZrUtil/ZrSpan.h"

#include <QDateTime>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <memory>

/// What the tests of the importers share: data files, files made on the spot, whole imports in memory.
namespace fixture {

inline QString data(const char* name)
{
    return QStringLiteral(ZR_SOURCE_DIR "/data/") + QLatin1String(name);
}

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes \p bytes to \p name below \p folder and returns the path.
inline QString write(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = folder.filePath(name);
    // Removed rather than truncated: some file systems wait for the disk when a truncated file is closed.
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write the test file");
    return path;
}

inline void setModified(const QString& path, const QDateTime& time)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot set the time of the test file");
}

/// A file read to its end.
struct Imported
{
    bool opened = false;
    QString error;
    QVector<ZrImportItem> items;
    ZrImportReport report;

    int Count(int type) const
    {
        return static_cast<int>(std::count_if(
            items.begin(), items.end(), [type](const ZrImportItem& item) { return item.type.type == type; }));
    }

    QVector<ZrImportItem> Of(int type) const
    {
        QVector<ZrImportItem> found;
        std::copy_if(items.begin(), items.end(), std::back_inserter(found),
            [type](const ZrImportItem& item) { return item.type.type == type; });
        return found;
    }

    /// Words of the issues, with their places, line by line.
    QString Issues() const
    {
        QStringList texts;
        for (const ZrImportReport::Issue& issue : report.issues)
            texts.append(report.IssueText(issue));
        return texts.join(QLatin1Char('\n'));
    }

    u64 Note(const char* text) const { return report.notes.value(QString::fromUtf8(text)); }
};

inline Imported import(const QString& path, const QString& format = QStringLiteral("auto"),
    const ZrImportOptions& options = ZrImportOptions())
{
    Imported result;
    const std::unique_ptr<ZrImporter> importer = ZrImporter::Create(path, format, options, &result.error);
    result.opened = importer != nullptr;
    ZrImportItem item;
    while (importer && importer->Next(item))
        result.items.append(item);
    if (importer)
        result.report = importer->Report();
    return result;
}

/// The record in an item; a default one, and a warning, when it does not fit.
template <class Record> Record decoded(const ZrImportItem& item)
{
    Record record;
    if (item.type.type != static_cast<u16>(Record::RecType) || item.format != Record::Format
        || !Record::Decode(zr::bytes_of(item.payload), record))
        qWarning("the item does not hold such a record");
    return record;
}

} // namespace fixture
