#include "apps/ZrSurvey/tour/TourHand.h"

#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <QTouchDevice>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>

namespace {

constexpr int lookMs = 5; ///< between two looks at what is waited for
constexpr int settleMs = 3000;
constexpr int dragSteps = 6;
constexpr int mostNotches = 400; ///< of the wheel, to reach a row or a control

QString NameOf(const QWidget& widget)
{
    QString name = QString::fromLatin1(widget.metaObject()->className());
    for (const QString& more : {widget.objectName(), widget.accessibleName()}) {
        if (!more.isEmpty())
            name += QStringLiteral(" \"%1\"").arg(more);
    }
    return name;
}

} // namespace

TourHand::TourHand(SurveyView& view)
    : m_view(view)
    , m_device(std::make_unique<QTouchDevice>())
{
    m_device->setType(QTouchDevice::TouchScreen);
    m_device->setName(QStringLiteral("tour"));
    m_device->setCapabilities(QTouchDevice::Position);
}

TourHand::~TourHand() = default;

// -- Eyes

bool TourHand::Wait(const std::function<bool()>& isSo, int milliseconds) const
{
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isSo() || clock.elapsed() > milliseconds)
            loop.quit();
    });
    look.start(lookMs);
    if (!isSo())
        loop.exec();
    return isSo();
}

void TourHand::Await(const QString& what, const std::function<bool()>& isSo, int milliseconds) const
{
    if (!Wait(isSo, milliseconds))
        throw TourFailure{what, QStringLiteral("not so after %1 s").arg(milliseconds / 1000.0)};
}

void TourHand::Settle() const
{
    bool isIdle = false;
    const auto connection = QObject::connect(QAbstractEventDispatcher::instance(),
        &QAbstractEventDispatcher::aboutToBlock, &m_view, [&isIdle] { isIdle = true; });
    Wait([&isIdle] { return isIdle; }, settleMs);
    QObject::disconnect(connection);
}

QWidget& TourHand::FindIf(
    const QString& what, const QWidget* in, const std::function<bool(const QWidget& widget)>& isIt) const
{
    QWidget* found = nullptr;
    const QWidget* from = in ? in : &m_view;
    const auto look = [&] {
        const auto widgets = from->findChildren<QWidget*>();
        for (QWidget* widget : widgets) {
            if (widget->isVisible() && isIt(*widget))
                found = widget;
            if (found)
                return true;
        }
        return false;
    };
    const QString where = in ? QStringLiteral(" in %1").arg(NameOf(*in)) : QString();
    Await(QStringLiteral("%1 is shown%2").arg(what, where), look);
    return *found;
}

ZrBtn& TourHand::Button(const QString& text, const QWidget* in) const
{
    return static_cast<ZrBtn&>(
        FindIf(QStringLiteral("the button \"%1\"").arg(text), in, [&text](const QWidget& widget) {
            const auto* button = qobject_cast<const ZrBtn*>(&widget);
            return button && button->text == text;
        }));
}

ZrInput& TourHand::Field(const QString& caption, const QWidget* in) const
{
    return static_cast<ZrInput&>(
        FindIf(QStringLiteral("the field \"%1\"").arg(caption), in, [&caption](const QWidget& widget) {
            const auto* field = qobject_cast<const ZrInput*>(&widget);
            return field && field->caption == caption;
        }));
}

ZrValueTile& TourHand::Tile(const QString& caption, const QWidget* in) const
{
    return static_cast<ZrValueTile&>(
        FindIf(QStringLiteral("the value \"%1\"").arg(caption), in, [&caption](const QWidget& widget) {
            const QString name = widget.accessibleName() + QLatin1Char(' ');
            return qobject_cast<const ZrValueTile*>(&widget) && name.startsWith(caption + QLatin1Char(' '));
        }));
}

bool TourHand::Sees(const QString& objectName) const
{
    const auto widgets = m_view.findChildren<QWidget*>(objectName);
    return std::any_of(widgets.begin(), widgets.end(), [](const QWidget* each) { return each->isVisible(); });
}

// -- Hands

bool TourHand::IsUnder(const QWidget& widget, const QPoint& at) const
{
    const QPoint place = widget.mapTo(&m_view, at);
    const QWidget* hit = m_view.childAt(place);
    return hit == &widget || (hit && widget.isAncestorOf(hit)) || (!hit && &widget == &m_view);
}

void TourHand::HideToast()
{
    for (ZrToast* toast : m_view.findChildren<ZrToast*>()) {
        if (toast->isVisible())
            TapAt(*toast, QPoint(toast->height() / 4, toast->height() / 2));
    }
}

void TourHand::Reach(QWidget& widget, const QPoint& at)
{
    Await(QStringLiteral("%1 is shown and enabled").arg(NameOf(widget)),
        [&widget] { return widget.isVisible() && widget.isEnabled(); });
    Settle();
    if (IsUnder(widget, at))
        return;
    // A message lies over it.
    if (!qobject_cast<ZrToast*>(&widget))
        HideToast();
    // A form shows a part of itself: its wheel shows the others.
    ZrForm* form = nullptr;
    for (QWidget* each = &widget; each && !form; each = each->parentWidget())
        form = qobject_cast<ZrForm*>(each);
    for (int i = 0; form && i < mostNotches && !IsUnder(widget, at); ++i) {
        const int y = widget.mapTo(form, at).y();
        Wheel(*form, y < form->height() / 2 ? 1 : -1);
    }
    if (IsUnder(widget, at))
        return;
    const QWidget* hit = m_view.childAt(widget.mapTo(&m_view, at));
    throw TourFailure{QStringLiteral("%1 can be reached").arg(NameOf(widget)),
        hit ? QStringLiteral("%1 lies over it").arg(NameOf(*hit))
            : QStringLiteral("it is outside of the window")};
}

void TourHand::Mouse(int type, QWidget& widget, const QPointF& at, bool isDown)
{
    const QPointF place = widget.mapTo(&m_view, at.toPoint());
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(static_cast<QEvent::Type>(type), place, place, m_view.mapToGlobal(place.toPoint()),
        button, isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.windowHandle(), &event);
}

void TourHand::TapAt(QWidget& widget, const QPoint& at)
{
    Reach(widget, at);
    const QPointer<QWidget> self(&widget);
    Mouse(QEvent::MouseMove, widget, at, false);
    Mouse(QEvent::MouseButtonPress, widget, at, true);
    if (self)
        Mouse(QEvent::MouseButtonRelease, widget, at, false);
    Settle();
}

void TourHand::Tap(QWidget& widget)
{
    TapAt(widget, widget.rect().center());
}

void TourHand::Press(const QString& objectName)
{
    Tap(Find<ZrBtn>(objectName));
}

void TourHand::Drag(QWidget& widget, const QPoint& from, const QPoint& to)
{
    Reach(widget, from);
    Mouse(QEvent::MouseMove, widget, from, false);
    Mouse(QEvent::MouseButtonPress, widget, from, true);
    for (int i = 1; i <= dragSteps; ++i) {
        Mouse(QEvent::MouseMove, widget, QPointF(from) + QPointF(to - from) * i / dragSteps, true);
        Settle();
    }
    Mouse(QEvent::MouseButtonRelease, widget, to, false);
    Settle();
}

void TourHand::Touch(int state, QWidget& widget, const QPointF& at)
{
    const QPointF screen = widget.mapToGlobal(at.toPoint());
    if (state == Qt::TouchPointPressed)
        m_finger = m_fingerStart = screen;
    QTouchEvent::TouchPoint point(1);
    point.setState(static_cast<Qt::TouchPointState>(state));
    point.setScreenPos(screen);
    point.setStartScreenPos(m_fingerStart);
    point.setLastScreenPos(m_finger);
    point.setPressure(state == Qt::TouchPointReleased ? 0.0 : 1.0);
    m_finger = screen;
    const QEvent::Type type = state == Qt::TouchPointPressed ? QEvent::TouchBegin
        : state == Qt::TouchPointReleased                    ? QEvent::TouchEnd
                                                             : QEvent::TouchUpdate;
    QTouchEvent event(
        type, m_device.get(), Qt::NoModifier, static_cast<Qt::TouchPointStates>(state), {point});
    event.setWindow(m_view.windowHandle());
    QCoreApplication::sendEvent(m_view.windowHandle(), &event);
}

void TourHand::TouchAt(QWidget& widget, const QPoint& at)
{
    Reach(widget, at);
    Touch(Qt::TouchPointPressed, widget, at);
    Touch(Qt::TouchPointReleased, widget, at);
    Settle();
}

void TourHand::TouchDrag(QWidget& widget, const QPoint& from, const QPoint& to)
{
    Reach(widget, from);
    Touch(Qt::TouchPointPressed, widget, from);
    for (int i = 1; i <= dragSteps; ++i) {
        Touch(Qt::TouchPointMoved, widget, QPointF(from) + QPointF(to - from) * i / dragSteps);
        Settle();
    }
    Touch(Qt::TouchPointReleased, widget, to);
    Settle();
}

void TourHand::Wheel(QWidget& widget, int notches)
{
    constexpr int notch = 120;
    const QPointF place = widget.mapTo(&m_view, widget.rect().center());
    QWheelEvent event(place, m_view.mapToGlobal(place.toPoint()), QPoint(), QPoint(0, notches * notch),
        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_view.windowHandle(), &event);
    Settle();
}

void TourHand::Strike(int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(m_view.windowHandle(), &event);
    }
}

void TourHand::Key(int key, Qt::KeyboardModifiers modifiers)
{
    Strike(key, modifiers, QString());
    Settle();
}

void TourHand::Type(const QString& text)
{
    for (const QChar character : text)
        Strike(character.toUpper().unicode(), character.isUpper() ? Qt::ShiftModifier : Qt::NoModifier,
            character);
    Settle();
}

void TourHand::Fill(ZrInput& field, const QString& text)
{
    Tap(field);
    Await(QStringLiteral("the field \"%1\" takes keys").arg(field.caption), [&field] {
        const QWidget* focus = field.window()->focusWidget();
        return focus == &field;
    });
    Key(Qt::Key_A, Qt::ControlModifier);
    Type(text);
    const QString typed = static_cast<const QLineEdit&>(field).text();
    if (typed != text)
        throw TourFailure{QStringLiteral("\"%1\" in the field \"%2\"").arg(text, field.caption),
            QStringLiteral("\"%1\"").arg(typed)};
}

void TourHand::ChooseRow(ZrTouchList& list, const QString& title)
{
    int row = -1;
    const auto look = [&] {
        const QVector<ZrListItem>& items = list.Items();
        for (row = 0; row < items.size(); ++row) {
            if (items[row].title == title)
                return true;
        }
        return false;
    };
    Await(QStringLiteral("a row \"%1\"").arg(title), look);
    QWidget& viewport = *list.viewport();
    const auto where = [&] { return list.visualRect(list.model()->index(row, 0)).center(); };
    for (int i = 0; i < mostNotches && !viewport.rect().contains(where()); ++i)
        Wheel(viewport, where().y() < 0 ? 1 : -1);
    // Lists that follow a folder may change while one looks.
    QPoint at;
    do {
        look();
        at = where();
        Reach(viewport, at);
        look();
    } while (at != where());
    TapAt(viewport, at);
}

void TourHand::GoToFolder(ZrFilePanel& panel, const QString& folder)
{
    const QString wanted = QDir(folder).absolutePath();
    const auto await_list = [this, &panel] {
        Await(QStringLiteral("the folder is read"), [&panel] { return !panel.IsReading(); });
    };
    const auto isAbove = [&panel, &wanted] {
        const QString now = panel.Folder();
        return wanted == now
            || wanted.startsWith(now.endsWith(QLatin1Char('/')) ? now : now + QLatin1Char('/'));
    };
    // Folders that are not listed are typed elsewhere: the panel begins in them.
    if (wanted.contains(QLatin1String("/."))) {
        panel.SetFolder(wanted);
        await_list();
        return;
    }
    auto& up = static_cast<ZrBtn&>(
        FindIf(QStringLiteral("the button to the folder above"), &panel, [](const QWidget& widget) {
            return qobject_cast<const ZrBtn*>(&widget) && widget.objectName() == QLatin1String("up");
        }));
    while (!isAbove())
        Tap(up);
    auto& list = Find<ZrTouchList>(QStringLiteral("files"), &panel);
    while (panel.Folder() != wanted) {
        const QString now = panel.Folder();
        const QString rest = wanted.mid(now.endsWith(QLatin1Char('/')) ? now.size() : now.size() + 1);
        ChooseRow(list, rest.section(QLatin1Char('/'), 0, 0));
        if (panel.Folder() == now)
            throw TourFailure{QStringLiteral("the folder %1").arg(wanted), now};
    }
    await_list();
}

void TourHand::SaveAs(const QString& folder, const QString& name)
{
    auto& panel = FindAny<ZrFilePanel>();
    GoToFolder(panel, folder);
    Fill(Field(QStringLiteral("File name"), &panel), name);
    Tap(Button(QStringLiteral("Save"), &panel));
    Await(QStringLiteral("the file panel closes"), [&panel] { return !panel.isVisible(); });
}

void TourHand::OpenFile(const QString& path)
{
    auto& panel = FindAny<ZrFilePanel>();
    GoToFolder(panel, QFileInfo(path).absolutePath());
    ChooseRow(Find<ZrTouchList>(QStringLiteral("files"), &panel), QFileInfo(path).fileName());
    Await(QStringLiteral("the file panel closes"), [&panel] { return !panel.isVisible(); });
}

void TourHand::OpenForm(const QString& name)
{
    ZrFormMgr& forms = m_view.forms();
    if (!forms.isVisible())
        Press(QStringLiteral("band_settings"));
    Await(QStringLiteral("the settings are shown"), [&forms] { return forms.isVisible(); });
    Settle();
    for (const ZrForm* form : qAsConst(forms.m_forms)) {
        if (form->m_name == name && !form->m_isTiered)
            TapAt(forms, form->m_tab.center());
    }
    if (!forms.m_form || forms.m_form->m_name != name)
        throw TourFailure{QStringLiteral("the form \"%1\"").arg(name),
            forms.m_form ? forms.m_form->m_name : QStringLiteral("none")};
}

void TourHand::CloseForms()
{
    ZrFormMgr& forms = m_view.forms();
    // The button that has opened them closes them as well, where they do not lie over it.
    Key(Qt::Key_Escape);
    Await(QStringLiteral("the settings are closed"), [&forms] { return !forms.isVisible(); });
}
