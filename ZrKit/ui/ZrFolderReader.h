#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <vector>

/// Reads what is in a folder: its folders by name, then its files, the newest first.
///
/// \code
/// ZrFolderReader reader;
/// if (reader.Read(folder, {"gpx", "kml"}))
///     show(reader.Entries());
/// \endcode
///
/// Hidden entries are left out, and those that this user may not read. Names of folders are ordered as the
/// language does, without regard to capitals; files of the same time by name. Folders may be slow, for
/// instance on a network: `Read` belongs in a worker, and `cancel` may be set from any thread.
class ZR_KIT_EXPORT ZrFolderReader
{
public:
    struct Entry
    {
        QString path; ///< absolute
        bool isFolder = false;
        qint64 time = 0; ///< of the last change, milliseconds since 1970 UTC; files only
        qint64 bytes = 0; ///< likewise
    };

    static constexpr std::size_t NoLimit = static_cast<std::size_t>(-1);

    std::size_t m_most = NoLimit; ///< entries that are kept, the first ones
    bool m_hasFiles = true; ///< false for folders alone
    std::atomic<bool> cancel{false};

    /// \param suffixes of the files, without the dot, capitals or not; empty for all
    /// \returns false with the reason in `Error`, or cancelled: there are no entries then
    bool Read(const QString& folder, const QStringList& suffixes);

    const std::vector<Entry>& Entries() const { return m_entries; }

    std::size_t Left() const { return m_left; } ///< how many are beyond `m_most`

    QString Error() const { return m_error; } ///< empty when it was read, or cancelled

private:
    bool Fail(const QString& folder);
    void Sort(std::vector<Entry>& folders, std::vector<Entry>& files) const;

    std::vector<Entry> m_entries;
    std::size_t m_left = 0;
    QString m_error;
};
