#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPings.h"

#include <QByteArray>
#include <QString>

#include <vector>

class ZrBottomLine;

/// The bottom line of a log in a file beside it, LOG.bottom.json: what was found and what was set by hand.
///
/// \code
/// ZrBottomFile file(log.Path());
/// ZrBottomLine line(log.Pings().size());
/// if (!file.Load(log.Pings(), line) && file.State() != ZrBottomFile::Missing)
///     tell(file.Error());
/// …
/// if (!file.Save(log.Pings(), line))
///     tell(file.Error());
/// \endcode
///
/// JSON text:
///
/// - `format`: "ZrBottomLine"
/// - `version`: 1
/// - `log`: `pings`, their number; `first` and `last`, the times of the first and the last one, seconds since
///   the epoch, null without pings
/// - `found`: array of stretches, in order: `ping`, the number of the first one, from 0, and `altitudes`,
///   metres, ping by ping; pings in none of them have no altitude
/// - `edited`: likewise what was set by hand
///
/// A file belongs to a log when number and times of the pings are exactly the same. `Save` replaces the file
/// in one step, or leaves it as it was; a file that could not be loaded is first moved to
/// LOG.bottom.json.kept (with a number from the second on). Altitudes come back bit by bit.
///
/// One thread at a time; of two that save at the same time one wins.
class ZR_KIT_EXPORT ZrBottomFile
{
public:
    static constexpr qint64 MaxSize = 256 * 1024 * 1024; ///< bytes of a file: some ten million pings

    enum eState : int
    {
        Idle, ///< nothing was loaded or saved yet
        Whole, ///< loaded or saved
        Missing, ///< there is no file
        Damaged, ///< not understood to its end
        Foreign, ///< of another log, another kind or a later version
        Unreadable, ///< there is something that cannot be read, a folder or a larger file
        NotWritten ///< the file could not be written
    };

    explicit ZrBottomFile(const QString& logPath);

    QString Path() const { return m_path; }

    /// Replaces \p line. False, and \p line as it was, with the reason in `Error` when there is no file or it
    /// cannot be used.
    bool Load(const ZrSonarPings& pings, ZrBottomLine& line);

    /// Replaces the file by \p line. False with the reason in `Error`, and what was there as it was, when it
    /// cannot be written or read, would exceed `MaxSize`, or \p line has another number of pings.
    bool Save(const ZrSonarPings& pings, const ZrBottomLine& line);

    eState State() const { return m_state; } ///< how the last call ended

    QString Error() const { return m_error; } ///< why the last call failed, "PATH: reason"; else empty

    QString KeptPath() const { return m_keptPath; } ///< where the last `Save` moved a file to; else empty

private:
    QByteArray ReadAll();
    bool Keep();
    bool Fail(eState state, const QString& reason);

    QString m_path;
    QString m_keptPath;
    QString m_error;
    eState m_state = Idle;
};
