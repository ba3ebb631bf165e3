#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QWidget>

class StateBanner;
class SurveyView;
class ZrBtn;
class ZrLogEvt;
class ZrSurveyRecording;
class ZrTextPanel;
class ZrTouchList;

/// The events of a recording beside the page "Review": listed, added, edited, removed with undo; every change
/// is saved at once.
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
    void Undo();
    void Redo();

    void SetCurrent(int row);
    int Current() const;

    ZrTouchList& List() { return *m_list; }

    void Restyle();

Q_SIGNALS:
    void Changed(); ///< of the list; and it was saved, or a message says why not
    void Chosen(int event); ///< go there
    void Closed();
    void Unsaved(); ///< it is to be seen: the events could not be saved, and it says what to do

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString Subtitle(const ZrLogEvt& evt) const;
    bool Save(); ///< false, after a message, when they cannot be written
    QString Change(u64 id, const ZrLogEvt& before, const QString& words, const QString& shownTime);
    void TellUndo(const QString& text);
    void Fill();
    void Place();

    SurveyView& m_view;
    ZrSurveyRecording* m_recording = nullptr;
    StateBanner* m_banner;
    ZrTouchList* m_list;
    ZrTextPanel* m_text;
    ZrBtn* m_edit;
    ZrBtn* m_remove;
    ZrBtn* m_undo;
    ZrBtn* m_redo;
    ZrBtn* m_close;
};
