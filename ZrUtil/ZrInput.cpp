#include "ZrUtil/ZrInput.h"

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"

#include <QContextMenuEvent>
#include <QDebug>
#include <QGuiApplication>
#include <QHideEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>

std::vector<ZrInput*> ZrInput::s_inputs;
QTextOption ZrInput::s_to(Qt::AlignLeft | Qt::AlignVCenter);

namespace {

const char* const validStyle = "QLineEdit { background-color : #515151;}";
const char* const errorStyle = "QLineEdit { background-color : #aa0000;}";
const QColor validBack(0x51, 0x51, 0x51);
constexpr int touchHeight = 44; ///< the least that a finger hits, real pixels

} // namespace

ZrInput::ZrInput(QWidget* parent)
    : QLineEdit(parent)
{
    // Both style sheets set dark backgrounds.
    QPalette colours = palette();
    colours.setColor(QPalette::Base, validBack);
    colours.setColor(QPalette::Text, ZrTheme::ctrlCol.isValid() ? ZrTheme::ctrlCol : QColor(Qt::white));
    // Contrast to both backgrounds above 4.5.
    const QColor dim(0xC8, 0xC8, 0xC8);
    colours.setColor(QPalette::PlaceholderText, dim);
    colours.setColor(QPalette::Disabled, QPalette::Text, dim);
    setPalette(colours);
    connect(this, &QLineEdit::textChanged, this, &ZrInput::OnTextChanged);
    s_inputs.push_back(this);
}

ZrInput::~ZrInput()
{
    const auto at = std::find(s_inputs.begin(), s_inputs.end(), this);
    if (at != s_inputs.end())
        s_inputs.erase(at);
    // A keyboard without its control has nobody to ask.
    delete m_dlg.data();
}

void ZrInput::SetRange(double lo, double hi)
{
    min = lo;
    max = hi;
    hasRange = true;
    Describe();
}

/// Tells assistive tools what the keyboard shows, but never over what the application has told.
void ZrInput::Describe()
{
    const QString name = caption;
    if (accessibleName() == m_saidName && name != m_saidName) {
        m_saidName = name;
        setAccessibleName(name);
    }
    QStringList parts;
    const QString range = RangeText();
    if (!range.isEmpty())
        parts += tr("allowed: %1").arg(range);
    else if (!UnitText().isEmpty())
        parts += UnitText();
    if (m_isError)
        parts += tr("Error") + QStringLiteral(": ") + RefusalText(QLineEdit::text());
    const QString description = parts.join(QStringLiteral(". "));
    if (accessibleDescription() == m_saidDescription && description != m_saidDescription) {
        m_saidDescription = description;
        setAccessibleDescription(description);
    }
}

/// Sets the text of the line as the control's own doing.
void ZrInput::Show(const QString& s)
{
    const QPointer<ZrInput> self(this);
    const bool wasUpdating = updating;
    updating = true;
    setText(s);
    if (self)
        updating = wasUpdating;
}

void ZrInput::SetValue(double v)
{
    if (updating)
        return;
    value = v;
    text = GetText(v);
    Show(text);
}

void ZrInput::SetText(QString s)
{
    text = s;
    Show(s);
}

void ZrInput::SetValid(bool ok)
{
    const QString style = QString::fromLatin1(ok ? validStyle : errorStyle);
    // Setting the same one again would lay out and paint again.
    if (styleSheet() != style)
        setStyleSheet(style);
    m_isError = !ok;
    Describe();
}

void ZrInput::OnTextChanged(const QString& s)
{
    double v = value;
    if (GetStrValue(s, v) == error) {
        SetValid(false);
        return;
    }
    // Out of range is accepted here: the keyboard on the screen alone refuses it.
    text = s;
    value = v;
    SetValid(true);
    if (!updating)
        Q_EMIT NewInput();
}

void ZrInput::OnCommit(QString s)
{
    const QPointer<ZrInput> self(this);
    double v = value;
    if (GetStrValue(s, v) == valid) {
        value = v;
        text = s;
        // Another text goes through `OnTextChanged`, which emits a first time.
        setText(s);
        if (self)
            Q_EMIT NewInput();
    }
    if (self)
        update();
}

int ZrInput::OnValidate(QString s)
{
    double v = 0.0;
    return GetStrValue(s, v) == valid ? 1 : 0;
}

void ZrInput::OnNegate(QString& s)
{
    double v = value;
    if (GetStrValue(s, v) == valid)
        s = GetText(-v);
}

void ZrInput::RecalcAllInputs()
{
    // Whoever listens to a text may remove controls.
    const std::vector<ZrInput*> inputs = s_inputs;
    for (ZrInput* input : inputs) {
        if (std::find(s_inputs.begin(), s_inputs.end(), input) == s_inputs.end())
            continue;
        if (input->kind < kindLat || input->kind > kindNorthing || input->updating)
            continue;
        const QPointer<ZrInput> alive(input);
        // What is typed on the screen was meant in the units before.
        input->CloseKeyboard();
        if (!alive)
            continue;
        input->text = input->GetText(input->value);
        input->Show(input->text);
        if (alive)
            input->Describe();
    }
}

bool ZrInput::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Polish:
    case QEvent::Show:
    case QEvent::FocusIn:
        // The members may have been set since.
        Describe();
        break;
    default:
        break;
    }
    return QLineEdit::event(event);
}

void ZrInput::mousePressEvent(QMouseEvent* event)
{
    if (ZrTheme::tabletMode)
        OpenKeyboard();
    else
        QLineEdit::mousePressEvent(event);
}

// The rest of a press that has opened the keyboard neither selects text nor calls the keyboard of the system.

void ZrInput::mouseMoveEvent(QMouseEvent* event)
{
    if (!ZrTheme::tabletMode)
        QLineEdit::mouseMoveEvent(event);
}

void ZrInput::mouseReleaseEvent(QMouseEvent* event)
{
    if (!ZrTheme::tabletMode)
        QLineEdit::mouseReleaseEvent(event);
}

void ZrInput::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (!ZrTheme::tabletMode)
        QLineEdit::mouseDoubleClickEvent(event);
    else if (m_dlg && m_dlg->isVisible())
        m_dlg->setFocus();
    else
        OpenKeyboard();
}

void ZrInput::contextMenuEvent(QContextMenuEvent* event)
{
    if (!ZrTheme::tabletMode)
        QLineEdit::contextMenuEvent(event);
}

void ZrInput::hideEvent(QHideEvent* event)
{
    // A page that goes takes its keyboard along; a window that is minimised does not.
    if (!event->spontaneous())
        CloseKeyboard();
    QLineEdit::hideEvent(event);
}

QSize ZrInput::sizeHint() const
{
    const QSize usual = QLineEdit::sizeHint();
    return ZrTheme::tabletMode ? usual.expandedTo(QSize(0, touchHeight)) : usual;
}

QSize ZrInput::minimumSizeHint() const
{
    const QSize usual = QLineEdit::minimumSizeHint();
    return ZrTheme::tabletMode ? usual.expandedTo(QSize(0, touchHeight)) : usual;
}

void ZrInput::CloseKeyboard()
{
    if (m_dlg && m_dlg->isVisible())
        m_dlg->OnCancel();
}

void ZrInput::OpenKeyboard()
{
    QWidget* top = this;
    while (top->parentWidget())
        top = top->parentWidget();
    // The keyboard of another control would stay under this one.
    const QList<ZrInputDlg*> others = top->findChildren<ZrInputDlg*>(QString(), Qt::FindDirectChildrenOnly);
    const QPointer<ZrInput> self(this);
    for (const QPointer<ZrInputDlg> other : others) {
        if (other && other != m_dlg && other->isVisible())
            other->OnCancel();
    }
    if (!self)
        return;
    delete m_dlg.data();
    auto* dlg = new ZrInputDlg(top);
    m_dlg = dlg;
    dlg->caption = caption;
    dlg->text = text;
    dlg->state = 1;
    dlg->SetControl(this);
    connect(dlg, &ZrInputDlg::Negate, this, &ZrInput::OnNegate, Qt::DirectConnection);
    connect(dlg, &ZrInputDlg::Commit, this, &ZrInput::OnCommit, Qt::DirectConnection);
    connect(dlg, &ZrInputDlg::Validate, this, &ZrInput::OnValidate, Qt::DirectConnection);
    BuildKeys(*dlg);
    if (ZrInputDlg::s_keepInside)
        dlg->FitInto(top->size());
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        qDebug() << "No screen";
        return;
    }
    const QSize size = screen->geometry().size();
    qDebug() << "Show dialog" << size.height() << size.width() << dlg->dlgWidth << dlg->dlgHeight;
    dlg->Open(QRect((size.width() - dlg->dlgWidth) / 2, (size.height() - dlg->dlgHeight) / 2, dlg->dlgWidth,
        dlg->dlgHeight));
}

void ZrInput::BuildKeys(ZrInputDlg& dlg) const
{
    switch (kind) {
    case kindInt:
        dlg.BuildInt();
        break;
    case kindText:
        dlg.BuildQwerty();
        break;
    case kindLat:
    case kindLng:
        dlg.BuildGeo();
        break;
    case kindDouble:
    case kindFloat:
    case kindTinyLength:
    case kindShortLength:
    case kindLongLength:
    case kindSpeed:
    case kindTemperature:
    case kindEasting:
    case kindNorthing:
        dlg.BuildFloat();
        break;
    default:
        // Nothing can be typed that parses.
        dlg.BuildStd();
        break;
    }
}

/// Dashes along the edge: a dim text alone is not told from a usual one at small scales.
void ZrInput::PaintDisabled()
{
    QPainter painter(this);
    const double line = ZrCtrlLook::WholeLine(painter, std::max(2.0, ZrCtrlLook::Dp(2.0F)));
    const QRectF edge = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    const double radius = std::max(0.0, ZrTheme::rxy - line / 2);
    // What shows between the dashes is dark: they have little contrast to the background.
    QPen pen(Qt::black, line);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.drawRoundedRect(edge, radius, radius);
    const QColor outline = ZrTheme::ctrlOutlineCol;
    pen.setColor(outline.isValid() ? outline : QColor(Qt::gray));
    pen.setDashPattern({3.0, 3.0});
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    painter.drawRoundedRect(edge, radius, radius);
}

void ZrInput::paintEvent(QPaintEvent* event)
{
    QLineEdit::paintEvent(event);
    if (!isEnabled())
        PaintDisabled();
    if (!m_isError)
        return;
    // The two backgrounds are alike to who does not see colours: a wavy line says the same.
    const double step = std::max(2.0, static_cast<double>(ZrTheme::DpF(3.0F)));
    QPainterPath wave;
    const double bottom = height() - step;
    wave.moveTo(step, bottom);
    bool isUp = true;
    for (double x = 2 * step; x < width() - step; x += step) {
        wave.lineTo(x, isUp ? bottom - step : bottom);
        isUp = !isUp;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Text), step / 2));
    painter.drawPath(wave);
}
