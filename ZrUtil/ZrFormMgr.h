#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrDragWidget.h"
#include "ZrUtil/ZrExport.h"

#include <QFont>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <memory>

class QPainter;
class ZrAppView;
class ZrBtn;
class ZrForm;

/// The panel with the settings forms: a column of tabs, one form shown at a time, dragged by the band beside
/// the tabs.
///
/// A tap beside the close button closes as well: the button alone is too small for a finger. The forms added
/// belong to the panel. GUI thread only.
class ZR_UTIL_EXPORT ZrFormMgr : public ZrDragWidget, public zr::IPersistable
{
    Q_OBJECT

public:
    /// Where the tabs are. They are drawn on the left only.
    enum eLayout : int
    {
        tabsLeft = 0,
        tabsTop = 1,
        tabsRight = 2,
        tabsBottom = 3
    };

    ZrAppView* m_view; ///< the parent, when it is one
    int m_layout = tabsLeft;
    QList<ZrForm*> m_forms; ///< in the order added
    ZrForm* m_form = nullptr; ///< the form that is shown
    int m_tabWidth = 0; ///< real pixels
    int m_tabHeight = 0;

    /// The tabs show the names of their forms beside the icons, on a surface of their own, and are wider for
    /// it. Set before the panel is shown.
    bool m_hasTabNames = false;

    explicit ZrFormMgr(QWidget* parent);
    ~ZrFormMgr() override;

    /// Takes a form over; the first one with a tab is shown.
    void AddNewForm(ZrForm* form);

    /// Shows the form called \p name and hides all others; null, and all are hidden, when there is none.
    ZrForm* SetToForm(QString name);

    /// Index of the form shown among those with tabs, of its parent for a tiered one; -1 for none.
    int CurrentPosition();

    int NonTieredCount(); ///< number of forms with tabs

    void BuildImg(); ///< draws the tabs into their image

    /// The panel and the tabs of a layout, drawn by `BuildImg`; `DrawLeft` also sets where each tab is. The
    /// others draw nothing.
    void DrawLeft(QPainter& painter);
    void DrawTop(QPainter& painter);
    void DrawRight(QPainter& painter);
    void DrawBottom(QPainter& painter);

    /// "forms" of the settings: one object for each form, by its name.
    void settings(zr::ZrSetModule& module) override;

public Q_SLOTS:
    void OnClose(); ///< hides the panel

Q_SIGNALS:
    void FormShown(); ///< `m_form`, by `SetToForm`

protected:
    bool event(QEvent* event) override; ///< tool tips of the tabs
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override; ///< takes the focus, for Esc
    void hideEvent(QHideEvent* event) override; ///< gives it back

private:
    void DrawTab(QPainter& painter, const ZrForm& form, bool isCurrent);
    void DrawNamedTab(QPainter& painter, const ZrForm& form, bool isCurrent);
    void DrawColumn(QPainter& painter) const;
    QRect FormArea() const;
    QRect CloseArea() const; ///< where a tap closes

    ZrBtn* m_close;
    std::unique_ptr<QImage> m_tabs;
    QImage m_closeImg;
    QFont m_tabFont; ///< of the name above the form
    QImage m_tabImg; ///< the icon of a tab in its colour
    QPointer<QWidget> m_focusBefore;
    QPoint m_pressAt; ///< global
    bool m_mayClose = false; ///< a press began in the area of the close button and did not move
};
