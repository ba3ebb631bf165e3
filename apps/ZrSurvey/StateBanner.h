#pragma once

#include "ZrKit/ui/ZrBanner.h"

class SurveyView;
class ZrFilePanel;

/// What should be known of recordings and events until somebody has seen it, with the way out: the end of a
/// recording that nobody asked for, a source that has ended below one, events that cannot be written. Touched
/// away on one page it is away on all of them.
class StateBanner : public ZrBanner
{
    Q_OBJECT

public:
    enum eAbout : int
    {
        aboutAll = 0,
        aboutEvents = 1 ///< only what concerns events
    };

    StateBanner(QWidget* page, SurveyView& view, eAbout about = aboutAll);

    /// Asks for a file and writes the events there that are in memory only.
    static void ExportEvents(SurveyView& view);

private:
    void ShowState();
    void Dismiss();

    SurveyView& m_view;
    eAbout m_about;
};
