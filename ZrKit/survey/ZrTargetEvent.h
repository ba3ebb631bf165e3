#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarTarget.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QString>

/// A sonar target as an event of the recording: it stands in the event file with all others, and any program
/// that lists events shows it in words.
///
/// \code
/// events.Add(ZrTargetEvent::ToEvent(target));
/// ZrSonarTarget again;
/// if (ZrTargetEvent::ToTarget(events.At(i), again))
///     …
/// \endcode
///
/// The text of the event is the name of the target, its detail what was measured, metric whatever the units
/// in force, in this order, what is not known left out:
///
///     Target 48.44512345, -68.82812345; starboard, ping 150, sample 600.5; slant range 52.104 m; ground
///     range 50.301 m; altitude 13.302 m; length 3.202 m; width 1.104 m; height 0.851 m; remark
///
/// (one line). Pings count from 0. The remark is all that follows and is no measure. Any thread.
struct ZR_KIT_EXPORT ZrTargetEvent
{
    /// \param name the text of one that has none itself
    static ZrLogEvt ToEvent(const ZrSonarTarget& target, const QString& name = QStringLiteral("Target"));

    /// False, and \p target as it was, when \p evt is none, or its detail is not whole.
    static bool ToTarget(const ZrLogEvt& evt, ZrSonarTarget& target);
};
