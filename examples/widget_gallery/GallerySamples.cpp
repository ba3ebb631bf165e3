// The widgets of the gallery, and their states.

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrColBtn.h"
#include "ZrUtil/ZrDragWidget.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"
#include "examples/widget_gallery/CellGrid.h"
#include "examples/widget_gallery/Gallery.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTimer>

#include <algorithm>

namespace {

/// A panel that is dragged by its upper edge.
class Panel : public ZrDragWidget
{
public:
    using ZrDragWidget::ZrDragWidget;

protected:
    void resizeEvent(QResizeEvent* /*event*/) override { grip = QRect(0, 0, width(), ZrTheme::DpI(44)); }
};

void SendMouse(QWidget* widget, QEvent::Type type, const QPointF& at)
{
    const bool isPress = type == QEvent::MouseButtonPress;
    QMouseEvent event(type, at, widget->mapToGlobal(at.toPoint()), isPress ? Qt::LeftButton : Qt::NoButton,
        isPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

QString Gallery::StateName(State state)
{
    switch (state) {
    case stateHovered:
        return tr("Hovered");
    case statePressed:
        return tr("Pressed");
    case stateOn:
        return tr("On");
    case stateDisabled:
        return tr("Disabled");
    case stateFocused:
        return tr("Focused");
    default:
        return tr("Normal");
    }
}

/// A cell with a widget that stays in a state. The normal one is alive instead: the user may try it.
void Gallery::AddSample(const QString& what, QWidget* widget, State state, int columns)
{
    const QString caption = what.isEmpty() ? StateName(state) : what;
    m_content->AddCell(caption, widget, columns);
    if (state == stateNormal)
        return;
    widget->setAttribute(Qt::WA_TransparentForMouseEvents);
    widget->setEnabled(state != stateDisabled);
    if (state != stateFocused)
        widget->setFocusPolicy(Qt::NoFocus);
    m_samples.push_back({widget, state});
}

/// Gives the samples their states, which depend on their size.
void Gallery::ShowStates()
{
    for (const Sample& sample : m_samples) {
        if (sample.state != stateHovered && sample.state != statePressed)
            continue;
        const bool isPressed = sample.state == statePressed;
        if (auto* button = qobject_cast<ZrBtn*>(sample.widget)) {
            button->hover = isPressed ? 2 : 1;
        } else if (auto* check = qobject_cast<ZrCheck*>(sample.widget)) {
            check->hover = 1;
        } else if (auto* radio = qobject_cast<ZrRadio*>(sample.widget)) {
            radio->hot = 0;
        } else if (qobject_cast<ZrSlider*>(sample.widget)) {
            // The handle is in the middle of the groove.
            SendMouse(sample.widget, isPressed ? QEvent::MouseButtonPress : QEvent::MouseMove,
                QPointF(sample.widget->width() / 2.0, sample.widget->height() * 0.7));
        } else {
            sample.widget->setAttribute(Qt::WA_UnderMouse);
            // A push button looks at where the mouse was last.
            SendMouse(sample.widget, QEvent::MouseMove, QRectF(sample.widget->rect()).center());
        }
    }
}

void Gallery::AddButtonRow(const QString& title, int type, const QString& icon, const QString& text)
{
    m_content->BeginGroup(6);
    for (const State state :
        {stateNormal, stateHovered, statePressed, stateOn, stateDisabled, stateFocused}) {
        auto* button = new ZrBtn(m_content, ZrBtn::eType(type));
        if (!icon.isEmpty())
            button->img = QImage(icon);
        button->text = text;
        button->checkable = true;
        button->on = state == stateOn;
        button->setAccessibleName(title);
        if (type == ZrBtn::typeRound)
            button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        AddSample(state == stateNormal ? title : QString(), button, state, 1);
    }
}

void Gallery::AddButtons()
{
    m_content->AddHeading(tr("Buttons"));
    AddButtonRow(tr("Standard"), ZrBtn::typeStd, QString(), tr("Measure"));
    AddButtonRow(tr("With icon"), ZrBtn::typeStd, QStringLiteral(":/settings_logging.png"), tr("Logs"));
    AddButtonRow(tr("Accent"), ZrBtn::typeAccent, QString(), tr("Record"));
    AddButtonRow(tr("Tool"), ZrBtn::typeTool, QStringLiteral(":/settings_application.png"), tr("Settings"));
    AddButtonRow(tr("Round"), ZrBtn::typeRound, QStringLiteral(":/btn_close.png"), QString());

    m_content->BeginGroup(5);
    auto* link = new ZrBtn(m_content, ZrBtn::typeAccent);
    link->text = tr("Record");
    link->checkable = true;
    link->on = m_values.recording;
    link->link = &m_values.recording; // follows the button
    m_content->AddCell(tr("With a link"), link, 1);
    auto* badge = new ZrBtn(m_content, ZrBtn::typeTool);
    badge->img = QImage(QStringLiteral(":/settings_logging.png"));
    badge->text = tr("Events");
    badge->badge = 7;
    m_content->AddCell(tr("With a badge"), badge, 1);
    auto* lines = new ZrBtn(m_content, ZrBtn::typeStd);
    lines->text = tr("Return to the start");
    lines->lines = 2;
    m_content->AddCell(tr("Two lines"), lines, 1);
    auto* colour = new ZrColBtn(m_content);
    colour->colour = &m_values.colour;
    m_content->AddCell(tr("Colour"), colour, 1);
    auto* noColour = new ZrColBtn(m_content);
    noColour->colour = &m_values.colour;
    AddSample(tr("Disabled"), noColour, stateDisabled, 1);
}

void Gallery::AddChoices()
{
    m_content->AddHeading(tr("Choices"));
    for (const State state : {stateNormal, stateHovered, stateOn, stateDisabled, stateFocused}) {
        auto* check = new ZrCheck(m_content);
        check->text = tr("Grid");
        if (state == stateNormal) {
            check->get = [this] { return m_values.grid; };
            check->set = [this](bool on) { m_values.grid = on; };
        } else {
            check->set(state == stateOn);
        }
        AddSample(state == stateNormal ? tr("Check box") : QString(), check, state, 1);
    }
    m_content->BeginGroup(4);
    for (const State state : {stateNormal, stateHovered, stateDisabled, stateFocused}) {
        auto* radio = new ZrRadio(m_content);
        radio->items = QStringList({tr("GNSS"), tr("Acoustic"), tr("Inertial")});
        radio->UseTouchHeight();
        radio->SetSel(state == stateNormal ? m_values.source : 1);
        if (state == stateNormal)
            connect(radio, &ZrRadio::SelChanged, this, [this](int sel) { m_values.source = sel; });
        AddSample(state == stateNormal ? tr("Radio list") : QString(), radio, state, 1);
    }
    m_content->BeginGroup(10);
    for (const State state : {stateNormal, stateHovered, statePressed, stateDisabled, stateFocused}) {
        auto* slider = new ZrSlider(m_content);
        slider->text = tr("Gain");
        slider->unit = QStringLiteral("%");
        slider->SetValue(state == stateNormal ? m_values.gain : 50.0);
        if (state == stateNormal)
            connect(slider, &ZrSlider::ValueChanged, this, [this](double value) { m_values.gain = value; });
        AddSample(state == stateNormal ? tr("Slider") : QString(), slider, state, 2);
    }
}

ZrInput* Gallery::MakeInput(int kind)
{
    const std::array<QString, kinds> captions = {{tr("Integer"), tr("Number"), tr("Single precision"),
        tr("Free text"), tr("Latitude"), tr("Longitude"), tr("Tiny length"), tr("Short length"),
        tr("Long length"), tr("Speed"), tr("Temperature"), tr("Grid easting"), tr("Grid northing")}};
    auto* input = new ZrInput(m_content);
    input->kind = kind;
    input->caption = captions.at(std::size_t(kind));
    return input;
}

void Gallery::AddInputs()
{
    m_content->AddHeading(tr("Values"));
    for (int kind = 0; kind < kinds; ++kind) {
        ZrInput* input = MakeInput(kind);
        if (kind == ZrInput::kindShortLength)
            input->SetRange(0.0, 6000.0); // metres, whatever unit is shown
        connect(input, &ZrInput::NewInput, this, [this, input, kind] {
            m_values.inputs.at(std::size_t(kind)) = input->value;
            if (input->kind == ZrInput::kindText)
                m_values.name = input->text;
        });
        m_inputs.at(std::size_t(kind)) = input;
        m_content->AddCell(input->caption, input, 2);
    }
}

void Gallery::AddInputStates()
{
    m_content->BeginGroup(10);
    const auto add = [this](const QString& caption, State state, const QString& text) {
        ZrInput* input = MakeInput(ZrInput::kindDouble);
        input->SetRange(0.0, 100.0);
        input->SetText(text);
        AddSample(caption, input, state, 2);
    };
    add(QString(), stateHovered, QStringLiteral("12.50"));
    add(QString(), stateFocused, QStringLiteral("12.50"));
    add(QString(), stateDisabled, QStringLiteral("12.50"));
    add(tr("Not a number"), stateOn, QStringLiteral("twelve"));
    add(tr("Typed above the range"), stateOn, QStringLiteral("250.00"));
}

void Gallery::AddPanels()
{
    m_content->AddHeading(tr("Panels"));
    m_progress = new ZrProgress(m_content);
    m_progress->percent = 40;
    m_content->AddCell(tr("Progress"), m_progress, 3);
    auto* run = new ZrBtn(m_content, ZrBtn::typeStd);
    run->text = tr("Start work");
    connect(run, &ZrBtn::Clicked, this, &Gallery::StartWork);
    m_content->AddCell(QStringLiteral(" "), run, 1);

    auto* area = new QWidget(m_content);
    area->setMinimumHeight(ZrTheme::DpI(240));
    auto* panel = new Panel(area);
    panel->setGeometry(ZrTheme::DpI(24), ZrTheme::DpI(24), ZrTheme::DpI(200), ZrTheme::DpI(160));
    auto* inside = new ZrBtn(panel, ZrBtn::typeStd);
    inside->text = tr("Inside");
    inside->setGeometry(ZrTheme::DpI(24), ZrTheme::DpI(64), ZrTheme::DpI(152),
        std::max(ZrTheme::DpI(64), inside->minimumSizeHint().height()));
    m_content->AddCell(tr("Panel to be dragged by its grip"), area, 4);
}

void Gallery::StartWork()
{
    m_progress->Start();
    // Owned by the panel: the work ends when the widgets are made anew.
    auto* timer = m_progress->findChild<QTimer*>();
    if (!timer) {
        timer = new QTimer(m_progress);
        connect(timer, &QTimer::timeout, m_progress, [this, timer] {
            m_progress->UpdateProgress(m_progress->GetProgress() + 1);
            if (m_progress->GetProgress() >= 100)
                timer->stop();
        });
    }
    timer->start(30);
}

void Gallery::AddQtControls()
{
    m_content->AddHeading(tr("Controls of Qt, as in forms"));
    const QString sheet = ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css"));
    const auto add = [this, &sheet](const QString& caption, QWidget* widget, State state, int columns) {
        widget->setStyleSheet(sheet);
        AddSample(caption, widget, state, columns);
    };
    for (const State state : {stateNormal, stateHovered, stateDisabled}) {
        const bool isAlive = state == stateNormal;
        m_content->BeginGroup(8);
        add(isAlive ? tr("Push button") : QString(), new QPushButton(tr("Path")), state, 1);
        auto* check = new QCheckBox(tr("To file"));
        check->setChecked(true);
        add(isAlive ? tr("Check box") : QString(), check, state, 1);
        auto* combo = new QComboBox;
        combo->addItems({tr("Nearest"), tr("Linear")});
        add(isAlive ? tr("Combo box") : QString(), combo, state, 2);
        auto* spin = new QSpinBox;
        spin->setValue(12);
        spin->setAlignment(Qt::AlignCenter);
        add(isAlive ? tr("Spin box") : QString(), spin, state, 2);
        auto* slider = new QSlider(Qt::Horizontal);
        slider->setValue(30);
        add(isAlive ? tr("Slider") : QString(), slider, state, 2);
    }
    m_content->BeginGroup(3);
    auto* list = new QListWidget;
    list->addItems({tr("Survey 1"), tr("Survey 2"), tr("Survey 3")});
    list->setCurrentRow(1);
    list->setFixedHeight(ZrTheme::DpI(156));
    add(tr("List"), list, stateNormal, 3);
}
