#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// The settings file of an application, kept so that neither a crash, a full disk nor a slip of the hand
/// while editing it loses the settings: beside the file lies its last good copy.
///
/// \code
/// ZrSettingsFile file(path);
/// zr::ZrSetApp loaded(zr::ePersistLoading);
/// if (file.Load(loaded.root))
///     loaded.synchronise(view);
/// else if (file.State() != ZrSettingsFile::Missing) // else it is the first start
///     tell(file.Error());
///
/// zr::ZrSetApp stored(zr::ePersistStoring);
/// stored.synchronise(view);
/// if (!file.Save(stored.root))
///     tell(file.Error());
/// \endcode
///
/// The files are indented JSON text, as `zr::ZrSetApp` writes and reads them. A file is good when it is one
/// JSON object from the first to the last byte, at most `MaxSize` of them. There is no checksum: values that
/// were changed within the rules of JSON are not noticed.
///
/// The copy, PATH.bak, is what the file held before it was saved last; where that was not good, it stays what
/// it was, and where there is no good copy, it becomes one of what is being saved. Saving what the file holds
/// already changes neither. To begin anew, remove both.
///
/// One thread at a time; several objects and programs at once, also on the same file: readers see the file as
/// it was or as it becomes, and of two who save at the same time one wins.
class ZR_KIT_EXPORT ZrSettingsFile
{
public:
    static constexpr qint64 MaxSize = 64 * 1024 * 1024; ///< bytes of a file

    enum eState : int
    {
        Idle, ///< nothing was loaded or saved yet
        Whole, ///< loaded from the file, or saved
        FromBackup, ///< loaded from the copy, see `Warning`
        Missing, ///< neither the file nor its copy is there
        Damaged, ///< neither is good; or the settings cannot be put in a good file
        Unreadable, ///< there is something that cannot be read, for instance a folder, and no good copy
        NotWritten, ///< the file could not be written
    };

    explicit ZrSettingsFile(const QString& path);

    QString Path() const { return m_path; }

    /// PATH.bak
    QString BackupPath() const;

    /// PATH.damaged, to which `Save` moves aside the bytes of a file that is not good.
    QString DamagedPath() const;

    /// Replaces \p root by the settings of the file or, when that is missing, damaged or cannot be read, by
    /// those of its copy. Writes nothing. False, and \p root as it was, when neither can be used.
    bool Load(QJsonObject& root);

    /// Replaces the file by \p root in one step, its folder being made where it is missing. True when the
    /// settings are in the file; what else went wrong stands in `Warning`.
    ///
    /// False, and the file as it was, when it cannot be written, when it would not load again (larger than
    /// `MaxSize` or nested more than 1,024 deep), or when what is there cannot be read.
    bool Save(const QJsonObject& root);

    /// Copies what the file holds, good or not, to `DamagedPath`; the file stays, and so do `State`, `Error`
    /// and `Warning`. False when that cannot be done, with the reason in \p error (may be null), or when
    /// there is nothing to be read in it, without one.
    bool PutAside(QString* error) const;

    /// How the last call ended.
    eState State() const { return m_state; }

    /// Why the last call failed, "PATH: reason"; empty when it did not.
    QString Error() const { return m_error; }

    /// What a person should know although the last call succeeded, whole sentences; mostly empty.
    QString Warning() const { return m_warning; }

    /// The file from which the last `Load` took the settings; empty when it failed.
    QString UsedPath() const { return m_usedPath; }

private:
    void Reset();
    void KeepFormer(eState state, const QByteArray& bytes, const QString& reason);
    void WriteBackup(const QByteArray& bytes);
    bool Fail(eState state, const QString& error);
    void Warn(const QString& sentence);

    QString m_path;
    QString m_usedPath;
    QString m_error;
    QString m_warning;
    eState m_state = Idle;
};
