#pragma once

#include "Dive.h"
#include "ZrKit/ui/ZrBanner.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrEntryBtn.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"

#include <QWidget>

#include <memory>
#include <vector>

/// A window with the kit's controls at work: dives in a list, the one that is chosen in plots over its time.
class Desk final : public QWidget
{
    Q_OBJECT

public:
    Desk();

    void GoTo(double steady); ///< the one cursor of plots, time bar and values
    void SetColours(int scheme); ///< an `ZrColourScheme::eScheme`
    void AskTime(); ///< lets the user type one

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void Connect();
    void ShowDives();
    void ShowDive(int row);
    void Remove(int row);
    QString Typed(const QString& text);
    void Open(const QString& path);
    void Place();

    std::vector<std::shared_ptr<Dive>> m_dives;
    std::shared_ptr<Dive> m_dive; ///< the one that is shown; null for none

    ZrTouchList* m_list = new ZrTouchList(this);
    ZrEntryBtn* m_goTo = new ZrEntryBtn(this, tr("Go to"), tr("A typed time"));
    ZrEntryBtn* m_light = new ZrEntryBtn(this, tr("Light"), tr("Colours for day, dusk, night"));
    ZrEntryBtn* m_open = new ZrEntryBtn(this, tr("Open"), tr("A file of the disk"));
    ZrBanner* m_banner = new ZrBanner(this);
    ZrValueTile* m_time = new ZrValueTile(this, tr("Time, UTC"));
    ZrValueTile* m_depth = new ZrValueTile(this, tr("Depth"));
    ZrValueTile* m_altitude = new ZrValueTile(this, tr("Altitude"));
    ZrValueTile* m_heading = new ZrValueTile(this, tr("Heading"));
    ZrPlotPanel* m_plots = new ZrPlotPanel(this);
    ZrTimeBar* m_bar = new ZrTimeBar(this);
    // Over all others, hence made last.
    ZrToast* m_toast = new ZrToast(this);
    ZrTextPanel* m_ask = new ZrTextPanel(this);
    ZrChoicePanel* m_choice = new ZrChoicePanel(this, tr("Light"));
    ZrFilePanel* m_files = new ZrFilePanel(this, tr("Open a file"));
};
