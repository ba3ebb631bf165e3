#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"

#include <QImage>
#include <QRect>
#include <QString>
#include <QWidget>

class QPainter;
class ZrBtn;
class ZrFormMgr;

/// A settings form: a panel of the form manager about one topic.
///
/// A tiered form has no tab: another form opens it by `ZrFormMgr::SetToForm`, and the tab of its parent form
/// stays highlighted. GUI thread only.
class ZR_UTIL_EXPORT ZrForm : public QWidget, public zr::IPersistable
{
    Q_OBJECT

public:
    ZrFormMgr* m_mgr; ///< the manager; the parent, when it is one
    QString m_name; ///< caption and key of the form
    QImage m_icon; ///< on its tab
    bool m_isTiered = false; ///< has no tab of its own
    ZrForm* m_parentForm = nullptr; ///< of a tiered form
    QRect m_tab; ///< where the tab is, manager coordinates; set by it

    explicit ZrForm(QWidget* parent);

    virtual void OnFormDisplay(); ///< the form is shown
    void settings(zr::ZrSetModule& module) override; ///< nothing to persist

    /// Sets the checked state of \p btn and repaints it when that is another one.
    static void Check(ZrBtn& btn, bool on);

    /// Paints the caption and the help text of a control at \p y, with a line below, and moves \p y there;
    /// the right 200 design pixels are left for the control. \param extra pixels between the help text and
    /// the line
    void TextCtrl(QPainter& p, QString title, QString help, int& y, int extra);

    /// The same with a help text of one line over the whole width.
    void TextTab(QPainter& p, QString title, QString help, int& y, int extra);

private:
    void PaintText(
        QPainter& p, const QString& title, const QString& help, const QSize& helpSize, int& y, int extra);
};
