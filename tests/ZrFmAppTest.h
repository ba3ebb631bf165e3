#pragma once

// The settings form of the application in a panel, for its tests.

#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrRadio.h"

#include <QObject>

#include <memory>

/// Base of the tests: each has a form of its own, and theme and units of before at its end.
class ZrFmAppTest : public QObject
{
protected:
    void Make()
    {
        m_theme = std::make_unique<ZrThemeState>();
        m_units = std::make_unique<ZrUnitsState>();
        ZrTheme::designWidth = 1440;
        ZrTheme::designHeight = 900;
        ZrTheme::tabletMode = false;
        ZrUnits::SetToMetric();
        ZrUnits::SetGeoStyle(eGeoDeg);
        m_window = std::make_unique<QWidget>();
        m_window->resize(900, 800);
        m_mgr = new ZrFormMgr(m_window.get());
        m_form = new ZrFmApp(m_mgr);
        m_mgr->AddNewForm(m_form);
    }

    void Drop()
    {
        m_window.reset();
        m_view.reset();
        m_units.reset();
        m_theme.reset();
    }

    ZrRadio& Radio(const QString& name)
    {
        for (ZrRadio* radio : m_form->findChildren<ZrRadio*>()) {
            if (radio->accessibleName() == name)
                return *radio;
        }
        qFatal("no such list");
    }

    ZrBtn& Scale(const QString& text)
    {
        for (ZrBtn* btn : m_form->findChildren<ZrBtn*>()) {
            if (btn->text == text)
                return *btn;
        }
        qFatal("no such button");
    }

    void MakeView()
    {
        m_view = std::make_unique<ZrAppView>(
            nullptr, std::chrono::milliseconds(10000), ZrAppView::updateTimer, std::chrono::milliseconds(0));
    }

    void Show(int width, int height)
    {
        m_mgr->setGeometry(10, 10, width, height);
        m_window->show();
        Settle();
    }

    std::unique_ptr<ZrAppView> m_view;
    std::unique_ptr<QWidget> m_window;
    ZrFormMgr* m_mgr = nullptr;
    ZrFmApp* m_form = nullptr;

private:
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
};
