#pragma once

#include "ZrKit/review/ZrEventFlags.h"
#include "ZrUtil/ZrTypes.h"

#include <QWidget>

#include <limits>

class StateBanner;
class SurveyView;
class ZrBtn;
class ZrLogEvt;
struct ZrSonarTarget;
class ZrSurveyRecording;
class ZrTextPanel;
class ZrTouchList;

/// The events of a recording beside the page "Review": listed, added, edited, removed with undo; every change
/// is saved at once.
///
/// One of them is the current one, which stands out and is edited and removed: the event at the cursor, or
/// that which was chosen, until the cursor leaves it.
class ReviewEvents : public QWidget
{
    Q_OBJECT

public:
    ReviewEvents(QWidget* parent, SurveyView& view);

    void Show(ZrSurveyRecording* recording); ///< null for none

    /// Adds an event at a steady time, after asking for its text unless one is given.
    void Add(double steady, const QString& text = QString(), const QString& detail = QString());
    void Add(const ZrLogEvt& evt); ///< at once

    void Edit(int row);
    void Remove(int row);
    void EditCurrent(); ///< a message says so where there is none
    void RemoveCurrent(); ///< likewise
    void Undo();
    void Redo();

    static constexpr double AtCursor = 0.5; ///< seconds: an event so near to the cursor is at it

    void SetCursor(double steady); ///< NaN for none
    void SetCurrent(int event); ///< -1 for none
    int Current() const; ///< likewise

    const ZrEventFlags& Flags() const { return m_flags; }

    ZrTouchList& List() { return *m_list; }

    void Restyle();

Q_SIGNALS:
    void Changed(); ///< of the list; and it was saved, or a message says why not
    void Chosen(int event); ///< go there
    void CurrentChanged(int event); ///< -1 for none
    void Closed();
    void Unsaved(); ///< it is to be seen: the events could not be saved, and it says what to do

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString Lines(const ZrLogEvt& evt) const;
    QString Details(const ZrSonarTarget& target) const;
    bool Save(); ///< false, after a message, when they cannot be written
    QString Change(u64 id, const ZrLogEvt& before, const QString& words, const QString& shownTime);
    void TellUndo(const QString& text);
    void Fill();
    void Reveal(u64 id);
    bool IsAtCursor(int event) const;
    void Place();

    SurveyView& m_view;
    ZrSurveyRecording* m_recording = nullptr;
    ZrEventFlags m_flags;
    double m_cursor = std::numeric_limits<double>::quiet_NaN();
    u64 m_current = 0; ///< id; 0 for none
    StateBanner* m_banner;
    ZrTouchList* m_list;
    ZrTextPanel* m_text;
    ZrBtn* m_edit;
    ZrBtn* m_remove;
    ZrBtn* m_undo;
    ZrBtn* m_redo;
    ZrBtn* m_close;
};
