#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"

#include <QGeoPositionInfo>
#include <QMap>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <limits>
#include <string>

class QGeoPositionInfoSource;
class QTimer;
class ZrAppBack;
class ZrBtn;
class ZrFormMgr;
class ZrPage;
class ZrProgress;

/// The one window of an application: its pages, its OpenGL context, the pace of painting, the settings forms,
/// and the position of the boat.
///
/// \code
/// QApplication app(argc, argv);
/// ZrTheme::SetDesignScale(1440, 900);
/// ZrTheme::SetStdStyle();
/// const std::chrono::milliseconds period(40);
/// ZrAppView view(nullptr, period, ZrAppView::updateTimer, period);
/// view.AddPage("Home", new HomePage(&view), true);
/// view.show();
/// return app.exec();
/// \endcode
///
/// Pages are added before the window is shown; of those added later the GL part is initialised at once. The
/// upper band of the window, 200 design pixels high, 100 once it has been resized, drags it, and a double
/// click there makes it full screen.
///
/// At every resize the theme is scaled to the window, and with it the style sheet and the font of the
/// application. Where no OpenGL context can be had the window stays empty and the program goes on; nothing
/// named …GL is called then.
///
/// GUI thread only. The process has one object of this class at a time.
class ZR_UTIL_EXPORT ZrAppView : public QOpenGLWidget, public QOpenGLFunctions, public zr::IPersistable
{
    Q_OBJECT

public:
    /// What asks for frames.
    enum eUpdateMode : int
    {
        updateTimer = 0, ///< a timer
        updateAdjusted = 1, ///< the timer, adjusted by the second duration
        updateContinuous
        = 2 ///< the timer, and every frame asks for the next one: the swap interval paces them
    };

    /// Where the boat is, degrees and metres; NaN until a position has come, and what a position lacks.
    struct StartPos
    {
        QString source;
        double latitude = std::numeric_limits<double>::quiet_NaN();
        double longitude = std::numeric_limits<double>::quiet_NaN();
        double altitude = std::numeric_limits<double>::quiet_NaN();
    };

    static ZrAppView* s_pApp; ///< the one object; null without one

    QMap<QString, ZrPage*> m_pages; ///< by name; children of the view
    ZrPage* m_current = nullptr; ///< the page that is shown
    QStringList m_stack; ///< names of the pages visited
    bool m_continuous; ///< every frame asks for the next one

    /// \param period time between repaints
    /// \param second in mode `updateAdjusted`: equal to \p period it makes the timer a precise one; any other
    /// becomes its interval, and each of its ticks repaints the view a second time
    ZrAppView(QWidget* parent, std::chrono::milliseconds period, eUpdateMode mode,
        std::chrono::milliseconds second);
    ~ZrAppView() override;

    /// The one object. There must be one.
    static ZrAppView& get();

    /// Adds a page under a name; it becomes the current one when \p show is set or none was. Neither hides
    /// the page before nor calls `OnPageOpen`. A null page is kept under its name as none. A page that had
    /// the name before stays a child of the view.
    void AddPage(QString name, ZrPage* page, bool show);

    ZrPage* GetPage(QString name); ///< null when there is none

    /// Shows a page. Null, and nothing changes, when there is none of that name.
    /// \param push remember it for `Back`; the first page ever shown is not remembered
    ZrPage* SetPageTo(QString name, bool push);

    void Back(); ///< to the page visited before, or home
    void GoHome(); ///< to the page "Home"; forgets the pages visited

    void ToggleSettings(); ///< shows or hides the settings forms
    void ScreenMode(); ///< full screen and back
    void Update(); ///< repaints the view and the current page

    /// Has theme and layout computed anew, after a change of `ZrTheme::designWidth` or `designHeight`: goes
    /// to half of its size and back. A window whose size is not its own to change, full screen or maximised,
    /// and one that cannot become smaller keep theirs; they and the current page get a resize event all the
    /// same.
    void Rescale();

    /// Frames for each tick of the display, in windows shown from now on; 0 does not wait for it.
    static void set_vsync_multiplier(int n);

    /// Runs \p fn with a context current: that of the view, released afterwards, unless one is current
    /// already. Nothing happens with an empty function, nor, with no context current, while the view has
    /// none: before the window was shown, and where OpenGL is missing.
    static void with_gl_context(std::function<void(QOpenGLFunctions&)> fn);
    static void with_gl_context(std::function<void()> fn); ///< the same

    QString last_path() const; ///< the folder used last in file dialogs
    void set_last_path(const QString& path);

    /// Follows the default source of positions, when there is one; the debug output says which, and what it
    /// fails with. Not from within `OnPosUpd`: a second call replaces the source.
    void CaptureGps();

    /// Keeps a position and emits `PositionChanged`.
    /// \param source who says so: tr("Local") for the machine's own receiver
    /// \param latitude, longitude degrees; NaN when they are not known
    /// \param third altitude in metres; NaN or 0 when it is not known
    virtual void StartPosition(QString source, double latitude, double longitude, double third);

    void settings(zr::ZrSetModule& module) override;

    ZrFormMgr& forms() { return *m_forms; } ///< the settings forms; owned by the view

    ZrProgress& progress() { return *m_progress; } ///< the panel for long work; owned by the view

    const QGeoPositionInfo& last_position() const { return m_position; } ///< invalid until one has come

    const StartPos& start_position() const { return m_start; } ///< what `StartPosition` was told last

public Q_SLOTS:
    void OnClose(); ///< saves through `OnExit` and ends the event loop, unless `MayClose` refuses
    void OnPosUpd(const QGeoPositionInfo& info);

Q_SIGNALS:
    void PositionChanged(const QString& source, double latitude, double longitude, double altitude);

protected:
    virtual void OnExit(); ///< the application is closing; once

    /// Whether the window may be closed now, by its button or the window manager: true. An application that
    /// returns false tells why, and the window stays.
    virtual bool MayClose();

    void initializeGL() override;
    void paintGL() override;
    void resizeGL(int w, int h) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void StartTimers(std::chrono::milliseconds period, eUpdateMode mode, std::chrono::milliseconds second);
    void ApplyStyle();
    void PlaceControls();
    void RaiseControls();
    bool HasContext() const;
    bool IsInTitle(const QMouseEvent& event) const;

    ZrBtn* m_close;
    ZrFormMgr* m_forms;
    ZrProgress* m_progress;
    ZrAppBack* m_back;
    QGeoPositionInfo m_position;
    StartPos m_start;
    QPointer<QGeoPositionInfoSource> m_source;
    QTimer* m_timer;
    QTimer* m_idleTimer = nullptr;
    std::wstring m_lastPath;
    int m_titleHeight;
    bool m_isDragging = false;
    int m_pressX = 0;
    int m_pressY = 0;
    bool m_isClosed = false;
    bool m_holdsStyle = false; ///< the size of the moment does not last
    bool m_hasContext = false;
};
