#pragma once

// A recording session whose source a test holds by its strings, on a clock and a disk of the test's own.

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/records/ZrNavRecord.h"

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <memory>

namespace recording_session {

inline QByteArray Nav(double latitude)
{
    ZrNavRecord nav;
    nav.latitude = latitude;
    nav.longitude = -4.0;
    nav.heading = 45.0F;
    return nav.Encode();
}

/// A source whose strings a test pulls.
class FakeSource : public ZrLineSource
{
public:
    explicit FakeSource(const QString& problem)
        : ZrLineSource(nullptr)
        , m_problem(problem)
    {
    }

    using ZrLineSource::TellBack;
    using ZrLineSource::TellLost;

    QString m_lostAtStart; ///< why there is no connection yet; may be empty

    bool Start(QString* error) override
    {
        if (!m_lostAtStart.isEmpty())
            TellLost(m_lostAtStart);
        *error = m_problem;
        return m_problem.isEmpty();
    }

    QString Name() const override { return QStringLiteral("fake"); }

private:
    QString m_problem;
};

/// What each test function begins with.
class Session
{
protected:
    void Begin()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_now = 1000.0;
        m_free = 1000000000;
        m_session = std::make_unique<ZrRecordingSession>([this] { return double(m_now); }, nullptr);
    }

    void End() { m_session.reset(); }

    void Open()
    {
        m_session->Open([this] {
            auto* source = new FakeSource(QString());
            m_source = source;
            return source;
        });
        QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceOpen);
    }

    /// Runs on the thread of the source, and waits for it.
    template <class What> void Pull(What what)
    {
        QMetaObject::invokeMethod(
            m_source, [this, &what] { what(*m_source); }, Qt::BlockingQueuedConnection);
    }

    void GiveLine(const QByteArray& line)
    {
        Pull([&line](FakeSource& source) { Q_EMIT source.Line(line); });
    }

    void Give(CRecType type, double time, const QByteArray& payload)
    {
        Pull([&](FakeSource& source) { Q_EMIT source.Record(type, 1, time, payload); });
    }

    ZrRecorder::Options Options()
    {
        ZrRecorder::Options options;
        options.dir = m_dir->path();
        options.stopBelow = 1000;
        options.warnBelow = 0;
        options.freeSpace = [this] { return qint64(m_free); };
        return options;
    }

    QString Record()
    {
        m_session->Start(Options());
        return QTest::qWaitFor([this] { return m_session->Recording() == ZrRecordingSession::recordingOn; })
            ? m_session->Status().file
            : QString();
    }

    void Stop()
    {
        m_session->Stop();
        QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOff);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::atomic<double> m_now{1000.0};
    std::atomic<qint64> m_free{1000000000};
    std::unique_ptr<ZrRecordingSession> m_session;
    FakeSource* m_source = nullptr;
};

} // namespace recording_session
