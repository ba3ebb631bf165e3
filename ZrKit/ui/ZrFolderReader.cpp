#include "ZrKit/ui/ZrFolderReader.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

QString NameOf(const ZrFolderReader::Entry& entry)
{
    return entry.path.section(QLatin1Char('/'), -1);
}

bool HasSuffix(const QString& name, const QStringList& suffixes)
{
    return suffixes.isEmpty()
        || std::any_of(suffixes.begin(), suffixes.end(), [&name](const QString& suffix) {
               return name.endsWith(QLatin1Char('.') + suffix, Qt::CaseInsensitive);
           });
}

} // namespace

/// What is not a folder that can be read has no entries, and nothing else tells it from an empty one.
bool ZrFolderReader::Fail(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        m_error = QCoreApplication::translate("ZrFolderReader", "This folder is gone");
    else if (!info.isDir())
        m_error = QCoreApplication::translate("ZrFolderReader", "This is no folder");
    else if (!info.isReadable() || !info.isExecutable())
        m_error = QCoreApplication::translate("ZrFolderReader", "This folder cannot be read: no permission");
    return !m_error.isEmpty();
}

void ZrFolderReader::Sort(std::vector<Entry>& folders, std::vector<Entry>& files) const
{
    std::vector<std::pair<QString, std::size_t>> keys;
    keys.reserve(folders.size());
    for (std::size_t i = 0; i < folders.size(); ++i)
        keys.emplace_back(NameOf(folders[i]).toLower(), i);
    std::sort(keys.begin(), keys.end(), [&folders](const auto& a, const auto& b) {
        const int order = QString::localeAwareCompare(a.first, b.first);
        return order != 0 ? order < 0 : folders[a.second].path < folders[b.second].path;
    });
    std::vector<Entry> sorted;
    sorted.reserve(folders.size());
    for (const auto& key : keys)
        sorted.push_back(std::move(folders[key.second]));
    folders = std::move(sorted);
    std::sort(files.begin(), files.end(), [](const Entry& a, const Entry& b) {
        return a.time != b.time ? a.time > b.time : NameOf(a) < NameOf(b);
    });
}

bool ZrFolderReader::Read(const QString& folder, const QStringList& suffixes)
{
    m_entries.clear();
    m_left = 0;
    m_error.clear();
    if (cancel || Fail(folder))
        return false;
    std::vector<Entry> folders;
    std::vector<Entry> files;
    const QDir::Filters kinds = m_hasFiles ? QDir::Dirs | QDir::Files : QDir::Dirs;
    QDirIterator it(QFileInfo(folder).absoluteFilePath(), kinds | QDir::NoDotAndDotDot | QDir::Readable);
    while (it.hasNext() && !cancel) {
        it.next();
        const QFileInfo info = it.fileInfo();
        if (info.isDir())
            folders.push_back({info.absoluteFilePath(), true, 0, 0});
        else if (HasSuffix(info.fileName(), suffixes))
            files.push_back(
                {info.absoluteFilePath(), false, info.lastModified().toMSecsSinceEpoch(), info.size()});
    }
    // It may have gone while it was read.
    if (cancel || Fail(folder))
        return false;
    Sort(folders, files);
    m_entries = std::move(folders);
    m_entries.insert(
        m_entries.end(), std::make_move_iterator(files.begin()), std::make_move_iterator(files.end()));
    if (m_entries.size() > m_most) {
        m_left = m_entries.size() - m_most;
        m_entries.resize(m_most);
    }
    return true;
}
