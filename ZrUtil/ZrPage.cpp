#include "ZrUtil/ZrPage.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

ZrPage::ZrPage(QWidget* parent)
    : QWidget(parent)
    // Written without a slash: these are files of the application, not of the library.
    , m_topLeft(QStringLiteral(":blank_top_left.png"))
    , m_topRight(QStringLiteral(":blank_top_right.png"))
    , m_bottomLeft(QStringLiteral(":blank_bottom_left.png"))
    , m_bottomRight(QStringLiteral(":blank_bottom_right.png"))
    , m_view(dynamic_cast<ZrAppView*>(parent))
{
}

void ZrPage::zr_paintGL() { }

void ZrPage::zr_initializeGL() { }

void ZrPage::zr_resizeGL(int /*width*/, int /*height*/) { }

void ZrPage::OnPageOpen() { }

void ZrPage::OnPageClose() { }

void ZrPage::settings(zr::ZrSetModule& /*module*/) { }

void ZrPage::Blank(QPainter& painter, const QRect& rect, int margin)
{
    const QRect panel = rect.adjusted(margin, margin, -margin, -margin);
    if (panel.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::formBack);
    painter.drawRoundedRect(panel, ZrTheme::rxy, ZrTheme::rxy);
    const auto put = [&](const QImage& corner, bool isRight, bool isBottom) {
        if (corner.isNull())
            return;
        QRect at(panel.topLeft(), corner.size());
        if (isRight)
            at.moveRight(panel.right());
        if (isBottom)
            at.moveBottom(panel.bottom());
        painter.drawImage(at, corner);
    };
    put(m_topLeft, false, false);
    put(m_topRight, true, false);
    put(m_bottomLeft, false, true);
    put(m_bottomRight, true, true);
    painter.restore();
}
