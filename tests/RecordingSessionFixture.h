#pragma once

// A recording session whose source a test holds by its strings, on a clock and a disk of the test's own.

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/threads/ZrCallQueue.h"

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <future>
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

/// Runs \p what on the thread of \p calls, and waits for it.
template <class What> void RunOn(ZrCallQueue& calls, What what)
{
    std::promise<void> done;
    calls.Give([&] {
        what();
        done.set_value();
    });
    done.get_future().wait();
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

    ZrCallQueue m_calls; ///< of the thread of the source
    Pace m_pace; ///< set before anything comes
    QString m_lostAtStart; ///< why there is no connection yet; may be empty

    bool Start(QString* error) override
    {
        if (!m_lostAtStart.isEmpty())
            TellLost(m_lostAtStart);
        *error = m_problem;
        return m_problem.isEmpty();
    }

    QString Name() const override { return QStringLiteral("fake"); }

    Pace TimePace() const override { return m_pace; }

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
        FakeSource& source = *m_source;
        RunOn(source.m_calls, [&] { what(source); });
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
    std::atomic<FakeSource*> m_source{nullptr}; ///< made on its thread
};

} // namespace recording_session
