// The window of the gallery: scale, units, and what switches them.

#include "examples/widget_gallery/Gallery.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "examples/widget_gallery/CellGrid.h"

#include <QApplication>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QShortcut>

namespace {

const QKeySequence metricKey(Qt::CTRL + Qt::Key_M);
const QKeySequence imperialKey(Qt::CTRL + Qt::Key_I);
const QKeySequence tabletKey(Qt::CTRL + Qt::Key_T);

QKeySequence ScaleKey(int index)
{
    return QKeySequence(Qt::CTRL + Qt::Key_1 + index);
}

QString WithKey(const QString& text, const QKeySequence& key)
{
    return QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText));
}

} // namespace

const std::vector<Gallery::Scale>& Gallery::Scales()
{
    static const std::vector<Scale> scales = {{"-2", "minus2", 1920, 1200}, {"0", "default", 1440, 900},
        {"+1", "plus1", 1280, 800}, {"+2", "plus2", 1024, 640}};
    return scales;
}

Gallery::Gallery()
{
    setWindowTitle(tr("Widgets"));
    setMinimumSize(900, 600);
    AddShortcuts();
    SetImperial(false);
    SetScale(1);
}

void Gallery::AddShortcuts()
{
    for (int i = 0; i < int(Scales().size()); ++i)
        connect(new QShortcut(ScaleKey(i), this), &QShortcut::activated, this, [this, i] { SetScale(i); });
    connect(new QShortcut(metricKey, this), &QShortcut::activated, this, [this] { SetImperial(false); });
    connect(new QShortcut(imperialKey, this), &QShortcut::activated, this, [this] { SetImperial(true); });
    connect(new QShortcut(tabletKey, this), &QShortcut::activated, this,
        [this] { SetTabletMode(!ZrTheme::tabletMode); });
}

void Gallery::SetScale(int index)
{
    m_scale = index;
    const Scale& scale = Scales()[std::size_t(index)];
    ZrTheme::SetDesignScale(float(scale.width), float(scale.height));
    ApplyScale();
    Build();
}

/// Fits the theme to the window.
void Gallery::ApplyScale()
{
    ZrTheme::SetAppSize(float(width()), float(height()));
    ZrTheme::SetStdStyle(); // fonts, pens and corners follow the scale
    QApplication::setFont(ZrTheme::font); // style sheets give sizes, not the family
    qApp->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
}

void Gallery::resizeEvent(QResizeEvent* /*event*/)
{
    ApplyScale();
    if (ZrTheme::dp != m_builtFor)
        Build();
    else
        PlaceParts();
}

void Gallery::SetImperial(bool imperial)
{
    m_imperial = imperial;
    if (imperial)
        ZrUnits::SetToImperial();
    else
        ZrUnits::SetToMetric();
    // Every input, of other windows too, shows its value in the new units.
    ZrInput::RecalcAllInputs();
    if (m_bar)
        ShowUnits();
}

void Gallery::SetTabletMode(bool tablet)
{
    ZrTheme::tabletMode = tablet;
    auto* button = m_bar->findChild<ZrBtn*>(QStringLiteral("tablet"));
    button->on = tablet;
    button->update();
}

/// Makes all widgets for the scale in force.
void Gallery::Build()
{
    m_builtFor = ZrTheme::dp;
    m_samples.clear();
    delete m_bar;
    delete m_scroll;
    m_bar = new CellGrid(this);
    m_scroll = new QScrollArea(this);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_content = new CellGrid(m_scroll);
    m_scroll->setWidget(m_content);
    // Fingers scroll; the mouse has the wheel and the bar.
    QScroller::grabGesture(m_scroll->viewport(), QScroller::TouchGesture);

    BuildBar();
    AddButtons();
    AddChoices();
    AddInputs();
    AddInputStates();
    AddPanels();
    AddQtControls();
    ShowUnits();
    m_bar->show();
    m_scroll->show();
    PlaceParts();
    ShowStates();
    setFocus();
}

void Gallery::BuildBar()
{
    for (int i = 0; i < int(Scales().size()); ++i) {
        const Scale& scale = Scales()[std::size_t(i)];
        auto* button = new ZrBtn(m_bar, ZrBtn::typeStd);
        button->text = QString::fromLatin1(scale.name);
        button->on = i == m_scale;
        button->id = i;
        button->setToolTip(
            WithKey(tr("Made for %1 × %2 pixels").arg(scale.width).arg(scale.height), ScaleKey(i)));
        // Queued: the button itself is one of the widgets that are made anew.
        connect(button, &ZrBtn::Released, this, &Gallery::SetScale, Qt::QueuedConnection);
        m_bar->AddCell(i == 0 ? tr("Display scale") : QStringLiteral(" "), button, 1);
    }
    for (const bool imperial : {false, true}) {
        auto* button = new ZrBtn(m_bar, ZrBtn::typeStd);
        button->text = imperial ? tr("Imperial") : tr("Metric");
        button->setObjectName(imperial ? QStringLiteral("imperial") : QStringLiteral("metric"));
        button->setToolTip(imperial ? WithKey(tr("Feet, miles, knots, °F"), imperialKey)
                                    : WithKey(tr("Metres, kilometres, m/s, °C"), metricKey));
        connect(button, &ZrBtn::Released, this, [this, imperial] { SetImperial(imperial); });
        m_bar->AddCell(imperial ? QStringLiteral(" ") : tr("Units"), button, 1);
    }
    auto* tablet = new ZrBtn(m_bar, ZrBtn::typeStd);
    tablet->text = tr("Tablet");
    tablet->setObjectName(QStringLiteral("tablet"));
    tablet->checkable = true;
    tablet->on = ZrTheme::tabletMode;
    tablet->setToolTip(WithKey(tr("A press on a value opens a keyboard on the screen"), tabletKey));
    connect(tablet, &ZrBtn::Toggled, this, &Gallery::SetTabletMode);
    m_bar->AddCell(tr("Input"), tablet, 1);
}

void Gallery::PlaceParts()
{
    const int barOfScroll = m_scroll->verticalScrollBar()->sizeHint().width();
    const int inside = width() - barOfScroll;
    const int barHeight = m_bar->Place(inside);
    m_scroll->setGeometry(0, barHeight, width(), height() - barHeight);
    m_content->Place(inside);
}

/// The units in force, and all values in them.
void Gallery::ShowUnits()
{
    m_bar->findChild<ZrBtn*>(QStringLiteral("metric"))->on = !m_imperial;
    m_bar->findChild<ZrBtn*>(QStringLiteral("imperial"))->on = m_imperial;
    const QList<ZrBtn*> buttons = m_bar->findChildren<ZrBtn*>();
    for (ZrBtn* button : buttons)
        button->update();
    for (ZrInput* input : m_inputs) {
        // An input holds what its text says, two decimals in the old unit: its owner knows better.
        if (input->kind == ZrInput::kindText)
            input->SetText(m_values.name);
        else
            input->SetValue(m_values.inputs.at(std::size_t(input->kind)));
        const QString unit = input->UnitText();
        m_content->SetCaption(
            input, unit.isEmpty() ? input->caption : input->caption + QStringLiteral(", ") + unit);
    }
}

ZrInput* Gallery::Input(int kind) const
{
    return m_inputs.at(std::size_t(kind));
}

void Gallery::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.fillRect(rect(), ZrTheme::formBack);
}

QImage Gallery::Picture()
{
    QImage picture(m_content->width(), m_bar->height() + m_content->height(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    const QPoint below(0, m_bar->height());
    m_bar->render(&picture, QPoint(), QRegion(), DrawChildren);
    m_content->render(&picture, below, QRegion(), DrawChildren);
    for (const Sample& sample : m_samples) {
        if (sample.state != stateFocused)
            continue;
        sample.widget->setFocus(Qt::TabFocusReason);
        const QPoint at = sample.widget->mapTo(m_content, QPoint()) + below;
        QPainter(&picture).fillRect(QRect(at, sample.widget->size()), Qt::black);
        sample.widget->render(&picture, at, QRegion(), DrawChildren);
    }
    setFocus();
    return picture;
}
