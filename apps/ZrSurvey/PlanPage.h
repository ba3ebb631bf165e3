#pragma once

#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/planning/ZrLegEnds.h"
#include "ZrKit/planning/ZrPlanReview.h"
#include "ZrKit/planning/ZrPlanTotals.h"
#include "apps/ZrSurvey/PlanDrawing.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <QUuid>

class PlanFiles;
class PlanListPanel;
class PlanMarginPanel;
class PlanPanel;
class PlanPatternPanel;
class PlanPointPanel;
class QTimer;
class ZrBtn;
class ZrChoicePanel;
class ZrMapPanel;
class ZrPlanDocument;
class ZrTouchList;
class ZrValueTile;
class ZrWpt;
struct ZrListItem;

/// The page on which surveys are planned: the map with the plan, tools to its left, lists to its right, what
/// the plan comes to below.
class PlanPage : public SurveyPage
{
    Q_OBJECT

public:
    /// What a tap on the map means.
    enum eMode : int
    {
        modeBrowse = 0, ///< chooses
        modeAdd = 1, ///< adds a waypoint
        modeArea = 2, ///< adds a corner
        modePattern = 3 ///< nothing: the lines of a pattern are shown
    };

    explicit PlanPage(SurveyView& view);
    ~PlanPage() override;

    void OpenPlan(const QString& path); ///< in a while, or a message tells why not

    eMode Mode() const { return m_mode; }

    void SetMode(eMode mode);

    ZrMapSurface& Map() { return m_map; }

    const ZrPlanChart& Chart() const { return m_chart; }

    const ZrGridLayer& Grid() const { return m_grid; }

    /// Behind the buttons of the mode and their hint, at the upper edge of the map; empty without any.
    QRect Strip() const { return m_barRect; }

    void Fit(); ///< shows all of the plan

    void OnPageOpen() override;
    void zr_initializeGL() override;
    void zr_paintGL() override;
    bool OnKey(int key, Qt::KeyboardModifiers modifiers) override;
    void OnColours() override;
    int FreeBelow() const override;

protected:
    void Place() override;
    int BandRight() const override;
    int BandLeft() const override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum eSide : int
    {
        sideList = 0,
        sidePoint = 1,
        sideChecks = 2
    };

    // Making and placing.
    ZrBtn* AddButton(int type, const QString& icon, const QString& name, const QString& text,
        const QString& hint, const std::function<void()>& run);
    void AddBand();
    void AddTools();
    void AddBar();
    void AddSide();
    void Connect();
    void PlaceBand();
    void PlaceBar(const QRect& map);
    void PlaceSide(const QRect& side);
    void PlaceTiles(const QRect& map);
    void PlaceFurniture(const QRect& map); ///< of the map itself: clear of all the rest

    // What the page shows.
    void Later();
    void Refresh();
    void MatchOrigin();
    void MatchSelection(); ///< where what is selected is by now
    void MatchPattern(); ///< has the lines planned for the plan as it is
    void MatchChart(); ///< gives the chart what is new of the plan
    void RestoreCamera();
    void KeepCamera();
    void FitTo(const QRectF& bounds); ///< in what is free of the map; world
    ZrPlanTotals Totals(); ///< of the plan, or what a preview makes of it
    void ShowTotals();
    void ShowChecks();
    ZrListItem CheckRow(int row) const;
    void ChooseFinding(int row);
    void ChoosePin(const ZrPlanChart::Pin& pin);
    void ShowPattern();
    void ShowState();
    void ShowSide(eSide side);
    const ZrRoutePath& Path();
    std::vector<QUuid> WayIds() const; ///< the waypoints of `Path`
    double TouchRadius() const; ///< pixels of the map
    QPointF Crosshair() const; ///< world
    void CentreOn(ZrGeoPoint place);

    // What the user does.
    ZrPlanDocument& Plan() const;
    ZrWpt* Waypoint(int index) const;
    int IndexOf(const QUuid& waypoint) const; ///< -1 when it is not there
    const std::vector<ZrArea>& AreasOf(bool isNoGo) const;

    int Selected() const { return m_selected; }

    void Select(int waypoint, int leg = -1, int area = -1, bool isNoGo = false);

    bool HasLeg() const { return !m_legEnds.IsNull(); } ///< selected

    void LeaveLeg();
    void OnTapped(const QPointF& world, const QPointF& pixel);
    bool Claims(const QPointF& pixel);
    void OnDragged(int drag, const QPointF& world);
    void AddWaypoint(const QPointF& world, int before);
    void AddHere(const QPointF& world);
    void InsertIntoLeg();
    void DeleteSelected();
    void MoveSelected(int by);
    void Reverse();
    void Undo();
    void Redo();
    void Zoom(double factor);
    void SavePlan(bool asksForFile);
    void FinishArea();
    void KeepSketch(); ///< what is being drawn is in the draft as well
    void TakeSketch(); ///< goes on drawing what the plan has
    void RemoveLastCorner(); ///< of the area that is being drawn
    bool UndoCorner(); ///< false when there is none to undo
    bool RedoCorner();
    void LeaveCorners(); ///< of an area of the plan
    void EditArea();
    void DeleteArea();
    void StartPattern();
    void StartCorridor();
    int PatternPlace() const; ///< of the waypoint before which lines go
    void ApplyPattern();
    void ShowNoGo(); ///< whether the area that is drawn is one
    void ShowMore();
    void TellUndo(const QString& text);

    ZrMapSurface m_map;
    ZrPlanChart m_chart;
    PlanDrawing m_drawing;
    ZrGridLayer m_grid;
    ZrPlanReview m_review;
    ZrMapPanel* m_panel;
    PlanFiles* m_files;
    PlanListPanel* m_list;
    PlanPointPanel* m_point;
    PlanPatternPanel* m_pattern;
    PlanMarginPanel* m_margin;
    ZrTouchList* m_checks;
    ZrChoicePanel* m_more;
    QVector<ZrBtn*> m_bandButtons;
    QVector<ZrBtn*> m_tools;
    QVector<ZrBtn*> m_tabs;
    QVector<ZrBtn*> m_bar; ///< of the mode, or of what is selected
    ZrBtn* m_undo = nullptr;
    ZrBtn* m_redo = nullptr;
    ZrBtn* m_addTool = nullptr;
    ZrBtn* m_areaTool = nullptr;
    ZrBtn* m_patternTool = nullptr;
    ZrBtn* m_addHere = nullptr;
    ZrBtn* m_removeLast = nullptr;
    ZrBtn* m_keepClear = nullptr;
    ZrBtn* m_insert = nullptr;
    ZrBtn* m_linesOver = nullptr;
    ZrBtn* m_corners = nullptr;
    ZrBtn* m_deleteArea = nullptr;
    ZrBtn* m_done = nullptr;
    ZrValueTile* m_length = nullptr;
    ZrValueTile* m_duration = nullptr;
    ZrValueTile* m_lines = nullptr;
    ZrValueTile* m_count = nullptr;
    ZrValueTile* m_check = nullptr;
    QTimer* m_later;
    QTimer* m_busy; ///< until work with a file is worth a word
    QString m_units; ///< those that everything is shown in
    QString m_hint; ///< above the map; empty for none
    QRect m_hintRect;
    QRect m_barRect;
    QRect m_sideRect;
    eMode m_mode = modeBrowse;
    eSide m_side = sideList;
    ZrGeoPoint m_origin; ///< of the chart
    bool m_isChartDue = true; ///< whatever it shows, it is to be set anew
    int m_chartPlan = -1; ///< revision that it shows
    int m_chartWay = -1; ///< likewise, of the way
    int m_chartReview = -1; ///< state of the review whose findings it shows
    bool m_isFitDue = true;
    bool m_isCameraDue = true; ///< the map is to be where it was left, unless a plan is opened
    bool m_isOpened = false; ///< has been shown once
    int m_selected = -1; ///< waypoint
    QUuid m_selectedId;
    ZrLegEnds m_legEnds; ///< of the selected leg; null for none
    int m_leg = -1; ///< it, as the way that is shown counts; -1 where that has no such leg
    ZrGeoPoint m_legFoot; ///< where it was tapped
    int m_area = -1;
    bool m_isNoGo = false; ///< of the area
    ZrArea m_selectedArea; ///< what it is
    int m_patternPlan = -1; ///< revision that lines are planned for; -1 while none are
    bool m_isPreview = false; ///< what is told of is the plan with these lines
    int m_editedArea = -1; ///< whose corners are being moved; -1 for a new one
    bool m_isEditedNoGo = false; ///< of it, whatever is selected meanwhile
    int m_corner = -1; ///< that is dragged
    ZrGeoPoint m_dragStart;
    QPointF m_grab; ///< from the finger to the mark, world
};
