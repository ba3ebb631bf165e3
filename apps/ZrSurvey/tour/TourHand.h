#pragma once

#include "apps/ZrSurvey/tour/TourFailure.h"

#include <QPoint>
#include <QVector>
#include <QWidget>

#include <functional>
#include <memory>

class QTouchDevice;
class SurveyView;
class ZrBtn;
class ZrFilePanel;
class ZrInput;
class ZrTouchList;
class ZrValueTile;

/// What a person at the window has: eyes that find a control which is shown, fingers, a mouse and keys.
///
/// Events go to the window, which hands them to what lies under the point: a control that is covered, hidden
/// or disabled is a failure. So is a wait that takes too long. Points are those of the widget named beside
/// them. GUI thread only.
class TourHand
{
public:
    static constexpr int Patience = 10000; ///< milliseconds that a wait takes at most

    explicit TourHand(SurveyView& view);
    ~TourHand();

    SurveyView& View() const { return m_view; }

    /// \name Eyes
    /// @{
    /// \returns whether it became so in time
    bool Wait(const std::function<bool()>& isSo, int milliseconds = Patience) const;
    /// Throws `TourFailure` when it did not.
    void Await(const QString& what, const std::function<bool()>& isSo, int milliseconds = Patience) const;
    void Settle() const; ///< until nothing waits to be done

    /// The one that is shown. \p in is a widget to look in; the whole window without it.
    template <class T> T& Find(const QString& objectName, const QWidget* in = nullptr) const
    {
        return static_cast<T&>(
            FindIf(QStringLiteral("\"%1\"").arg(objectName), in, [&objectName](const QWidget& widget) {
                return qobject_cast<const T*>(&widget) && widget.objectName() == objectName;
            }));
    }

    /// Likewise, the only one of its class.
    template <class T> T& FindAny(const QWidget* in = nullptr) const
    {
        return static_cast<T&>(FindIf(QString::fromLatin1(T::staticMetaObject.className()), in,
            [](const QWidget& widget) { return qobject_cast<const T*>(&widget) != nullptr; }));
    }

    ZrBtn& Button(const QString& text, const QWidget* in = nullptr) const; ///< by what stands on it
    ZrInput& Field(const QString& caption, const QWidget* in = nullptr) const;
    ZrValueTile& Tile(const QString& caption, const QWidget* in = nullptr) const;
    bool Sees(const QString& objectName) const; ///< whether such a widget is shown
    /// @}

    /// \name Hands
    /// @{
    void Tap(QWidget& widget); ///< in its middle, with the mouse
    void TapAt(QWidget& widget, const QPoint& at);
    void Press(const QString& objectName); ///< `Tap` of a button
    void Drag(QWidget& widget, const QPoint& from, const QPoint& to); ///< in steps that a screen shows
    void TouchAt(QWidget& widget, const QPoint& at); ///< a finger comes and goes
    void TouchDrag(QWidget& widget, const QPoint& from, const QPoint& to);
    void Wheel(QWidget& widget, int notches); ///< up is positive
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Type(const QString& text);
    void Fill(ZrInput& field, const QString& text); ///< taps it and types in place of what is there

    void ChooseRow(ZrTouchList& list, const QString& title); ///< scrolls to it and taps it
    void GoToFolder(ZrFilePanel& panel, const QString& folder);
    void SaveAs(const QString& folder, const QString& name); ///< in the file panel that is open
    void OpenFile(const QString& path); ///< likewise
    void OpenForm(const QString& name); ///< of the settings, by its tab
    void CloseForms();
    void HideToast();
    /// @}

private:
    QWidget& FindIf(
        const QString& what, const QWidget* in, const std::function<bool(const QWidget& widget)>& isIt) const;
    bool IsUnder(const QWidget& widget, const QPoint& at) const;
    void Reach(QWidget& widget, const QPoint& at); ///< so that it lies under the point
    void Strike(int key, Qt::KeyboardModifiers modifiers, const QString& text);
    void Mouse(int type, QWidget& widget, const QPointF& at, bool isDown);
    void Touch(int state, QWidget& widget, const QPointF& at);

    SurveyView& m_view;
    std::unique_ptr<QTouchDevice> m_device;
    QPointF m_finger; ///< where it was last, screen
    QPointF m_fingerStart;
};
