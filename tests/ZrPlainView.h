#pragma once

// A view and pages of tests that need no OpenGL, and what is written to the debug output.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrSetModule.h"

#include <QApplication>
#include <QTimer>
#include <QtTest>

#include <memory>

/// Notes what it is told, and whether it was shown then.
class ZrNotedPage : public ZrPage
{
public:
    int m_number = 0;

    ZrNotedPage(QWidget* parent, QString name, QStringList& log)
        : ZrPage(parent)
        , m_name(std::move(name))
        , m_log(log)
    {
    }

    void OnPageOpen() override { Note(QStringLiteral("open")); }

    void OnPageClose() override { Note(QStringLiteral("close")); }

    void settings(zr::ZrSetModule& module) override { module.item(QStringLiteral("number"), m_number); }

private:
    void Note(const QString& what)
    {
        m_log.append(m_name + QLatin1Char(' ') + what
            + (isHidden() ? QStringLiteral(" hidden") : QStringLiteral(" shown")));
    }

    QString m_name;
    QStringList& m_log;
};

/// Counts its ends; nothing happens in it by itself.
class ZrPlainView : public ZrAppView
{
public:
    int m_exits = 0;

    explicit ZrPlainView(std::chrono::milliseconds period = std::chrono::milliseconds(10000),
        eUpdateMode mode = updateTimer, std::chrono::milliseconds second = std::chrono::milliseconds(0))
        : ZrAppView(nullptr, period, mode, second)
    {
        // A frame of the window system would lie between the window and its position.
        setWindowFlag(Qt::FramelessWindowHint);
    }

protected:
    void OnExit() override { ++m_exits; }
};

inline QStringList zrMessages; ///< while a `ZrMessages` lives

inline void zrKeepMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    zrMessages.append(text);
}

/// Collects the debug output while it lives.
class ZrMessages
{
public:
    ZrMessages()
        : m_before(qInstallMessageHandler(zrKeepMessage))
    {
        zrMessages.clear();
    }

    ZrMessages(const ZrMessages&) = delete;
    ZrMessages& operator=(const ZrMessages&) = delete;

    ~ZrMessages() { qInstallMessageHandler(m_before); }

private:
    QtMessageHandler m_before;
};

/// Base of the tests: each has a view of its own, and the theme of before at its end.
class ZrPlainViewTest : public QObject
{
protected:
    void Make()
    {
        m_theme = std::make_unique<ZrThemeState>();
        m_font = QApplication::font();
        ZrTheme::designWidth = 1440;
        ZrTheme::designHeight = 900;
        m_log.clear();
        m_view = std::make_unique<ZrPlainView>();
    }

    void Drop()
    {
        m_view.reset();
        qApp->setStyleSheet(QString());
        QApplication::setFont(m_font);
        m_theme.reset();
    }

    ZrNotedPage* Add(const QString& name, bool show = false)
    {
        auto* page = new ZrNotedPage(m_view.get(), name, m_log);
        m_view->AddPage(name, page, show);
        return page;
    }

    ZrBtn& Close() { return *m_view->findChild<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly); }

    std::unique_ptr<ZrPlainView> m_view;
    QStringList m_log;

private:
    std::unique_ptr<ZrThemeState> m_theme;
    QFont m_font;
};
