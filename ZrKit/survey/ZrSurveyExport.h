#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarBlanking.h"
#include "ZrKit/sonar/ZrSonarTarget.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrTypes.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

class IZrProgress;
class QImage;
class ZrExportRange;
class ZrRecordSource;
class ZrSonarLog;
class ZrSteadyTime;
class ZrSurveyRecording;
struct ZrLogRec;

/// Writes a part of a recording into a file: as a log of its own, track, tables, targets or pictures of the
/// sonar.
///
/// The file takes its place in one step when it is complete; a failure or `Stop` leaves what was there.
/// Records are read piece by piece from the index and samples from the log, so that memory goes neither with
/// the log nor with the part; where the index must be made anew it is 8 bytes for a record, and 160 more
/// where no disk takes it, or one fills meanwhile. That of pictures goes with their pixels and with the pings
/// of the part, and of the log where its bottom line has gaps or was corrected.
///
/// \code
/// auto part = std::make_shared<ZrSurveyExport>(recording, from, to);
/// worker.Start([=](IZrProgress& progress) { part->Run(ZrSurveyExport::track, path, &progress); },
///     [=] { part->Stop(); });
/// \endcode
///
/// Without a worker:
///
/// \code
/// ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
/// part.slant = true;
/// if (part.Run(ZrSurveyExport::waterfall, "line.png") == ZrSurveyExport::Failed)
///     return part.Error();
/// \endcode
///
/// Threads: made in the thread of the recording, whose events and bottom line it takes over as they are,
/// those that could not be saved too; `Run` may be called in any, also while the recording is in use, `Stop`
/// from any other meanwhile.
class ZR_KIT_EXPORT ZrSurveyExport
{
    Q_DECLARE_TR_FUNCTIONS(ZrSurveyExport)

public:
    enum eKind : int
    {
        segment, ///< a log of its own with its events, see `ZrExportRange::WriteLog`
        track, ///< with the events, see `ZrTrackExport`
        records, ///< a table, see `ZrExportRange::WriteRecords`
        events, ///< a table, see `ZrEventTable`
        targets, ///< see `ZrTargetFile`; the rest needs side-scan sonar too
        waterfall, ///< a picture, see `ZrWaterfall`
        mosaic, ///< a picture with its place on the earth, see `ZrMosaicFile`
        kindCount
    };

    enum eResult : int
    {
        Done,
        Failed, ///< `Error` says why
        Cancelled
    };

    /// \name How pictures look; set before `Run`
    /// @{
    QString palette; ///< see `ZrSonarPalette::Names`; empty for the first one
    bool slant = false; ///< waterfall: corrected for slant range
    int blanking = ZrSonarBlanking::none; ///< waterfall: what is left dark
    double gain = 0.0; ///< waterfall: dB beyond the automatic gain
    double contrast = 1.0; ///< waterfall: times the automatic one
    /// @}

    /// The part between two steady times of \p recording, in either order, ends included. Events and targets
    /// are of it by their own times; from one end of the recording to the other events without a time too.
    ZrSurveyExport(std::shared_ptr<const ZrSurveyRecording> recording, double from, double to);

    ZrSurveyExport(const ZrSurveyExport&) = delete;
    ZrSurveyExport& operator=(const ZrSurveyExport&) = delete;

    /// Writes \p path, in the format that its suffix asks for; \p progress, which may be null, is told the
    /// percentages. Never over a file of the recording itself, with none of the files that it writes.
    eResult Run(int kind, const QString& path, IZrProgress* progress = nullptr);

    /// Ends `Run` soon, or at once when it begins later.
    void Stop();

    QString Error() const { return m_error; } ///< why the last `Run` failed, a sentence; else empty

    QString Remark() const { return m_remark; } ///< what is damaged in the log that was written; else empty

    u64 Items() const { return m_items; } ///< items, points, records, events, targets or pings written last

    /// \name What was done to the waterfall written last
    /// Without any altitude columns are slant range, and of the water the outgoing pulse alone is dark.
    /// @{
    bool IsSlantCorrected() const { return m_isSlantCorrected; }

    int Blanking() const { return m_blanking; } ///< a kind of `ZrSonarBlanking`

    /// @}

    /// The suffixes of files of a kind, the usual one first; empty for a kind that there is not.
    static QStringList Suffixes(int kind);

    /// What a file of a kind is called, for its name: "track".
    static QString Name(int kind);

private:
    /// Has `Stop` reach what is under way.
    class Step
    {
    public:
        Step(ZrSurveyExport& part, std::atomic<bool>& cancel);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        ZrSurveyExport& m_part;
    };

    bool Fail(const QString& error);
    void Forget();
    bool Write(int kind, const QString& path, IZrProgress* progress);
    QString WhyNot(int kind, const QString& path) const;
    QString WhyNotFile(const QString& path) const;
    bool WritePart(int kind, const QString& path, IZrProgress* progress);
    void SetSonarEnds(ZrExportRange& part, const ZrLogRec& last) const;
    std::shared_ptr<const ZrSteadyTime> TimesOf(ZrRecordSource& source, bool isLogUnchanged);
    bool WriteTargets(const QString& path);
    bool OpenLog(ZrSonarLog& log);
    bool DrawWaterfall(const QString& path, IZrProgress* progress);
    bool DrawMosaic(const QString& path, IZrProgress* progress);
    bool WritePicture(const QImage& image, const QString& path);
    QString Palette() const;

    std::shared_ptr<const ZrSurveyRecording> m_recording;
    double m_from;
    double m_to;
    ZrBottomLine m_bottom; ///< that of the recording may be corrected meanwhile
    std::vector<ZrLogEvt> m_events; ///< of the part, likewise
    std::vector<ZrSonarTarget> m_targets; ///< of the part
    std::size_t m_firstPing = 0;
    std::size_t m_endPing = 0; ///< behind the last one
    std::atomic<bool> m_cancel{false};
    std::mutex m_stepGuard; ///< of the pointer
    std::atomic<bool>* m_stepCancel = nullptr; ///< of what is under way
    QString m_error;
    QString m_remark;
    u64 m_items = 0;
    bool m_isSlantCorrected = false;
    int m_blanking = ZrSonarBlanking::none;
};
