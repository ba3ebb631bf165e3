#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

/// A window manager for as long as it lives: openbox, unless the display has one already. Before the
/// application object: Qt asks for the abilities of the window manager once.
class ZrWindowManager
{
public:
    ZrWindowManager()
    {
        if (!m_home.isValid()) {
            m_error = "no temporary folder";
            return;
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // Neither reads nor leaves anything in the home of the person who runs the tests.
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            environment.insert(QString::fromLatin1(name), m_home.path());
        m_program.setProcessEnvironment(environment);
        m_program.setProcessChannelMode(QProcess::MergedChannels);
        // What it runs once it is ready.
        const QString sign = m_home.filePath(QStringLiteral("ready"));
        m_program.start(QStringLiteral("openbox"),
            {QStringLiteral("--sm-disable"), QStringLiteral("--startup"), QStringLiteral("touch ") + sign});
        if (!m_program.waitForStarted()) {
            m_error = "openbox is not installed";
            return;
        }
        const QDeadlineTimer deadline(30000);
        while (!QFile::exists(sign) && !deadline.hasExpired()) {
            if (!m_program.waitForFinished(20) && m_program.state() != QProcess::NotRunning)
                continue;
            const QByteArray output = m_program.readAll();
            if (!output.contains("already running"))
                m_error = "openbox does not run: " + output;
            return;
        }
        if (!QFile::exists(sign))
            m_error = "openbox does not become ready";
    }

    ~ZrWindowManager()
    {
        if (m_program.state() == QProcess::NotRunning)
            return;
        m_program.terminate();
        if (!m_program.waitForFinished(10000))
            m_program.kill();
    }

    ZrWindowManager(const ZrWindowManager&) = delete;
    ZrWindowManager& operator=(const ZrWindowManager&) = delete;

    /// Why there is none; empty when there is one.
    QByteArray Error() const { return m_error; }

private:
    QTemporaryDir m_home;
    QProcess m_program;
    QByteArray m_error;
};
