#pragma once

#include <QCoreApplication>
#include <QSize>
#include <QString>
#include <QStringList>

/// What the command line asks for.
///
/// \code
/// const SurveyOptions options = SurveyOptions::Read(QCoreApplication::arguments());
/// if (options.IsAnswered())
///     return options.Answer();
/// \endcode
///
/// Needs an application object for the language of what it says, but no display: `QCoreApplication` will do.
struct SurveyOptions
{
    Q_DECLARE_TR_FUNCTIONS(SurveyOptions)

public:
    QString data; ///< folder of the settings
    QString screenshot; ///< file to write, empty for none
    QString page; ///< to show first, empty for the one it begins with
    QSize size;
    QString tour; ///< folder, when `isTour`
    QString tourLine;
    QString file; ///< to open, empty for none
    bool isTour = false;
    bool isTimed = false; ///< tells of the first frame, and ends

    int exitCode = -1; ///< below 0: the program goes on
    QString output; ///< asked for
    QString error; ///< what is wrong with the options

    /// \param arguments the program first; those that are Qt's own are passed over
    static SurveyOptions Read(const QStringList& arguments);

    bool IsAnswered() const { return exitCode >= 0; } ///< that was all

    int Answer() const; ///< prints; \returns the exit code
};
