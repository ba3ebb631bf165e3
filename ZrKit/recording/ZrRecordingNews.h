#pragma once

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/recording/ZrLivePing.h"
#include "ZrKit/recording/ZrLiveState.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QByteArrayList>
#include <QPointF>

#include <vector>

/// What came from the source of a recording session since it told last. A plain value.
struct ZrRecordingNews
{
    static constexpr int MostLines = 64;

    u64 source = 0; ///< counts the sources opened and closed: another number begins a new trail
    ZrLiveState state;
    std::vector<QPointF> trail; ///< new positions: longitude as x, latitude as y, degrees
    std::vector<ZrLivePing> pings; ///< new ones, port and starboard as they came
    QByteArrayList lines; ///< the newest raw lines, `MostLines` at most
    u64 lineCount = 0; ///< lines since the source was opened
    u64 recordCount = 0; ///< records likewise, decoded ones too
    u64 byteCount = 0; ///< that a recording of all of it would have taken, bytes of a log
    u64 damagedLines = 0; ///< no sound sentences
    u64 droppedLines = 0; ///< too long to be taken
    u64 lostPings = 0; ///< that were not shown since the screen was too slow; they are recorded all the same
    std::vector<ZrLogEvt> lostEvents; ///< new ones of the user that no log has taken
    bool tellsTime = false; ///< the source tells the times of its items; else they are those of arrival
    ZrLineSource::Pace pace; ///< of these times
    bool isRecording = false;
    ZrRecorder::Status status; ///< of the recording, or of the last one
};
