#pragma once

#include "GlTest.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// A test with the application's window, and a folder of its own for settings and recordings.
class SurveyWindow : public QObject
{
protected:
    void Open()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_theme = std::make_unique<ZrThemeState>();
        m_units = std::make_unique<ZrUnitsState>();
        ZrUnits::SetToMetric();
        ZrTheme::designWidth = 1440;
        ZrTheme::designHeight = 900;
        Start();
    }

    /// Also a second time, as after a restart.
    void Start()
    {
        m_view = std::make_unique<SurveyView>(m_folder->path());
        if (m_view->Model().settings.recordDir != Recordings())
            m_view->Model().settings.recordDir = Recordings();
        m_view->resize(1280, 800);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        // No window manager gives it the keys.
        QApplication::setActiveWindow(m_view.get());
        QTRY_VERIFY(m_view->IsComplete());
        Settle();
    }

    void Restart()
    {
        // As its end does; the event loop of the test goes on.
        m_view->close();
        m_view.reset();
        Start();
    }

    void Close()
    {
        m_view.reset();
        qApp->setStyleSheet(QString());
        m_units.reset();
        m_theme.reset();
        m_folder.reset();
    }

    QString Recordings() const { return m_folder->filePath(QStringLiteral("Aufnahmen äß")); }

    SurveySettings& Settings() { return m_view->Model().settings; }

    template <class T> T* Form()
    {
        for (ZrForm* form : m_view->forms().m_forms) {
            if (auto* found = qobject_cast<T*>(form))
                return found;
        }
        qFatal("no such form");
    }

    void SetScale(int scale)
    {
        auto* app = Form<ZrFmApp>();
        if (scale == 2)
            app->OnSmallest();
        else if (scale == 0)
            app->OnDefault();
        else
            app->OnLargest();
        Settle();
    }

    static void Click(QWidget* widget)
    {
        QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, widget->rect().center());
        Settle();
    }

    /// What is wrong with the places of the visible children of \p parent: outside of it, or over one
    /// another.
    static QString Misplaced(const QWidget& parent)
    {
        QStringList wrong;
        QVector<QWidget*> shown;
        for (QWidget* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!child->isVisible() || child->size().isEmpty())
                continue;
            const QString name = QStringLiteral("%1 \"%2\"")
                                     .arg(QString::fromLatin1(child->metaObject()->className()))
                                     .arg(child->accessibleName());
            if (!parent.rect().contains(child->geometry()))
                wrong.append(name + QStringLiteral(" sticks out"));
            for (const QWidget* other : qAsConst(shown)) {
                if (other->geometry().intersects(child->geometry()))
                    wrong.append(name + QStringLiteral(" covers ") + other->accessibleName());
            }
            shown.append(child);
        }
        return wrong.join(QStringLiteral("; "));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<SurveyView> m_view;
};
