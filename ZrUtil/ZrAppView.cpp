#include "ZrUtil/ZrAppView.h"

#include "ZrUtil/ZrAppBack.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrScoped.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDebug>
#include <QGeoPositionInfoSource>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QResizeEvent>
#include <QTimer>

#include <algorithm>
#include <cmath>

ZrAppView* ZrAppView::s_pApp = nullptr;

namespace {

const auto homeName = QLatin1String("Home");

const char* ErrorText(QGeoPositionInfoSource::Error error)
{
    switch (error) {
    case QGeoPositionInfoSource::AccessError:
        return "access denied";
    case QGeoPositionInfoSource::ClosedError:
        return "closed by the device";
    case QGeoPositionInfoSource::NoError:
        return "no error";
    case QGeoPositionInfoSource::UnknownSourceError:
        break;
    }
    return "unknown error";
}

} // namespace

ZrAppView::ZrAppView(
    QWidget* parent, std::chrono::milliseconds period, eUpdateMode mode, std::chrono::milliseconds second)
    : QOpenGLWidget(parent)
    , m_continuous(mode == updateContinuous)
    , m_close(new ZrBtn(this, ZrBtn::typeTool))
    , m_forms(new ZrFormMgr(this))
    , m_progress(new ZrProgress(this))
    , m_back(new ZrAppBack(this))
    , m_timer(new QTimer(this))
    , m_titleHeight(ZrTheme::DpI(200))
{
    s_pApp = this;
    m_forms->hide();
    m_progress->hide();
    connect(m_close, &ZrBtn::Clicked, this, &ZrAppView::OnClose);
    m_close->img = ZrTheme::ColourImg(QImage(QStringLiteral(":/btn_close.png")), ZrTheme::ctrlCol);
    m_close->setToolTip(tr("Close the application"));
    m_close->setAccessibleName(tr("Close"));
    ApplyStyle();
    setMinimumSize(900, 600);
    StartTimers(period, mode, second);
}

ZrAppView::~ZrAppView()
{
    // The pages go after the map that they would be taken from.
    for (ZrPage* page : qAsConst(m_pages)) {
        if (page)
            disconnect(page, &QObject::destroyed, this, nullptr);
    }
    if (s_pApp == this)
        s_pApp = nullptr;
}

ZrAppView& ZrAppView::get()
{
    return *s_pApp;
}

void ZrAppView::StartTimers(
    std::chrono::milliseconds period, eUpdateMode mode, std::chrono::milliseconds second)
{
    connect(m_timer, &QTimer::timeout, this, &ZrAppView::Update);
    m_timer->start(period);
    if (mode != updateAdjusted)
        return;
    if (second == period) {
        m_timer->setTimerType(Qt::PreciseTimer);
        return;
    }
    // The second timer stays idle; the first one takes its interval and repaints the view twice.
    m_idleTimer = new QTimer(this);
    m_idleTimer->setTimerType(Qt::PreciseTimer);
    connect(m_timer, &QTimer::timeout, this, [this] { update(); });
    m_timer->start(second);
}

/// Font and style sheet with the sizes of the moment, unless the application has them already. The style
/// sheet leaves the font to the widgets, so that those with one of their own keep it.
void ZrAppView::ApplyStyle()
{
    // Before the theme has a style it has no font either.
    if (ZrTheme::bodyFont.pixelSize() > 0 && QApplication::font() != ZrTheme::bodyFont)
        QApplication::setFont(ZrTheme::bodyFont);
    const QString sheet = ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css"));
    if (qApp->styleSheet() != sheet)
        qApp->setStyleSheet(sheet);
}

void ZrAppView::AddPage(QString name, ZrPage* page, bool show)
{
    m_pages.insert(name, page);
    if (!page)
        return;
    // A page that goes by itself is forgotten.
    connect(page, &QObject::destroyed, this, [this, page] {
        for (ZrPage*& known : m_pages) {
            if (known == page)
                known = nullptr;
        }
        if (m_current == page)
            m_current = nullptr;
    });
    page->setGeometry(rect());
    if (!show && m_current)
        page->hide();
    else
        m_current = page;
    if (m_current == page && isVisible())
        page->show();
    RaiseControls();
    if (!HasContext())
        return;
    const double ratio = devicePixelRatioF();
    with_gl_context(std::function<void()>([this, page, ratio] {
        page->zr_initializeGL();
        page->zr_resizeGL(qRound(width() * ratio), qRound(height() * ratio));
    }));
}

ZrPage* ZrAppView::GetPage(QString name)
{
    return m_pages.value(name, nullptr);
}

ZrPage* ZrAppView::SetPageTo(QString name, bool push)
{
    ZrPage* page = GetPage(name);
    if (!page)
        return nullptr;
    if (m_current) {
        m_current->hide();
        m_current->OnPageClose();
        if (push)
            m_stack.append(name);
    }
    m_current = page;
    page->OnPageOpen();
    page->show();
    update();
    page->update();
    return page;
}

void ZrAppView::Back()
{
    if (m_stack.isEmpty()) {
        SetPageTo(homeName, false);
        qDebug() << "Empty Stack";
        return;
    }
    m_stack.removeLast();
    SetPageTo(m_stack.isEmpty() ? QString(homeName) : m_stack.last(), false);
}

void ZrAppView::GoHome()
{
    if (SetPageTo(homeName, true))
        m_stack.clear();
}

void ZrAppView::ToggleSettings()
{
    if (!m_forms->isHidden()) {
        m_forms->hide();
        return;
    }
    m_forms->show();
    m_forms->raise();
}

void ZrAppView::ScreenMode()
{
    if (isMaximized() || isFullScreen())
        showNormal();
    else
        showFullScreen();
}

void ZrAppView::Update()
{
    update();
    if (m_current)
        m_current->update();
}

void ZrAppView::Rescale()
{
    const QSize before = size();
    if (!isFullScreen() && !isMaximized()) {
        // Every widget of the application is polished at a change of its style sheet: once is enough.
        m_holdsStyle = true;
        resize(before / 2);
        m_holdsStyle = false;
        const bool wasResized = size() != before;
        resize(before);
        if (wasResized)
            return;
    }
    // It is told that its size changed, and so is the page, whose size is the same; a hidden page is told
    // when it is shown.
    QResizeEvent event(before, before / 2);
    QCoreApplication::sendEvent(this, &event);
    if (m_current && m_current->size() == before)
        QCoreApplication::sendEvent(m_current, &event);
}

void ZrAppView::set_vsync_multiplier(int n)
{
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSwapInterval(n);
    QSurfaceFormat::setDefaultFormat(format);
}

bool ZrAppView::HasContext() const
{
    return m_hasContext && isValid();
}

void ZrAppView::with_gl_context(std::function<void(QOpenGLFunctions&)> fn)
{
    if (!fn)
        return;
    // Without a context the functions of the view lead nowhere.
    ZrAppView* view = s_pApp && s_pApp->HasContext() ? s_pApp : nullptr;
    if (QOpenGLContext* context = QOpenGLContext::currentContext()) {
        fn(view ? static_cast<QOpenGLFunctions&>(*view) : *context->functions());
        return;
    }
    if (!view)
        return;
    view->makeCurrent();
    const auto guard = zr::make_scoped([view] { view->doneCurrent(); });
    if (QOpenGLContext::currentContext())
        fn(*view);
}

void ZrAppView::with_gl_context(std::function<void()> fn)
{
    if (fn)
        with_gl_context([&fn](QOpenGLFunctions& /*functions*/) { fn(); });
}

QString ZrAppView::last_path() const
{
    return QString::fromStdWString(m_lastPath);
}

void ZrAppView::set_last_path(const QString& path)
{
    m_lastPath = path.toStdWString();
}

void ZrAppView::CaptureGps()
{
    const QStringList sources = QGeoPositionInfoSource::availableSources();
    // The old one goes after the new one has come: a plugin that shares its port among sources gives it up
    // only later.
    QGeoPositionInfoSource* const source = QGeoPositionInfoSource::createDefaultSource(this);
    delete m_source;
    m_source = source;
    if (!m_source) {
        qDebug() << "No default sources:" << sources;
        return;
    }
    qDebug() << "Found default positioning source" << m_source->sourceName();
    connect(m_source, &QGeoPositionInfoSource::positionUpdated, this, &ZrAppView::OnPosUpd);
    connect(m_source, QOverload<QGeoPositionInfoSource::Error>::of(&QGeoPositionInfoSource::error), this,
        [](QGeoPositionInfoSource::Error error) {
            qDebug() << "Positioning source failed:" << ErrorText(error);
        });
    m_source->startUpdates();
}

void ZrAppView::OnPosUpd(const QGeoPositionInfo& info)
{
    m_position = info;
    const QGeoCoordinate at = info.coordinate();
    StartPosition(tr("Local"), at.latitude(), at.longitude(), at.altitude());
}

void ZrAppView::StartPosition(QString source, double latitude, double longitude, double third)
{
    m_start = {source, latitude, longitude, third};
    Q_EMIT PositionChanged(source, latitude, longitude, third);
}

void ZrAppView::settings(zr::ZrSetModule& module)
{
    module.sub_item(QStringLiteral("globals"), [](zr::ZrSetModule& globals) {
        globals.sub_item(QStringLiteral("units"), [](zr::ZrSetModule& units) { ZrUnits::serialise(units); });
        globals.sub_item(QStringLiteral("theme"), [](zr::ZrSetModule& theme) { ZrTheme::serialise(theme); });
    });
    module.sub_item(QStringLiteral("forms"), *m_forms);
    module.sub_item(QStringLiteral("pages"), [this](zr::ZrSetModule& pages) {
        for (auto page = m_pages.cbegin(); page != m_pages.cend(); ++page) {
            if (page.value())
                pages.sub_item(page.key(), *page.value());
        }
    });
    QString path = last_path();
    module.item(QStringLiteral("last path"), path);
    set_last_path(path);
}

void ZrAppView::OnClose()
{
    if (!m_isClosed) {
        if (!MayClose())
            return;
        m_isClosed = true;
        OnExit();
    }
    QCoreApplication::quit();
}

void ZrAppView::OnExit() { }

bool ZrAppView::MayClose()
{
    return true;
}

void ZrAppView::closeEvent(QCloseEvent* event)
{
    OnClose();
    event->setAccepted(m_isClosed);
}

void ZrAppView::initializeGL()
{
    initializeOpenGLFunctions();
    m_hasContext = true;
    m_back->OnCreate();
    // A copy: a page may add another one, which is then initialised there.
    const QMap<QString, ZrPage*> pages = m_pages;
    for (ZrPage* page : pages) {
        if (page)
            page->zr_initializeGL();
    }
}

void ZrAppView::paintGL()
{
    // A surface may have left a viewport of its own.
    const double ratio = devicePixelRatioF();
    glViewport(0, 0, qRound(width() * ratio), qRound(height() * ratio));
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (m_current) {
        if (m_current->m_hasBackground)
            m_back->Render();
        m_current->zr_paintGL();
    }
    if (m_continuous)
        update();
}

void ZrAppView::resizeGL(int w, int h)
{
    m_titleHeight = ZrTheme::DpI(100);
    ZrTheme::SetAppSize(static_cast<float>(w), static_cast<float>(h));
    ZrTheme::SetStdStyle();
    if (!m_holdsStyle)
        ApplyStyle();
    const double ratio = devicePixelRatioF();
    const int wide = qRound(w * ratio);
    const int high = qRound(h * ratio);
    m_back->m_pixelFactor = qRound(ratio);
    m_back->OnResize(wide, high);
    const QMap<QString, ZrPage*> pages = m_pages;
    for (ZrPage* page : pages) {
        if (!page)
            continue;
        page->setGeometry(0, 0, w, h);
        page->zr_resizeGL(wide, high);
    }
    PlaceControls();
}

/// The close button in the upper right corner; the forms left and below of where it ends; progress in the
/// middle.
void ZrAppView::PlaceControls()
{
    const int margin = ZrTheme::DpI(16);
    const int close = std::max(ZrTheme::DpI(48), 44);
    m_close->setGeometry(width() - close - margin, margin, close, close);

    const int edge = std::max(ZrTheme::DpI(80), close + margin);
    const int wide = std::min(width() - 2 * edge, ZrTheme::DpI(600) + ZrTheme::DpI(250));
    m_forms->setGeometry(edge, edge, wide, height() - edge - (ZrTheme::DpI(100) - ZrTheme::DpI(80)));

    const QSize panel = QSize(ZrTheme::DpI(500), ZrTheme::DpI(160)).boundedTo(size());
    m_progress->setGeometry(
        QRect(QPoint((width() - panel.width()) / 2, (height() - panel.height()) / 2), panel));
    RaiseControls();
}

void ZrAppView::RaiseControls()
{
    m_close->raise();
    m_forms->raise();
    m_progress->raise();
}

bool ZrAppView::IsInTitle(const QMouseEvent& event) const
{
    return event.button() == Qt::LeftButton && event.y() < m_titleHeight;
}

void ZrAppView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (IsInTitle(*event))
        ScreenMode();
}

void ZrAppView::mousePressEvent(QMouseEvent* event)
{
    if (!IsInTitle(*event) || isMaximized() || isMinimized())
        return;
    m_isDragging = true;
    m_pressX = event->x();
    m_pressY = event->y();
}

void ZrAppView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_isDragging && (event->buttons() & Qt::LeftButton) && event->y() < m_titleHeight)
        move(event->globalX() - m_pressX, event->globalY() - m_pressY);
}

void ZrAppView::mouseReleaseEvent(QMouseEvent* event)
{
    if (IsInTitle(*event))
        m_isDragging = false;
}
