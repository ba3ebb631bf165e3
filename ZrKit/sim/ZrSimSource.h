#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/sim/ZrSimSettings.h"
#include "ZrKit/sim/ZrSimVehicleState.h"
#include "ZrUtil/ZrWpts.h"

#include <cstddef>
#include <memory>

/// A simulated vehicle as a source of records: what a recorder gets when no vehicle is at hand.
///
/// \code
/// ZrSimSource source(plan, settings, nullptr);
/// connect(&source, &ZrLineSource::Record, &recorder, &ZrRecorder::AddRecord);
/// connect(&source, &ZrLineSource::Finished, &recorder, &ZrRecorder::Stop);
/// QString error;
/// if (!source.Start(&error)) …
/// \endcode
///
/// The survey is simulated in a thread of the source, `MaxWaiting` records ahead at most; signals come on
/// the thread that the source lives on, which needs an event loop. Records have simulated times and come at
/// real time, or at a multiple of it (`SetFactor`); a computer, or a receiver, that cannot keep up makes
/// them come later, none is dropped. It gives no lines. A survey that ends before its plan says why by
/// `Trouble`, and then `Finished`.
///
/// All functions on the thread it lives on. None of them waits for more than one record.
class ZR_KIT_EXPORT ZrSimSource : public ZrLineSource
{
    Q_OBJECT

public:
    static constexpr double MaxFactor = 50.0;
    static constexpr std::size_t MaxWaiting = 256; ///< records; about a megabyte of pings

    ZrSimSource(const ZrWpts& plan, const ZrSimSettings& settings, QObject* parent);
    ~ZrSimSource() override;

    /// Begins at the start of the plan. False with a sentence in \p error when there is nothing to simulate
    /// or the source runs already.
    bool Start(QString* error) override;

    QString Name() const override;

    /// The factor, as far as `MaxWaiting` records reach; 0 while it is held.
    Pace TimePace() const override;

    /// Ends the simulation; nothing comes any more, `Finished` neither. Harmless when it does not run.
    void Stop();

    /// Holds the simulation at once, or lets it go on where it was. Stays over `Start`.
    void SetPaused(bool paused);

    bool IsPaused() const;

    /// Times faster than real time, 1 to `MaxFactor`; others are put into it, NaN is 1.
    void SetFactor(double factor);

    double Factor() const;

    /// Records that are ready and not delivered yet: many of them mean that the receiver cannot keep up.
    std::size_t Waiting() const;

    /// From `Start` until `Finished` or `Stop`.
    bool IsRunning() const;

    /// Where the vehicle was when the record delivered last was made.
    const ZrSimVehicleState& State() const { return m_state; }

    int Percent() const { return m_percent; } ///< of the way, likewise

private:
    struct Worker;

    Q_INVOKABLE void Deliver();

    ZrWpts m_plan;
    ZrSimSettings m_settings;
    ZrSimVehicleState m_state;
    int m_percent = 0;
    double m_recordRate = 0.0; ///< a second of simulated time
    bool m_paused = false;
    double m_factor = 1.0;
    std::unique_ptr<Worker> m_worker; ///< null unless running
};
