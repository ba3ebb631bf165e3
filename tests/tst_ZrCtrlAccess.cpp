// What assistive technologies are told of the touch widgets, and what they can do with them.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrColBtn.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSlider.h"

#include <QAccessible>
#include <QPointer>
#include <QtTest>

#include <memory>

namespace {

struct Told
{
    QAccessible::Event type;
    const QObject* object;
    QAccessible::State changed;
    QVariant value;
    int child;
};

QList<Told> told;

bool isListening = true;

int Count(const QObject& object, QAccessible::Event type, bool isPressed = false, bool isChecked = false)
{
    int count = 0;
    for (const Told& entry : told) {
        const bool isAsked = !(isPressed && !entry.changed.pressed) && !(isChecked && !entry.changed.checked);
        count += entry.object == &object && entry.type == type && isAsked ? 1 : 0;
    }
    return count;
}

QAccessibleInterface* Of(QObject& object)
{
    return QAccessible::queryAccessibleInterface(&object);
}

const QString press = QAccessibleActionInterface::pressAction();
const QString toggle = QAccessibleActionInterface::toggleAction();

/// As applications derive from the widgets.
class OwnButton : public ZrBtn
{
    Q_OBJECT

public:
    using ZrBtn::ZrBtn;
};

} // namespace

// These take the place of Qt's functions for the calls of the library: no assistive technology runs in a
// test.

bool QAccessible::isActive()
{
    return isListening;
}

void QAccessible::updateAccessibility(QAccessibleEvent* event)
{
    Told entry{event->type(), event->object(), {}, {}, event->child()};
    if (event->type() == QAccessible::StateChanged)
        entry.changed = static_cast<QAccessibleStateChangeEvent*>(event)->changedStates();
    else if (event->type() == QAccessible::ValueChanged)
        entry.value = static_cast<QAccessibleValueChangeEvent*>(event)->value();
    else
        return;
    told += entry;
}

class tst_ZrCtrlAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void names_data();
    void names();
    void givenNamesGoFirst();
    void toolTipWithoutText();
    void derivedClasses();

    void button();
    void toggleButton();
    void buttonActions();
    void buttonDeletedInAction();
    void disabledButton();
    void colourButton();
    void focusAction();

    void check();
    void checkActions();

    void radio();
    void radioItems();
    void radioActions();
    void radioItemsComeAndGo();
    void radioPlaces();
    void radioFocus();

    void slider();
    void sliderActions();
    void progress();

    void buttonEvents();
    void changedTellsTheState();
    void checkEvents();
    void radioEvents();
    void valueEvents();
    void silentWithoutListeners();
    void goneWithTheWidget();

private:
    std::unique_ptr<QWidget> m_window;
};

void tst_ZrCtrlAccess::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 300);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    told.clear();
}

void tst_ZrCtrlAccess::cleanup()
{
    m_window.reset();
}

void tst_ZrCtrlAccess::names_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("role");
    QTest::newRow("button") << QStringLiteral("ZrBtn") << int(QAccessible::Button);
    QTest::newRow("check box") << QStringLiteral("ZrCheck") << int(QAccessible::CheckBox);
    QTest::newRow("slider") << QStringLiteral("ZrSlider") << int(QAccessible::Slider);
    QTest::newRow("progress") << QStringLiteral("ZrProgress") << int(QAccessible::ProgressBar);
    QTest::newRow("colour") << QStringLiteral("ZrColBtn") << int(QAccessible::Button);
}

void tst_ZrCtrlAccess::names()
{
    QFETCH(QString, kind);
    const auto named = [](auto* widget) {
        widget->text = QStringLiteral("Caption");
        return static_cast<QWidget*>(widget);
    };
    QWidget* widget = kind == QStringLiteral("ZrBtn") ? named(new ZrBtn(m_window.get(), ZrBtn::typeStd))
        : kind == QStringLiteral("ZrCheck")           ? named(new ZrCheck(m_window.get()))
        : kind == QStringLiteral("ZrSlider")          ? named(new ZrSlider(m_window.get()))
        : kind == QStringLiteral("ZrColBtn")          ? named(new ZrColBtn(m_window.get()))
                                                      : named(new ZrProgress(m_window.get()));
    QAccessibleInterface* access = Of(*widget);
    QVERIFY(access && access->isValid());
    QTEST(int(access->role()), "role");
    QCOMPARE(access->text(QAccessible::Name), QStringLiteral("Caption"));
    QCOMPARE(access->object(), widget);
    QVERIFY(access->state().invisible);
    widget->show();
    QVERIFY(!access->state().invisible);
    widget->setEnabled(false);
    QVERIFY(access->state().disabled);
}

void tst_ZrCtrlAccess::givenNamesGoFirst()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.text = QStringLiteral("OK");
    button.setAccessibleName(QStringLiteral("Accept the route"));
    button.setAccessibleDescription(QStringLiteral("Stores it"));
    QCOMPARE(Of(button)->text(QAccessible::Name), QStringLiteral("Accept the route"));
    QCOMPARE(Of(button)->text(QAccessible::Description), QStringLiteral("Stores it"));
}

void tst_ZrCtrlAccess::toolTipWithoutText()
{
    ZrBtn button(m_window.get(), ZrBtn::typeRound);
    button.setToolTip(QStringLiteral("Close"));
    QCOMPARE(Of(button)->text(QAccessible::Name), QStringLiteral("Close"));
}

void tst_ZrCtrlAccess::derivedClasses()
{
    OwnButton button(m_window.get(), ZrBtn::typeStd);
    button.text = QStringLiteral("Own");
    QCOMPARE(Of(button)->role(), QAccessible::Button);
    QCOMPARE(Of(button)->text(QAccessible::Name), QStringLiteral("Own"));
}

void tst_ZrCtrlAccess::button()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.resize(80, 60);
    button.on = true; // of no meaning yet
    QVERIFY(Of(button)->state().focusable);
    QVERIFY(!Of(button)->state().checkable);
    QVERIFY(!Of(button)->state().checked);
    QVERIFY(!Of(button)->state().pressed);
    button.PtrDown(QPoint(5, 5));
    QVERIFY(Of(button)->state().pressed);
    button.PtrUp();
    QVERIFY(!Of(button)->state().pressed);
    QVERIFY(Of(button)->text(QAccessible::Value).isEmpty());
    button.badge = 3;
    QCOMPARE(Of(button)->text(QAccessible::Value), QStringLiteral("3"));
}

void tst_ZrCtrlAccess::toggleButton()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.checkable = true;
    QVERIFY(Of(button)->state().checkable);
    QVERIFY(!Of(button)->state().checked);
    button.on = true;
    QVERIFY(Of(button)->state().checked);
    QCOMPARE(Of(button)->role(), QAccessible::Button);
}

void tst_ZrCtrlAccess::buttonActions()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.resize(80, 60);
    QStringList log;
    connect(&button, &ZrBtn::Pressed, [&log] { log += QStringLiteral("Pressed"); });
    connect(&button, &ZrBtn::Clicked, [&log] { log += QStringLiteral("Clicked"); });
    QAccessibleActionInterface* actions = Of(button)->actionInterface();
    QVERIFY(actions);
    QVERIFY(actions->actionNames().contains(press));
    QVERIFY(!actions->actionNames().contains(toggle));
    actions->doAction(press);
    QCOMPARE(log.join(u','), QStringLiteral("Pressed,Clicked"));
    QVERIFY(!button.down);
    button.checkable = true;
    QCOMPARE(actions->actionNames().first(), toggle);
    actions->doAction(toggle);
    QVERIFY(button.on);
    actions->doAction(QStringLiteral("no such action"));
    QCOMPARE(log.size(), 4);
}

void tst_ZrCtrlAccess::buttonDeletedInAction()
{
    QPointer<ZrBtn> button = new ZrBtn(m_window.get(), ZrBtn::typeStd);
    button->resize(80, 60);
    connect(button, &ZrBtn::Pressed, this, [&button] { delete button.data(); });
    Of(*button)->actionInterface()->doAction(press);
    QVERIFY(!button);
}

void tst_ZrCtrlAccess::disabledButton()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.resize(80, 60);
    button.checkable = true;
    button.setEnabled(false);
    QVERIFY(Of(button)->state().disabled);
    QVERIFY(Of(button)->actionInterface()->actionNames().isEmpty());
    Of(button)->actionInterface()->doAction(press);
    Of(button)->actionInterface()->doAction(toggle);
    QVERIFY(!button.on);
}

void tst_ZrCtrlAccess::colourButton()
{
    ZrColBtn button(m_window.get());
    QVERIFY(Of(button)->text(QAccessible::Value).isEmpty());
    QColor colour(1, 2, 3);
    button.colour = &colour;
    QCOMPARE(Of(button)->text(QAccessible::Value), QStringLiteral("#ff010203"));
    colour = QColor();
    QVERIFY(Of(button)->text(QAccessible::Value).isEmpty());
}

void tst_ZrCtrlAccess::focusAction()
{
    m_window->activateWindow();
    QTRY_VERIFY(m_window->isActiveWindow());
    ZrSlider slider(m_window.get());
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    slider.show();
    button.show();
    Of(button)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QVERIFY(button.hasFocus());
    QVERIFY(Of(button)->state().focused);
    Of(slider)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QVERIFY(slider.hasFocus());
}

void tst_ZrCtrlAccess::check()
{
    ZrCheck box(m_window.get());
    QVERIFY(Of(box)->state().checkable);
    QVERIFY(!Of(box)->state().checked);
    box.set(true);
    QVERIFY(Of(box)->state().checked);
    bool value = false;
    box.get = [&value] { return value; };
    QVERIFY(!Of(box)->state().checked);
    box.get = nullptr;
    QVERIFY(!Of(box)->state().checked);
}

void tst_ZrCtrlAccess::checkActions()
{
    ZrCheck box(m_window.get());
    QList<bool> log;
    connect(&box, &ZrCheck::Toggled, [&log](bool on) { log += on; });
    QAccessibleActionInterface* actions = Of(box)->actionInterface();
    QCOMPARE(actions->actionNames().first(), toggle);
    actions->doAction(toggle);
    actions->doAction(press);
    QCOMPARE(log, QList<bool>({true, false}));
    box.setEnabled(false);
    QVERIFY(actions->actionNames().isEmpty());
    actions->doAction(toggle);
    QCOMPARE(log.size(), 2);
}

void tst_ZrCtrlAccess::radio()
{
    ZrRadio list(m_window.get());
    list.setAccessibleName(QStringLiteral("Units"));
    QAccessibleInterface* access = Of(list);
    QCOMPARE(access->role(), QAccessible::Grouping);
    QCOMPARE(access->text(QAccessible::Name), QStringLiteral("Units"));
    QCOMPARE(access->childCount(), 0);
    QVERIFY(!access->child(0));
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    QCOMPARE(access->childCount(), 2);
    QVERIFY(!access->child(-1));
    QVERIFY(!access->child(2));
}

void tst_ZrCtrlAccess::radioItems()
{
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    list.show();
    QAccessibleInterface* access = Of(list);
    for (int i = 0; i < 2; ++i) {
        QAccessibleInterface* item = access->child(i);
        QVERIFY(item && item->isValid());
        QCOMPARE(access->child(i), item);
        QCOMPARE(item->role(), QAccessible::RadioButton);
        QCOMPARE(item->text(QAccessible::Name), list.items[i]);
        QVERIFY(item->text(QAccessible::Description).isEmpty());
        QCOMPARE(item->parent(), access);
        QCOMPARE(access->indexOfChild(item), i);
        QCOMPARE(item->childCount(), 0);
        QVERIFY(!item->child(0));
        QCOMPARE(item->indexOfChild(access), -1);
        QVERIFY(!item->object());
        QVERIFY(item->state().checkable);
        QVERIFY(!item->state().checked);
        QVERIFY(!item->state().invisible);
    }
    list.SetSel(1);
    QVERIFY(!access->child(0)->state().checked);
    QVERIFY(access->child(1)->state().checked);
    list.setEnabled(false);
    QVERIFY(access->child(0)->state().disabled);
    QCOMPARE(access->indexOfChild(access), -1);
    QCOMPARE(access->indexOfChild(nullptr), -1);
    ZrRadio other(m_window.get());
    other.items = list.items;
    QCOMPARE(access->indexOfChild(Of(other)->child(0)), -1);
}

void tst_ZrCtrlAccess::radioActions()
{
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    QList<int> log;
    connect(&list, &ZrRadio::SelChanged, [&log](int sel) { log += sel; });
    QAccessibleActionInterface* actions = Of(list)->child(1)->actionInterface();
    QVERIFY(actions);
    actions->doAction(toggle);
    actions->doAction(press);
    actions->doAction(QStringLiteral("no such action"));
    QCOMPARE(list.sel, 1);
    QCOMPARE(log, QList<int>({1}));
    QVERIFY(actions->keyBindingsForAction(press).isEmpty());
    list.setEnabled(false);
    QVERIFY(actions->actionNames().isEmpty());
    Of(list)->child(0)->actionInterface()->doAction(press);
    QCOMPARE(list.sel, 1);
}

void tst_ZrCtrlAccess::radioItemsComeAndGo()
{
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    QAccessibleInterface* access = Of(list);
    QAccessibleInterface* second = access->child(1);
    list.items.removeLast();
    QVERIFY(!second->isValid());
    QVERIFY(second->state().invalid);
    QVERIFY(second->text(QAccessible::Name).isEmpty());
    QVERIFY(second->rect().isNull());
    QVERIFY(second->actionInterface()->actionNames().isEmpty());
    QCOMPARE(access->indexOfChild(second), -1);
    list.items += QStringLiteral("Nautical");
    QVERIFY(second->isValid());
    QCOMPARE(second->text(QAccessible::Name), QStringLiteral("Nautical"));
}

void tst_ZrCtrlAccess::radioPlaces()
{
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    list.setGeometry(30, 40, 200, 100);
    list.show();
    QAccessibleInterface* access = Of(list);
    for (int i = 0; i < 2; ++i) {
        const QRect rect = access->child(i)->rect();
        QCOMPARE(rect.size(), list.ItemRect(i).size());
        QCOMPARE(rect.topLeft(), list.mapToGlobal(list.ItemRect(i).topLeft()));
        QCOMPARE(access->childAt(rect.center().x(), rect.center().y()), access->child(i));
    }
    const QPoint below = list.mapToGlobal(QPoint(5, 99));
    QVERIFY(!access->childAt(below.x(), below.y()));
    QVERIFY(!access->child(0)->childAt(0, 0));
}

void tst_ZrCtrlAccess::radioFocus()
{
    m_window->activateWindow();
    QTRY_VERIFY(m_window->isActiveWindow());
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    list.show();
    list.clearFocus();
    QVERIFY(!Of(list)->focusChild());
    list.setFocus();
    QCOMPARE(Of(list)->focusChild(), Of(list)->child(0));
    list.SetSel(1);
    QCOMPARE(Of(list)->focusChild(), Of(list)->child(1));
    QVERIFY(Of(list)->child(1)->state().focused);
    QVERIFY(!Of(list)->child(0)->state().focused);
}

void tst_ZrCtrlAccess::slider()
{
    ZrSlider slider(m_window.get());
    slider.SetRange(-20.0, 20.0);
    slider.SetStep(0.5);
    slider.places = 1;
    slider.unit = QStringLiteral("dB");
    QAccessibleValueInterface* value = Of(slider)->valueInterface();
    QVERIFY(value);
    QCOMPARE(value->minimumValue().toDouble(), -20.0);
    QCOMPARE(value->maximumValue().toDouble(), 20.0);
    QCOMPARE(value->minimumStepSize().toDouble(), 0.5);
    value->setCurrentValue(3.3);
    QCOMPARE(slider.Value(), 3.5);
    QCOMPARE(value->currentValue().toDouble(), 3.5);
    QCOMPARE(Of(slider)->text(QAccessible::Value), QStringLiteral("3.5 dB"));
    value->setCurrentValue(QStringLiteral("words"));
    QCOMPARE(slider.Value(), 3.5);
    value->setCurrentValue(std::nan(""));
    QCOMPARE(slider.Value(), 3.5);
    slider.setEnabled(false);
    value->setCurrentValue(0.0);
    QCOMPARE(slider.Value(), 3.5);
}

void tst_ZrCtrlAccess::sliderActions()
{
    ZrSlider slider(m_window.get());
    slider.SetValue(50.0);
    QAccessibleActionInterface* actions = Of(slider)->actionInterface();
    actions->doAction(QAccessibleActionInterface::increaseAction());
    QCOMPARE(slider.Value(), 51.0);
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    QCOMPARE(slider.Value(), 49.0);
    slider.setEnabled(false);
    actions->doAction(QAccessibleActionInterface::increaseAction());
    QCOMPARE(slider.Value(), 49.0);
    QVERIFY(actions->actionNames().isEmpty());
}

void tst_ZrCtrlAccess::progress()
{
    ZrProgress panel(m_window.get());
    QAccessibleValueInterface* value = Of(panel)->valueInterface();
    QVERIFY(value);
    panel.UpdateProgress(37);
    QCOMPARE(value->currentValue().toInt(), 37);
    QCOMPARE(value->minimumValue().toInt(), 0);
    QCOMPARE(value->maximumValue().toInt(), 100);
    QCOMPARE(value->minimumStepSize().toInt(), 1);
    QCOMPARE(Of(panel)->text(QAccessible::Value), QStringLiteral("37 %"));
    QCOMPARE(Of(panel)->text(QAccessible::Name), QStringLiteral("Progress..."));
    value->setCurrentValue(50);
    QCOMPARE(panel.percent, 37);
    QVERIFY(Of(panel)->state().readOnly);
    QVERIFY(!Of(panel)->state().focusable);
}

void tst_ZrCtrlAccess::buttonEvents()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.resize(80, 60);
    button.checkable = true;
    told.clear();
    button.PtrDown(QPoint(5, 5));
    QCOMPARE(Count(button, QAccessible::StateChanged, true), 1);
    QCOMPARE(Count(button, QAccessible::StateChanged, false, true), 1);
    button.PtrUp();
    QCOMPARE(Count(button, QAccessible::StateChanged, true), 2);
    QCOMPARE(Count(button, QAccessible::StateChanged, false, true), 1);
    told.clear();
    button.PtrMove(QPoint(5, 5));
    button.PtrUp();
    QCOMPARE(Count(button, QAccessible::StateChanged), 0);
}

void tst_ZrCtrlAccess::changedTellsTheState()
{
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.checkable = true;
    told.clear();
    button.Changed();
    QCOMPARE(Count(button, QAccessible::StateChanged, false, true), 0);
    button.on = true;
    button.Changed();
    button.Changed();
    QCOMPARE(Count(button, QAccessible::StateChanged, false, true), 1);
}

void tst_ZrCtrlAccess::checkEvents()
{
    ZrCheck box(m_window.get());
    told.clear();
    box.Toggle();
    QCOMPARE(Count(box, QAccessible::StateChanged, false, true), 1);
}

void tst_ZrCtrlAccess::radioEvents()
{
    ZrRadio list(m_window.get());
    list.items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    told.clear();
    list.Select(1);
    QCOMPARE(Count(list, QAccessible::StateChanged, false, true), 1);
    QCOMPARE(told.last().child, 1);
    list.SetSel(0);
    QCOMPARE(told.last().child, 0);
    list.SetSel(0);
    QCOMPARE(Count(list, QAccessible::StateChanged, false, true), 2);
    list.SetSel(-1);
    list.SetSel(500);
    QVERIFY(told.size() <= 4);
}

void tst_ZrCtrlAccess::valueEvents()
{
    ZrSlider slider(m_window.get());
    ZrProgress panel(m_window.get());
    told.clear();
    slider.SetValue(12.0);
    slider.SetValue(12.0);
    QCOMPARE(Count(slider, QAccessible::ValueChanged), 1);
    QCOMPARE(told.last().value.toDouble(), 12.0);
    panel.UpdateProgress(8);
    panel.UpdateProgress(8);
    QCOMPARE(Count(panel, QAccessible::ValueChanged), 1);
    QCOMPARE(told.last().value.toDouble(), 8.0);
}

void tst_ZrCtrlAccess::silentWithoutListeners()
{
    isListening = false;
    ZrBtn button(m_window.get(), ZrBtn::typeStd);
    button.resize(80, 60);
    button.checkable = true;
    told.clear();
    button.PtrDown(QPoint(5, 5));
    button.PtrUp();
    ZrSlider slider(m_window.get());
    slider.SetValue(12.0);
    isListening = true;
    QVERIFY(told.isEmpty());
}

void tst_ZrCtrlAccess::goneWithTheWidget()
{
    auto list = std::make_unique<ZrRadio>(m_window.get());
    list->items = QStringList({QStringLiteral("Metric"), QStringLiteral("Imperial")});
    QAccessibleInterface* access = Of(*list);
    const QAccessible::Id parent = QAccessible::uniqueId(access);
    const QAccessible::Id child = QAccessible::uniqueId(access->child(1));
    QVERIFY(QAccessible::accessibleInterface(child));
    list.reset();
    QVERIFY(!QAccessible::accessibleInterface(parent));
    QVERIFY(!QAccessible::accessibleInterface(child));
}

QTEST_MAIN(tst_ZrCtrlAccess)
#include "tst_ZrCtrlAccess.moc"
