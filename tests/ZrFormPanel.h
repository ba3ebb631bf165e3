#pragma once

// A panel of settings forms in a window, for its tests.

#include "ZrFormPage.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"

#include <QObject>

#include <memory>

/// Where the application would be told of presses that the panel lets through.
class ZrPressedWindow : public QWidget
{
public:
    int m_presses = 0;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++m_presses; }
};

/// Base of the tests: each has a window and a panel of its own, and the theme of before at its end.
class ZrFormPanelTest : public QObject
{
protected:
    void Make()
    {
        m_theme = std::make_unique<ZrThemeState>();
        m_window = std::make_unique<ZrPressedWindow>();
        m_window->resize(780, 560);
        m_mgr = new ZrFormMgr(m_window.get());
        m_mgr->setGeometry(20, 30, 600, 460);
    }

    void Drop()
    {
        m_window.reset();
        m_theme.reset();
    }

    ZrFormPage* Add(const QString& name, bool isTiered = false, ZrForm* parent = nullptr)
    {
        auto* form = new ZrFormPage(m_mgr, name);
        form->m_isTiered = isTiered;
        form->m_parentForm = parent;
        m_mgr->AddNewForm(form);
        return form;
    }

    ZrBtn& Close() { return *m_mgr->findChild<ZrBtn*>(); }

    QImage Shown()
    {
        m_window->show();
        Settle();
        return Painted(*m_mgr);
    }

    std::unique_ptr<ZrPressedWindow> m_window;
    ZrFormMgr* m_mgr = nullptr;

private:
    std::unique_ptr<ZrThemeState> m_theme;
};
