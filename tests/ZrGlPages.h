#pragma once

// Pages and a view in a real window that note what they are told.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppBack.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrProgress.h"

#include <QApplication>
#include <QOpenGLContext>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

/// Notes the calls in a log shared with other pages, and counts its frames.
class ZrGlPage : public ZrPage
{
public:
    int m_frames = 0;
    QSize m_pixels; ///< of the last `zr_resizeGL`
    std::function<void()> m_onInitialize;
    std::function<void()> m_onPaint;

    ZrGlPage(QWidget* parent, QString name, QStringList& log)
        : ZrPage(parent)
        , m_name(std::move(name))
        , m_log(log)
    {
        setObjectName(m_name);
    }

    void zr_initializeGL() override
    {
        Note(QStringLiteral("initialize"));
        if (m_onInitialize)
            m_onInitialize();
    }

    void zr_resizeGL(int width, int height) override
    {
        m_pixels = QSize(width, height);
        Note(QStringLiteral("resize"));
    }

    void zr_paintGL() override
    {
        ++m_frames;
        if (m_onPaint)
            m_onPaint();
    }

    void OnPageOpen() override { Note(QStringLiteral("open")); }

    void OnPageClose() override { Note(QStringLiteral("close")); }

    void settings(zr::ZrSetModule& /*module*/) override { }

protected:
    void showEvent(QShowEvent* /*event*/) override { Note(QStringLiteral("shown")); }

    void hideEvent(QHideEvent* /*event*/) override { Note(QStringLiteral("hidden")); }

private:
    void Note(const QString& what) { m_log.append(m_name + QLatin1Char(' ') + what); }

    QString m_name;
    QStringList& m_log;
};

/// A view without a frame of the window system, which would lie between the window and its position.
class ZrGlView : public ZrAppView
{
public:
    /// Nobody waits for this one to pass.
    static constexpr std::chrono::milliseconds never{3600 * 1000};

    int m_exits = 0;
    int m_paints = 0;
    QStringList m_log;

    explicit ZrGlView(std::chrono::milliseconds period = never, eUpdateMode mode = updateTimer,
        std::chrono::milliseconds second = never)
        : ZrAppView(nullptr, period, mode, second)
    {
        setWindowFlag(Qt::FramelessWindowHint);
        resize(1000, 700);
    }

    /// The pages that are shown write to the log of this object as they are hidden.
    ~ZrGlView() override { hide(); }

    ZrGlView(const ZrGlView&) = delete;
    ZrGlView& operator=(const ZrGlView&) = delete;

    ZrGlPage* Add(const QString& name, bool show = false)
    {
        auto* page = new ZrGlPage(this, name, m_log);
        AddPage(name, page, show);
        return page;
    }

    /// Shows the window; false when nothing was painted in it.
    bool Open()
    {
        show();
        if (!QTest::qWaitForWindowExposed(this, 20000))
            return false;
        const bool isPainted = QTest::qWaitFor([this] { return m_paints > 0; }, 20000);
        Settle();
        return isPainted && isValid();
    }

    QTimer& Timer() { return *findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly).first(); }

    ZrBtn& CloseButton() { return *findChild<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly); }

    ZrAppBack& Background() { return *findChild<ZrAppBack*>(); }

    QString TakeLog()
    {
        const QString text = m_log.join(QStringLiteral(", "));
        m_log.clear();
        return text;
    }

protected:
    void OnExit() override { ++m_exits; }

    void paintGL() override
    {
        ++m_paints;
        ZrAppView::paintGL();
    }
};

/// No context is current afterwards.
inline void ReleaseContext()
{
    if (QOpenGLContext* context = QOpenGLContext::currentContext())
        context->doneCurrent();
}

/// Theme, style sheet and font of the application as they were.
class ZrAppState
{
public:
    ZrAppState()
    {
        ZrTheme::designWidth = 1440;
        ZrTheme::designHeight = 900;
    }

    ZrAppState(const ZrAppState&) = delete;
    ZrAppState& operator=(const ZrAppState&) = delete;

    ~ZrAppState()
    {
        qApp->setStyleSheet(QString());
        QApplication::setFont(m_font);
    }

private:
    ZrThemeState m_theme;
    QFont m_font = QApplication::font();
};
