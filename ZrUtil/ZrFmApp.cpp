#include "ZrUtil/ZrFmApp.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace {

/// Geographic styles in the order of their list.
constexpr eGeoStyle styles[] = {eGeoStyle(7), eGeoStyle(5), eGeoStyle(4), eGeoStyle(8)};

/// Every open control and the view follow a change of units or style.
void ShowUnits()
{
    ZrInput::RecalcAllInputs();
    if (ZrAppView::s_pApp)
        ZrAppView::get().Update();
}

void SetSel(ZrRadio& radio, int sel)
{
    // Setting it again from a paint event would paint for ever.
    if (radio.sel != sel)
        radio.SetSel(sel);
}

} // namespace

ZrFmApp::ZrFmApp(QWidget* parent)
    : ZrForm(parent)
    , m_units(new ZrRadio(this))
    , m_style(new ZrRadio(this))
    , m_tablet(new ZrCheck(this))
{
    m_name = tr("Application Settings");
    m_icon = QImage(QStringLiteral(":/settings_application.png"));

    m_scaleBtns[0] = AddScaleBtn(QStringLiteral("+2"), tr("Largest controls"), 2);
    m_scaleBtns[1] = AddScaleBtn(QStringLiteral("+1"), tr("Large controls"), 1);
    m_scaleBtns[2] = AddScaleBtn(tr("Default"), tr("Standard controls"), 0);
    m_scaleBtns[3] = AddScaleBtn(QStringLiteral("-1"), tr("Small controls"), -1);
    m_scaleBtns[4] = AddScaleBtn(QStringLiteral("-2"), tr("Smallest controls"), -2);

    m_units->items = QStringList({tr("Metric"), tr("Imperial")});
    m_units->setAccessibleName(tr("Units of Measurement"));
    connect(m_units, &ZrRadio::SelChanged, this, &ZrFmApp::OnUom);
    m_style->items = QStringList({QStringLiteral("00 00' 00.00\""), QStringLiteral("00 00.000'"),
        QStringLiteral("00.000"), QStringLiteral("UTM")});
    m_style->setAccessibleName(tr("Coordinate System"));
    connect(m_style, &ZrRadio::SelChanged, this, &ZrFmApp::OnCs);
    m_tablet->text = tr("Tablet Mode");
    m_tablet->get = [] { return ZrTheme::tabletMode; };
    m_tablet->set = [](bool on) { ZrTheme::tabletMode = on; };
    ShowScale();
    ShowChoices();
}

ZrBtn* ZrFmApp::AddScaleBtn(const QString& text, const QString& name, int scale)
{
    auto* btn = new ZrBtn(this, ZrBtn::typeStd);
    btn->text = text;
    btn->setAccessibleName(name);
    btn->setToolTip(name);
    connect(btn, &ZrBtn::Clicked, this, [this, scale] { ApplyScale(scale); });
    return btn;
}

void ZrFmApp::OnUom(int index)
{
    if (index == 0)
        ZrUnits::SetToMetric();
    else if (index == 1)
        ZrUnits::SetToImperial();
    ShowUnits();
}

void ZrFmApp::OnCs(int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(styles)))
        return;
    ZrUnits::SetGeoStyle(styles[index]);
    ShowUnits();
}

void ZrFmApp::OnSmallest()
{
    SetScale(1024, 640, 2);
}

void ZrFmApp::OnSmall()
{
    SetScale(1280, 800, 1);
}

void ZrFmApp::OnDefault()
{
    SetScale(1440, 900, 0);
}

void ZrFmApp::OnLarge()
{
    SetScale(1680, 1050, -1);
}

void ZrFmApp::OnLargest()
{
    SetScale(1920, 1200, -2);
}

void ZrFmApp::ApplyScale(int scale)
{
    switch (scale) {
    case 2:
        OnSmallest();
        break;
    case 1:
        OnSmall();
        break;
    case 0:
        OnDefault();
        break;
    case -1:
        OnLarge();
        break;
    case -2:
        OnLargest();
        break;
    default:
        break;
    }
}

void ZrFmApp::SetScale(int width, int height, int scale)
{
    ZrTheme::designWidth = width;
    ZrTheme::designHeight = height;
    m_scale = scale;
    ShowScale();
    if (ZrAppView::s_pApp)
        ZrAppView::get().Rescale();
}

void ZrFmApp::ShowScale()
{
    for (int i = 0; i < 5; ++i)
        Check(*m_scaleBtns[i], m_scale == 2 - i);
}

/// The lists show what is in force, whoever set it.
void ZrFmApp::ShowChoices()
{
    SetSel(*m_units, ZrUnits::GetShortLengthUnits() == QLatin1String("ft") ? 1 : 0);
    const auto* style = std::find(std::begin(styles), std::end(styles), ZrUnits::GetGeoStyle());
    SetSel(*m_style, style == std::end(styles) ? -1 : static_cast<int>(style - std::begin(styles)));
}

void ZrFmApp::settings(zr::ZrSetModule& module)
{
    int scale = m_scale;
    module.item(QStringLiteral("ScaleValue"), scale);
    // A number that is none of the scales leaves the one in force.
    if (module.is_loading())
        ApplyScale(scale);
}

void ZrFmApp::paintEvent(QPaintEvent* /*event*/)
{
    ShowChoices();
    QPainter p(this);
    // The lines end before the bar that shows how far the form is scrolled.
    if (ScrollRange() > 0)
        p.setClipRect(0, 0, width() - 2 * ZrTheme::DpI(8), height());
    p.translate(0, -m_scroll);
    const int text = TextHeight();
    int y = 0;
    TextCtrl(p, tr("Units of Measurement"),
        tr("Setting for units of measurement such as length, temperature and distance"), y, m_rows[0] - text);
    TextCtrl(p, tr("Coordinate System"),
        tr("Setting for desired coordinate system format for WGS84 latitude and longitude"), y,
        m_rows[1] - text);
    TextCtrl(p, tr("Display Scaling"),
        tr("Choose the display scale to have the text and controls the preferred size for your deployment."),
        y, m_rows[2] - text);
    TextCtrl(p, tr("Tablet Mode"), tr("In Tablet Mode edit controls always bring up an onscreen keyboard."),
        y, m_rows[3] - text);
    if (ScrollRange() == 0)
        return;
    // Where the part shown lies in the whole.
    p.resetTransform();
    p.setClipping(false);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ZrTheme::bodyCol);
    const double wide = ZrTheme::DpI(4);
    const double all = height() + ScrollRange();
    p.drawRoundedRect(QRectF(width() - wide, height() * m_scroll / all, wide, height() * (height() / all)),
        wide / 2, wide / 2);
}

/// What the texts beside a control take.
int ZrFmApp::TextHeight()
{
    return ZrTheme::DpI(28) + ZrTheme::DpI(8) + ZrTheme::DpI(4) + ZrTheme::DpI(50);
}

/// Pixels of the contents that find no room.
int ZrFmApp::ScrollRange() const
{
    return std::max(0, m_rows[0] + m_rows[1] + m_rows[2] + m_rows[3] + 1 - height());
}

void ZrFmApp::ScrollTo(int y)
{
    const int to = std::clamp(y, 0, ScrollRange());
    if (to == m_scroll)
        return;
    m_scroll = to;
    Place();
    update();
}

void ZrFmApp::resizeEvent(QResizeEvent* /*event*/)
{
    // The theme may have another scale since the controls were made.
    for (ZrRadio* radio : {m_units, m_style}) {
        radio->itemHeight = std::max(QFontMetrics(ZrTheme::font).height() * 3 / 2, ZrTheme::DpI(40));
        radio->UseTouchHeight();
    }
    for (ZrBtn* btn : m_scaleBtns)
        btn->font = ZrTheme::ctrlFont;
    const int gap = ZrTheme::DpI(8);
    const int text = TextHeight();
    m_rows[0] = std::max(text, m_units->sizeHint().height() + 2 * gap);
    m_rows[1] = std::max(text, m_style->sizeHint().height() + 2 * gap);
    m_rows[2] = text + BtnHeight() + 2 * gap;
    m_rows[3] = std::max(text, BtnHeight() + 2 * gap);
    m_scroll = std::min(m_scroll, ScrollRange());
    Place();
}

int ZrFmApp::BtnHeight()
{
    return std::max(44, ZrTheme::DpI(52));
}

/// Puts the controls beside their texts: in one column at the right, the buttons of the scale below theirs.
void ZrFmApp::Place()
{
    const int gap = ZrTheme::DpI(8);
    const int column = ZrTheme::DpI(200) - 2 * gap;
    const int left = width() - ZrTheme::DpI(200) + gap;
    int y = -m_scroll;
    m_units->setGeometry(left, y + gap, column, m_units->sizeHint().height());
    y += m_rows[0];
    m_style->setGeometry(left, y + gap, column, m_style->sizeHint().height());
    y += m_rows[1];
    // To the right edge of the lines, whatever the division leaves.
    const int room = ScrollRange() > 0 ? width() - 2 * gap : width();
    const auto edge = [&](int i) { return i * (room + gap) / 5; };
    for (int i = 0; i < 5; ++i) {
        m_scaleBtns[i]->setGeometry(edge(i), y + TextHeight(), edge(i + 1) - edge(i) - gap, BtnHeight());
        m_scaleBtns[i]->Changed();
    }
    y += m_rows[2];
    m_tablet->setGeometry(left, y + (m_rows[3] - BtnHeight()) / 2, column, BtnHeight());
}

void ZrFmApp::wheelEvent(QWheelEvent* event)
{
    ScrollTo(m_scroll - event->angleDelta().y() * ZrTheme::DpI(60) / 120);
}

void ZrFmApp::mousePressEvent(QMouseEvent* event)
{
    if (ScrollRange() == 0) {
        ZrForm::mousePressEvent(event);
        return;
    }
    m_pressY = event->globalY();
    m_pressScroll = m_scroll;
}

void ZrFmApp::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        ScrollTo(m_pressScroll + m_pressY - event->globalY());
}
