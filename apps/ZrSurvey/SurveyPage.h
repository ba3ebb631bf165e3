#pragma once

#include "ZrUtil/ZrPage.h"

#include <QElapsedTimer>
#include <QString>

class QTimer;
class SurveyView;
class ZrBtn;

/// A page of the application: a band with the title above its content, and frames while something moves.
///
/// A page paints only when it asks for it: `Changed` for one frame, `Animate` for as many as `OnFrame` wants.
/// Its widgets are placed by `Place`, in real pixels, whenever its size or the scale changes.
class SurveyPage : public ZrPage
{
    Q_OBJECT

public:
    static constexpr float BandHeight
        = 80.0F; ///< design pixels, at least; the window's close button is in it

    SurveyPage(SurveyView& view, const QString& title);

    SurveyView& View() const { return m_survey; }

    QString Title() const { return m_title; }

    void SetTitle(const QString& title);
    void SetSubtitle(const QString& subtitle); ///< what the page is working on, for instance a file

    QRect Content() const; ///< below the band
    int BandBottom() const; ///< real pixels: the buttons in it are never smaller than a finger
    int Gap() const; ///< between controls: every distance is a multiple of it

    /// How much of the lower edge messages leave free, real pixels: controls that are in use meanwhile.
    virtual int FreeBelow() const { return 0; }

    virtual int FreeRight() const { return 0; } ///< likewise of the right one

    void Changed(); ///< asks for one frame
    void Animate(); ///< asks for frames until `OnFrame` returns false

    virtual void OnColours(); ///< colours or scale have changed; repaints
    virtual bool OnKey(int key, Qt::KeyboardModifiers modifiers); ///< a shortcut; true when it was one

protected:
    virtual void Place() = 0; ///< gives the page's widgets their places in `Content`
    virtual bool OnFrame(double seconds); ///< moves what moves by so much time; false when all is at rest
    virtual int BandLeft() const; ///< where a page's own controls in the band begin
    virtual int BandRight() const; ///< and end

    /// Whether a recording that plays goes on when this page is opened.
    virtual bool ShowsReview() const { return false; }

    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    ZrBtn* m_back;
    ZrBtn* m_settings;

private:
    void PlaceAll();
    QRect RecordingRect() const; ///< of the state at the right of the band; empty while there is none
    void PaintRecording(QPainter& painter) const;
    void OnTick();

    SurveyView& m_survey;
    QString m_title;
    QString m_subtitle;
    QTimer* m_frames;
    QElapsedTimer m_clock;
};
