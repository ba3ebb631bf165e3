#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <QWidget>

#include <array>
#include <vector>

class CellGrid;
class QScrollArea;
class ZrBtn;
class ZrInput;
class ZrProgress;

/// A window with every touch widget of the library in every state, in units and at a scale that the user
/// switches.
///
/// How it is made is what an application does:
///
/// - The theme gets the size that the layout was designed for, and the size of the window at every resize.
///   Whatever is measured in design pixels then has its real size.
/// - Widgets copy fonts and sizes from the theme when they are made, so they are made anew after a change of
///   the scale. What the user has entered lives in `Values`, not in the widgets.
/// - A change of the units needs no new widgets: every `ZrInput` shows its value anew.
class Gallery : public QWidget
{
    Q_OBJECT

public:
    /// A size that layouts are made for: the smaller it is, the larger everything in a given window.
    struct Scale
    {
        const char* name; ///< as the settings of applications call it
        const char* file; ///< in names of pictures
        int width; ///< design pixels
        int height;
    };

    static const std::vector<Scale>& Scales();

    static constexpr int kinds = 13; ///< of `ZrInput`

    Gallery();

    int CurrentScale() const { return m_scale; }

    void SetScale(int index); ///< into `Scales`
    void SetImperial(bool imperial);
    void SetTabletMode(bool tablet);

    ZrInput* Input(int kind) const; ///< the one of that kind which the user may change

    /// Everything, also what is scrolled out of the window. Each sample of the focused state has the focus
    /// in it, one after the other.
    QImage Picture();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum State
    {
        stateNormal,
        stateHovered,
        statePressed,
        stateOn,
        stateDisabled,
        stateFocused
    };

    /// What the user changes in the gallery.
    struct Values
    {
        bool recording = false;
        bool grid = true;
        int source = 1;
        double gain = 40.0;
        QColor colour = QColor(90, 160, 180, 200);
        QString name = QStringLiteral("Harbour 7");
        std::array<double, kinds> inputs = {
            {42.0, 3.14, 2.5, 0.0, 48.42561, -68.52984, 0.35, 120.0, 1852.0, 2.0, 4.5, 534787.5, 5363745.25}};
    };

    static QString StateName(State state);
    void AddShortcuts();
    void ApplyScale();
    void Build();
    void PlaceParts();
    void BuildBar();
    void AddButtons();
    void AddButtonRow(const QString& title, int type, const QString& icon, const QString& text);
    void AddChoices();
    void AddInputs();
    void AddInputStates();
    void AddPanels();
    void AddQtControls();
    void ShowUnits();
    ZrInput* MakeInput(int kind);
    void AddSample(const QString& what, QWidget* widget, State state, int columns);
    void ShowStates();
    void StartWork();

    Values m_values;
    int m_scale = 0;
    bool m_imperial = false;
    float m_builtFor = 0.0F; ///< the scale that the widgets were made for

    CellGrid* m_bar = nullptr; ///< what switches scale and units
    QScrollArea* m_scroll = nullptr;
    CellGrid* m_content = nullptr;
    std::array<ZrInput*, kinds> m_inputs{};
    ZrProgress* m_progress = nullptr;

    /// A widget that stays in one state: pointers do not reach it.
    struct Sample
    {
        QWidget* widget;
        State state;
    };

    std::vector<Sample> m_samples;
};
