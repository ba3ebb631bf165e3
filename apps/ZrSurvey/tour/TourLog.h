#pragma once

#include <QString>
#include <QStringList>

/// Collects what Qt and the libraries complain of.
///
/// Takes the message handler of Qt, and the file of the debug log, from its start to its end. One at a time.
class TourLog
{
public:
    TourLog() = default;
    ~TourLog();
    TourLog(const TourLog&) = delete;
    TourLog& operator=(const TourLog&) = delete;

    /// Whether a message, from its first to its last letter, is one of the machine and not of the program: no
    /// folder for the session, no window manager, no bus, no room for watches.
    static bool IsOfTheMachine(const QString& text);

    void Start(const QString& folder); ///< where the debug log goes
    QStringList Take(); ///< what has come since the last call, but for what every display says

private:
    QString m_folder;
    bool m_isStarted = false;
    qint64 m_read = 0; ///< lines of the debug log
};
