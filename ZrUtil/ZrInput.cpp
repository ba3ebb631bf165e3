#include "ZrUtil/ZrInput.h"

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QContextMenuEvent>
#include <QDebug>
#include <QGuiApplication>
#include <QHideEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <limits>

std::vector<ZrInput*> ZrInput::s_inputs;
QTextOption ZrInput::s_to(Qt::AlignLeft | Qt::AlignVCenter);

namespace {

const char* const validStyle = "QLineEdit { background-color : #515151;}";
const char* const errorStyle = "QLineEdit { background-color : #aa0000;}";
const QColor validBack(0x51, 0x51, 0x51);
constexpr int touchHeight = 44; ///< the least that a finger hits, real pixels
constexpr double noBound = 1e99; ///< from here on an end of the range is none

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

double ZrInput::Parse(const QString& s, bool& ok) const
{
    switch (kind) {
    case kindInt:
        return s.toInt(&ok, 10);
    case kindDouble:
        return s.toDouble(&ok);
    case kindFloat:
        return static_cast<double>(s.toFloat(&ok));
    case kindLat:
    case kindLng:
        return ZrUnits::GetValue(s, ok);
    case kindTinyLength:
        return ZrUnits::GetTinyLengthValue(s, ok);
    case kindShortLength:
        return ZrUnits::GetShortLengthValue(s, ok);
    case kindLongLength:
        return ZrUnits::GetLongLengthValue(s, ok);
    case kindSpeed:
        return ZrUnits::GetSpeedValue(s, ok);
    case kindTemperature:
        return ZrUnits::GetTemperatureValue(s, ok);
    default:
        return ZrUnits::GetGridValue(s, ok);
    }
}

int ZrInput::GetStrValue(QString s, double& out)
{
    if (kind == kindText)
        return valid;
    if (kind < kindInt || kind > kindNorthing) {
        out = 0.0;
        return error;
    }
    bool ok = false;
    out = Parse(s, ok);
    if (!ok)
        return error;
    // Not a number is not within either.
    const bool isWithin = out >= min && out <= max;
    return hasRange && !isWithin ? outOfRange : valid;
}

int ZrInput::GetCurValue(double& out)
{
    return GetStrValue(QLineEdit::text(), out);
}

QString ZrInput::GetText(double v)
{
    switch (kind) {
    case kindInt:
        return QString::number(v, 'f', 0);
    case kindDouble:
    case kindFloat:
        return QString::number(v, 'f', places);
    case kindLat:
        return ZrUnits::GetLatString(v);
    case kindLng:
        return ZrUnits::GetLngString(v);
    case kindTinyLength:
        return ZrUnits::GetTinyLengthString(v, places, false);
    case kindShortLength:
        return ZrUnits::GetShortLengthString(v, places, false);
    case kindLongLength:
        return ZrUnits::GetLongLengthString(v, places, false);
    case kindSpeed:
        return ZrUnits::GetSpeedString(v, places, false);
    case kindTemperature:
        return ZrUnits::GetTemperatureString(v, places, false);
    // Two decimals, whatever the places.
    case kindEasting:
        return ZrUnits::GetEString(v, 2, false);
    case kindNorthing:
        return ZrUnits::GetNString(v, 2, false);
    default:
        return text;
    }
}

QString ZrInput::UnitText() const
{
    switch (kind) {
    case kindTinyLength:
        return ZrUnits::GetTinyLengthUnits();
    case kindShortLength:
        return ZrUnits::GetShortLengthUnits();
    case kindLongLength:
        return ZrUnits::GetLongLengthUnits();
    case kindSpeed:
        return ZrUnits::GetSpeedUnits();
    case kindTemperature:
        return ZrUnits::GetTemperatureUnits();
    case kindEasting:
        return ZrUnits::GetEUnits();
    case kindNorthing:
        return ZrUnits::GetNUnits();
    default:
        return QString();
    }
}

/// An end of the range as text that is accepted when typed: shown with few decimals it may lie outside, then
/// it is the next one inside.
QString ZrInput::BoundText(double bound, bool isUpper)
{
    const QString shown = GetText(bound);
    double v = 0.0;
    const bool isPosition = kind == kindLat || kind == kindLng;
    if (isPosition || GetStrValue(shown, v) != outOfRange)
        return shown;
    const int point = shown.indexOf(QLatin1Char('.'));
    const int decimals = point < 0 ? 0 : shown.size() - point - 1;
    const double step = std::pow(10.0, -decimals);
    return QString::number(shown.toDouble() + (isUpper ? -step : step), 'f', decimals);
}

QString ZrInput::RangeText()
{
    if (!hasRange || kind == kindText || kind < kindInt || kind > kindNorthing)
        return QString();
    const bool hasMin = min > -noBound;
    const bool hasMax = max < noBound;
    QString range;
    if (hasMin && hasMax)
        range = tr("%1 to %2").arg(BoundText(min, false), BoundText(max, true));
    else if (hasMin)
        range = tr("at least %1").arg(BoundText(min, false));
    else if (hasMax)
        range = tr("at most %1").arg(BoundText(max, true));
    else
        return QString();
    const QString unit = UnitText();
    return unit.isEmpty() ? range : range + QLatin1Char(' ') + unit;
}

QString ZrInput::RefusalText(const QString& s)
{
    double v = 0.0;
    const int result = GetStrValue(s, v);
    if (result == valid)
        return QString();
    if (result == outOfRange)
        return RangeText();
    if (s.trimmed().isEmpty())
        return tr("nothing is typed");
    switch (kind) {
    case kindInt: {
        bool isNumber = false;
        const double number = s.toDouble(&isNumber);
        const bool isTooLarge = isNumber && std::fabs(number) > std::numeric_limits<int>::max();
        return isTooLarge ? tr("this number is too large") : tr("a whole number is expected");
    }
    case kindLat:
    case kindLng:
        return tr("a position is expected, like %1").arg(kind == kindLat ? tr("51 7.4 N") : tr("4 12.5 W"));
    default:
        return tr("a number is expected");
    }
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
