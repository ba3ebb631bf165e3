#include "ZrUtil/ZrCtrlAccess.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrColBtn.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrRadioAccess.h"
#include "ZrUtil/ZrSlider.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include <cmath>

namespace {

/// What the owner has named goes before what the widget shows.
template <class Widget> class CtrlAccess : public QAccessibleWidget
{
public:
    CtrlAccess(Widget* widget, QAccessible::Role role)
        : QAccessibleWidget(widget, role)
        , m_widget(widget)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        if (kind == QAccessible::Name)
            return given.isEmpty() ? ShownName() : given;
        return kind == QAccessible::Value ? ShownValue() : given;
    }

protected:
    virtual QString ShownName() const
    {
        return m_widget->text.isEmpty() ? m_widget->toolTip() : m_widget->text;
    }

    virtual QString ShownValue() const { return QString(); }

    /// Own actions first, then that of taking the focus.
    QStringList WithBase(const QStringList& own) const
    {
        return m_widget->isEnabled() ? own + QAccessibleWidget::actionNames() : QStringList();
    }

    Widget* m_widget;
};

class BtnAccess : public CtrlAccess<ZrBtn>
{
public:
    explicit BtnAccess(ZrBtn* button)
        : CtrlAccess(button, QAccessible::Button)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = CtrlAccess::state();
        state.checkable = m_widget->checkable;
        state.checked = m_widget->checkable && m_widget->on;
        state.pressed = m_widget->down;
        return state;
    }

    QStringList actionNames() const override
    {
        QStringList names(pressAction());
        if (m_widget->checkable)
            names.prepend(toggleAction());
        return WithBase(names);
    }

    void doAction(const QString& name) override
    {
        if (name != pressAction() && name != toggleAction())
            CtrlAccess::doAction(name);
        else if (m_widget->isEnabled())
            Press();
    }

protected:
    QString ShownValue() const override
    {
        return m_widget->badge != 0 ? QString::number(m_widget->badge) : QString();
    }

private:
    void Press()
    {
        const QPointer<ZrBtn> button(m_widget);
        button->PtrDown(button->rect().center());
        if (button)
            button->PtrUp();
    }
};

class ColBtnAccess final : public BtnAccess
{
public:
    using BtnAccess::BtnAccess;

protected:
    QString ShownValue() const override
    {
        const QColor* colour = static_cast<ZrColBtn*>(m_widget)->colour;
        return colour && colour->isValid() ? colour->name(QColor::HexArgb) : QString();
    }
};

class CheckAccess final : public CtrlAccess<ZrCheck>
{
public:
    explicit CheckAccess(ZrCheck* check)
        : CtrlAccess(check, QAccessible::CheckBox)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = CtrlAccess::state();
        state.checkable = true;
        state.checked = m_widget->IsOn();
        return state;
    }

    QStringList actionNames() const override { return WithBase({toggleAction(), pressAction()}); }

    void doAction(const QString& name) override
    {
        if (name != pressAction() && name != toggleAction())
            CtrlAccess::doAction(name);
        else if (m_widget->isEnabled())
            m_widget->Toggle();
    }
};

class SliderAccess final : public CtrlAccess<ZrSlider>, public QAccessibleValueInterface
{
public:
    explicit SliderAccess(ZrSlider* slider)
        : CtrlAccess(slider, QAccessible::Slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : CtrlAccess::interface_cast(type);
    }

    QVariant currentValue() const override { return m_widget->Value(); }

    void setCurrentValue(const QVariant& value) override
    {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        if (isNumber && m_widget->isEnabled())
            m_widget->SetValue(number);
    }

    QVariant maximumValue() const override { return m_widget->Maximum(); }

    QVariant minimumValue() const override { return m_widget->Minimum(); }

    QVariant minimumStepSize() const override { return m_widget->Step(); }

    QStringList actionNames() const override { return WithBase({increaseAction(), decreaseAction()}); }

    void doAction(const QString& name) override
    {
        if (name != increaseAction() && name != decreaseAction())
            CtrlAccess::doAction(name);
        else if (m_widget->isEnabled())
            m_widget->StepBy(name == increaseAction() ? 1 : -1);
    }

protected:
    QString ShownValue() const override { return m_widget->ValueText(); }
};

class ProgressAccess final : public CtrlAccess<ZrProgress>, public QAccessibleValueInterface
{
public:
    explicit ProgressAccess(ZrProgress* progress)
        : CtrlAccess(progress, QAccessible::ProgressBar)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : CtrlAccess::interface_cast(type);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = CtrlAccess::state();
        state.readOnly = true;
        return state;
    }

    QVariant currentValue() const override { return m_widget->percent; }

    void setCurrentValue(const QVariant& /*value*/) override { }

    QVariant maximumValue() const override { return 100; }

    QVariant minimumValue() const override { return 0; }

    QVariant minimumStepSize() const override { return 1; }

protected:
    QString ShownValue() const override { return QStringLiteral("%1 %").arg(m_widget->percent); }
};

/// Qt asks with the name of every class from the object's own up to its bases.
QAccessibleInterface* Describe(const QString& className, QObject* object)
{
    if (className == QLatin1String("ZrColBtn"))
        return new ColBtnAccess(static_cast<ZrColBtn*>(object));
    if (className == QLatin1String("ZrBtn"))
        return new BtnAccess(static_cast<ZrBtn*>(object));
    if (className == QLatin1String("ZrCheck"))
        return new CheckAccess(static_cast<ZrCheck*>(object));
    if (className == QLatin1String("ZrRadio"))
        return new ZrRadioAccess(static_cast<ZrRadio*>(object));
    if (className == QLatin1String("ZrSlider"))
        return new SliderAccess(static_cast<ZrSlider*>(object));
    if (className == QLatin1String("ZrProgress"))
        return new ProgressAccess(static_cast<ZrProgress*>(object));
    return nullptr;
}

} // namespace

void ZrCtrlAccess::Install()
{
    static bool isInstalled = false;
    if (isInstalled)
        return;
    isInstalled = true;
    QAccessible::installFactory(Describe);
}

void ZrCtrlAccess::TellChecked(QWidget* widget)
{
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(widget, changed);
    QAccessible::updateAccessibility(&event);
}

void ZrCtrlAccess::TellPressed(QWidget* widget)
{
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.pressed = true;
    QAccessibleStateChangeEvent event(widget, changed);
    QAccessible::updateAccessibility(&event);
}

void ZrCtrlAccess::TellSelected(QWidget* radio)
{
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(radio, changed);
    const int sel = static_cast<ZrRadio*>(radio)->sel;
    if (sel >= 0)
        event.setChild(sel);
    QAccessible::updateAccessibility(&event);
}

void ZrCtrlAccess::TellValue(QWidget* widget, double value)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent event(widget, value);
    QAccessible::updateAccessibility(&event);
}
