#pragma once

#include "CliSignals.h"

#include <QString>
#include <QStringList>

#include <memory>

/// The file a verb makes: written under a temporary name beside its place and renamed when it is complete.
///
/// \code
/// CliTarget target;
/// if (int code = target.Prepare(out, force, {in}))
///     return code;
/// if (int code = target.CreateTemporary())
///     return code;
/// …write target.TemporaryPath()…
/// return target.Commit();
/// \endcode
///
/// Until `Commit` succeeds the target is untouched. The temporary file is removed when the object goes, and
/// by a signal. All functions return an exit code, and complain unless it is 0.
class CliTarget
{
public:
    CliTarget() = default;
    ~CliTarget();
    CliTarget(const CliTarget&) = delete;
    CliTarget& operator=(const CliTarget&) = delete;

    /// Checks the target before anything is touched: not one of \p inputs, not existing unless \p force, an
    /// ordinary file in a folder that can be written.
    int Prepare(const QString& path, bool force, const QStringList& inputs);

    /// Where the file will stand: the path given, or what it leads to when it is a link.
    QString Path() const { return m_path; }

    int CreateTemporary();

    QString TemporaryPath() const { return m_temporary; }

    /// Complains that the temporary file cannot take more, with the system's reason if it tells one.
    int FailWriting() const;

    /// True when the disk refuses to take more of the temporary file; `FailWriting` will tell why.
    bool CannotGrow() const;

    /// Puts the temporary file in its place.
    int Commit();

private:
    int Refuse(const QString& reason) const;
    int CheckPlace() const;
    QString GrowthError() const;

    QString m_given; ///< as on the command line, for messages
    QString m_path;
    QString m_temporary; ///< empty while there is none
    bool m_force = false;
    std::unique_ptr<cli::RemoveOnInterrupt> m_guard;
};
