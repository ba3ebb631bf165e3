#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"

#include <QGeoPositionInfo>
#include <QMap>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
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
/// ZrAppView view(nullptr, std::chrono::milliseconds(40), ZrAppView::updateTimer,
/// std::chrono::milliseconds(40)); view.AddPage("Home", new HomePage(&view), true); view.show(); return
/// app.exec(); \endcode
///
/// Pages are added before the window is shown; of those added later the GL part is initialised at once. The
/// upper band of the window drags it, a double click there makes it full screen.
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
    /// the page before nor calls `OnPageOpen`. A null page is kept under its name as none.
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

    /// Frames for each tick of the display, in windows shown from now on; 0 does not wait for it.
    static void set_vsync_multiplier(int n);

    /// Runs \p fn with a context current: that of the view, unless one is current already. Nothing happens
    /// with an empty function, nor, with no context current, before the window was shown.
    static void with_gl_context(const std::function<void(QOpenGLFunctions&)>& fn);
    static void with_gl_context(const std::function<void()>& fn); ///< the same

    QString last_path() const; ///< the folder used last in file dialogs
    void set_last_path(const QString& path);

    void CaptureGps(); ///< follows the default source of positions, when there is one

    /// A position has come: degrees, and the altitude in metres, NaN or 0 when it is not known.
    virtual void StartPosition(QString source, double latitude, double longitude, double third);

    void settings(zr::ZrSetModule& module) override;

    ZrFormMgr& forms() { return *m_forms; } ///< the settings forms; owned by the view

    ZrProgress& progress() { return *m_progress; } ///< the panel for long work; owned by the view

    const QGeoPositionInfo& last_position() const { return m_position; } ///< invalid until one has come

public Q_SLOTS:
    void OnClose(); ///< saves through `OnExit` and ends the event loop
    void OnPosUpd(const QGeoPositionInfo& info);

Q_SIGNALS:
    void PositionChanged(const QString& source, double latitude, double longitude, double altitude);

protected:
    virtual void OnExit(); ///< the application is closing; once

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
    void ApplyStyleSheet();
    void PlaceControls();
    bool IsInTitle(const QMouseEvent& event) const;

    ZrBtn* m_close;
    ZrFormMgr* m_forms;
    ZrProgress* m_progress;
    ZrAppBack* m_back;
    QGeoPositionInfo m_position;
    QGeoPositionInfoSource* m_source = nullptr;
    QTimer* m_timer;
    QTimer* m_idleTimer = nullptr;
    std::wstring m_lastPath;
    int m_titleHeight;
    bool m_isDragging = false;
    int m_pressX = 0;
    int m_pressY = 0;
    bool m_isClosed = false;
    bool m_hasContext = false;
};
