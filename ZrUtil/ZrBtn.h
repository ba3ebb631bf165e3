#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QFont>
#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QWidget>

class QTouchEvent;
struct ZrCtrlLook;

/// A push or toggle button for fingers, mouse and keys.
///
/// \code
/// auto* record = new ZrBtn(parent, ZrBtn::typeAccent);
/// record->text = tr("Record");
/// record->checkable = true;
/// record->link = &recording; // follows `on`
/// connect(record, &ZrBtn::Toggled, recorder, &Recorder::SetRunning);
/// \endcode
///
/// A press acts at once: `Toggled` (checkable), `Selected` (with an `id`), `Pressed`. A release inside gives
/// `Released` and `Clicked`; of a mouse outside neither. The members may be set at any time; call `update`
/// after, `resizeEvent` places icon and text anew when either changes. `Changed` does both.
///
/// Icons are alpha masks, painted in the colour of the text. Space and Return press the button while it has
/// the focus, which the Tab key alone gives it. A press ends without a signal when the button is hidden or
/// disabled, or a modal dialog opens. Deleting the button from a slot is allowed. GUI thread only.
class ZR_UTIL_EXPORT ZrBtn : public QWidget
{
    Q_OBJECT

public:
    /// How a button looks.
    enum eType : int
    {
        typeStd = 0, ///< framed; icon left of the text
        typeTool = 1, ///< no frame until touched or on; icon above the text
        typeRound = 2, ///< a disc with an icon
        typeAccent = 3 ///< framed and filled: the one action that a page is about
    };

    QRectF imgRect; ///< where the icon goes, set by `resizeEvent`
    QRectF textRect; ///< where the text goes, likewise
    QImage img; ///< icon; may be null
    QImage imgOn; ///< icon while `on`; null: `img`
    QString text;
    u32 hover = 0; ///< 0 normal, 1 hovered, 2 pressed
    bool down = false; ///< a press began inside and has not ended
    eType type;
    QFont font; ///< of the text; follows the controls' font of the theme until another one is set
    i32 lines = 1; ///< of text, at most; a longer one ends in an ellipsis
    bool checkable = false; ///< every press inverts `on`
    bool on = false; ///< the toggle state
    bool* link = nullptr; ///< mirrors `on`; may be null
    i32 id = -1; ///< told by `Selected` and `Released`; -1 for none
    i32 badge = 0; ///< a number in the corner, 0 for none

    ZrBtn(QWidget* parent, eType look);

    void PtrDown(const QPoint& p); ///< a pointer goes down at \p p, widget coordinates
    void PtrMove(const QPoint& p); ///< it moves
    void PtrUp(); ///< it goes up, wherever it is

    /// Places icon and text anew and repaints; after a change of the members.
    void Changed();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override; ///< at least 44 pixels either way: a finger hits it

    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

Q_SIGNALS:
    void Clicked();
    void Pressed();
    void Released(int id);
    void Selected(int id);
    void Toggled(bool on);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    virtual QRectF ContentRect() const; ///< where icon and text may go

private:
    void SetHover(u32 state);
    bool EmitReleased();
    void Clear();
    void Forget();
    bool TouchEvent(QTouchEvent& event);
    void FollowTheme();
    void PlaceContent();
    QStringList ShownLines() const;
    void PaintContent(QPainter& painter, const ZrCtrlLook& look);
    void PaintBadge(QPainter& painter);

    bool m_isKeyDown = false; ///< the press is that of a key
    QFont m_themeFont; ///< what `font` was last taken from
    bool m_toldOn = false; ///< the state that assistive technologies know
    bool m_showsFocus = false; ///< keys are in use
};
