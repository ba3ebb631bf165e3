#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrWorker.h"
#include "ZrUtil/ZrTypes.h"

#include <QObject>

#include <array>
#include <memory>

class ZrSurveyRecording;

/// Corrects the bottom line of a recording by hand: strokes, undo and redo, another detection of a stretch.
/// Every step is used and saved at once.
///
/// \code
/// editor.SetRecording(recording);
/// editor.Draw(before.ping, before.slantRange, at.ping, at.slantRange); // for each move of the finger
/// editor.EndStroke();
/// connect(&editor, &ZrBottomEditor::Changed, &loader, &ZrWaterfallLoader::Renew);
/// connect(&editor, &ZrBottomEditor::SaveFailed, this, [this](const QString& error) { Warn(error); });
/// \endcode
///
/// The file is `ZrBottomFile`'s, written by a thread of its own in one step; a change that comes meanwhile is
/// written behind it. What could not be saved is tried once more with the next change, and when the recording
/// is let go, which waits for it.
///
/// Lives on the thread that uses the recording.
class ZR_KIT_EXPORT ZrBottomEditor : public QObject
{
    Q_OBJECT

public:
    explicit ZrBottomEditor(QObject* parent = nullptr);
    ~ZrBottomEditor() override;

    /// The one to work on; null for none. One without sonar counts as none.
    void SetRecording(const std::shared_ptr<ZrSurveyRecording>& recording);

    bool IsThere() const { return m_recording != nullptr; } ///< there is a line to correct

    /// Draws the line from one place to another, pings with their fractions and metres; part of a stroke
    /// until `EndStroke`. It is in `ZrSurveyRecording::Bottom` then and nowhere else. False when nothing
    /// changed.
    bool Draw(double fromPing, double fromAltitude, double toPing, double toAltitude);

    void EndStroke(); ///< the stroke is a step then

    /// Takes back what was set by hand in the pings \p first to \p last.
    bool Clear(std::size_t first, std::size_t last);

    bool CanUndo() const;
    bool CanRedo() const;
    bool Undo();
    bool Redo();

    /// How many of the pings \p first to \p last were set by hand.
    std::size_t EditedCount(std::size_t first, std::size_t last) const;

    /// Detects the line anew in the pings \p first to \p last, in place of what was found and drawn there;
    /// echoes near the line as it is are trusted more. Where nothing is found it stays.
    /// \param sides that are listened to, by `eSonarSide`
    /// \returns false while another detection is under way, and without a recording
    bool Track(std::size_t first, std::size_t last, const std::array<bool, 2>& sides);

    ZrWorker& Tracker() { return m_tracker; } ///< of the detection: its progress, and to cancel it

    bool IsTracking() const { return m_tracker.IsWorking(); }

    bool IsSaved() const { return m_saved == m_version; } ///< all that was changed is in the file

Q_SIGNALS:
    void Changed(qint64 first, qint64 end); ///< the altitudes of the pings \p first to before \p end
    void Saved();
    void SaveFailed(const QString& error); ///< a sentence with the path; what was changed is still there
    void Tracked(bool isChanged); ///< the detection has ended

private:
    struct SaveJob;
    struct TrackJob;

    void Apply();
    void Save();
    void OnSaved();
    void OnTracked();
    void Flush();

    std::shared_ptr<ZrSurveyRecording> m_recording;
    bool m_isDrawing = false; ///< a stroke is under way
    u64 m_version = 0; ///< counts changes
    u64 m_saved = 0; ///< the one that the file holds
    std::shared_ptr<SaveJob> m_saveJob;
    std::shared_ptr<TrackJob> m_trackJob;
    std::unique_ptr<ZrWorker> m_saver;
    ZrWorker m_tracker;
};
