#pragma once

// A plugin of positions for tests: it offers whatever the test has put in, before all others.

#include <QGeoPositionInfoSource>
#include <QGeoPositionInfoSourceFactory>
#include <QObject>

#include <functional>

class ZrTestPositions : public QObject, public QGeoPositionInfoSourceFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.qt.position.sourcefactory/5.0" FILE "ZrTestPositions.json")
    Q_INTERFACES(QGeoPositionInfoSourceFactory)

public:
    /// Makes the source; the plugin has none while it is empty.
    static std::function<QGeoPositionInfoSource*(QObject*)> s_make;

    QGeoPositionInfoSource* positionInfoSource(QObject* parent) override
    {
        return s_make ? s_make(parent) : nullptr;
    }

    QGeoSatelliteInfoSource* satelliteInfoSource(QObject* /*parent*/) override { return nullptr; }

    QGeoAreaMonitorSource* areaMonitor(QObject* /*parent*/) override { return nullptr; }
};

/// A source that says what the test makes it say, and else nothing.
class ZrTestSource : public QGeoPositionInfoSource
{
    Q_OBJECT

public:
    int m_starts = 0;

    explicit ZrTestSource(QObject* parent)
        : QGeoPositionInfoSource(parent)
    {
    }

    QGeoPositionInfo lastKnownPosition(bool /*isSatelliteOnly*/) const override { return {}; }

    PositioningMethods supportedPositioningMethods() const override { return AllPositioningMethods; }

    int minimumUpdateInterval() const override { return 0; }

    Error error() const override { return m_error; }

    void Fail(Error error)
    {
        m_error = error;
        Q_EMIT QGeoPositionInfoSource::error(error);
    }

public Q_SLOTS:

    void startUpdates() override
    {
        ++m_starts;
        if (m_failsAtStart)
            Fail(AccessError);
    }

    void stopUpdates() override { }

    void requestUpdate(int /*timeout*/) override { }

public:
    bool m_failsAtStart = false;

private:
    Error m_error = NoError;
};
