#include "ZrUtil/ZrRadioAccess.h"

#include "ZrUtil/ZrRadio.h"

#include <QPointer>

namespace {

/// One choice. It outlives neither the choice nor the list: then it is not valid.
class ItemAccess final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    ItemAccess(ZrRadio* radio, int index)
        : m_radio(radio)
        , m_index(index)
    {
    }

    int Index() const { return m_index; }

    bool isValid() const override { return m_radio && m_index < m_radio->items.size(); }

    QObject* object() const override { return nullptr; }

    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_radio.data());
    }

    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }

    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }

    int childCount() const override { return 0; }

    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

    QAccessible::Role role() const override { return QAccessible::RadioButton; }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name && isValid() ? m_radio->items[m_index] : QString();
    }

    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override { }

    QRect rect() const override
    {
        if (!isValid())
            return QRect();
        const QRect item = m_radio->ItemRect(m_index);
        return {m_radio->mapToGlobal(item.topLeft()), item.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!isValid())
            return state;
        state.checkable = true;
        state.checked = m_index == m_radio->sel;
        state.disabled = !m_radio->isEnabled();
        state.invisible = !m_radio->isVisible();
        state.focusable = m_radio->focusPolicy() != Qt::NoFocus;
        state.focused = m_radio->hasFocus() && m_index == m_radio->FocusItem();
        state.hotTracked = m_index == m_radio->hot;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override
    {
        if (!isValid() || !m_radio->isEnabled())
            return QStringList();
        return {toggleAction(), pressAction()};
    }

    void doAction(const QString& name) override
    {
        if (actionNames().contains(name))
            m_radio->Select(m_index);
    }

    QStringList keyBindingsForAction(const QString& /*name*/) const override { return QStringList(); }

private:
    QPointer<ZrRadio> m_radio;
    int m_index;
};

} // namespace

ZrRadioAccess::ZrRadioAccess(ZrRadio* radio)
    : QAccessibleWidget(radio, QAccessible::Grouping)
    , m_radio(radio)
{
}

ZrRadioAccess::~ZrRadioAccess()
{
    for (const QAccessible::Id id : m_children) {
        if (id != 0)
            QAccessible::deleteAccessibleInterface(id);
    }
}

int ZrRadioAccess::childCount() const
{
    return m_radio->items.size();
}

QAccessibleInterface* ZrRadioAccess::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (m_children.size() <= index)
        m_children.resize(index + 1);
    QAccessible::Id& id = m_children[index];
    if (id == 0)
        id = QAccessible::registerAccessibleInterface(new ItemAccess(m_radio, index));
    return QAccessible::accessibleInterface(id);
}

QAccessibleInterface* ZrRadioAccess::childAt(int x, int y) const
{
    return child(m_radio->GetSel(m_radio->mapFromGlobal({x, y})));
}

int ZrRadioAccess::indexOfChild(const QAccessibleInterface* item) const
{
    const auto* choice = dynamic_cast<const ItemAccess*>(item);
    const bool isMine = choice && choice->isValid() && child(choice->Index()) == item;
    return isMine ? choice->Index() : -1;
}

QAccessibleInterface* ZrRadioAccess::focusChild() const
{
    return m_radio->hasFocus() ? child(m_radio->FocusItem()) : nullptr;
}
