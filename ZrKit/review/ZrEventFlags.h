#pragma once

#include "ZrKit/ZrKitExport.h"

#include <vector>

/// The events of a recording along its steady time: in which order they are flags of a time line, and which
/// of them is at a cursor.
///
/// The list of events is by the time of the log; where the clock was set back their steady times stand in
/// another order, and events without a time have no flag.
///
/// \code
/// const ZrEventFlags flags(steady); // of each event of the list, seconds
/// bar->SetEvents(flags.Times());
/// connect(bar, &ZrTimeBar::EventTapped, this, [&](int flag) { Choose(flags.EventOf(flag)); });
/// list->SetCurrent(flags.At(cursor, 0.5));
/// \endcode
///
/// Events and flags are counted from 0, and -1 is none. A value, which never changes once made.
class ZR_KIT_EXPORT ZrEventFlags
{
public:
    ZrEventFlags() = default;

    /// \param steady of each event, seconds; NaN for one without a time
    explicit ZrEventFlags(const std::vector<double>& steady);

    const std::vector<double>& Times() const { return m_times; } ///< of the flags, ascending

    int EventOf(int flag) const;
    int FlagOf(int event) const;

    /// The event next to \p time, at most \p within seconds away. Of two as near it is the earlier one, of
    /// those of one time the first of the list.
    int At(double time, double within) const;

    bool IsAt(int event, double time, double within) const; ///< false for one without a time

private:
    std::vector<double> m_times;
    std::vector<int> m_events; ///< by flag
    std::vector<int> m_flags; ///< by event
};
