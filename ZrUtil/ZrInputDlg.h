#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrInputItem.h"

#include <QFont>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <vector>

class QInputMethodEvent;
class QPainter;
class QTouchEvent;
class ZrInput;

/// The keyboard on the screen: a strip with the text being edited, and keys that suit the kind of value.
///
/// `ZrInput` opens one at a press in tablet mode. The first key replaces the text; moving the cursor first
/// keeps it. After every change the control is asked through `Validate`; OK is refused until it answers 1,
/// and the strip says why.
///
/// Keys act when they are touched, OK and Cancel when they are let go; every finger has its own key, so that
/// fast typing with two loses nothing. Delete and the cursor keys repeat. A keyboard of hardware types too:
/// Escape cancels, Return is OK; where a value is typed a decimal comma counts as the point, and prime,
/// apostrophe and minus signs of other keyboards as those that values are written with. An input method
/// composes in the strip.
///
/// The cursor counts UTF-16 units, and stops only between what the user sees as characters. Sizes follow the
/// theme as it is when a layout is built, but no key is smaller than 44 pixels unless `FitInto` makes it so.
///
/// Slots may delete the dialog. GUI thread only.
class ZR_UTIL_EXPORT ZrInputDlg : public QWidget
{
    Q_OBJECT

public:
    QString caption; ///< what is being typed
    QString text; ///< the text being edited
    int state = 1; ///< the last answer of `Validate`
    int dlgWidth = 0; ///< real pixels, decided by the layout
    int dlgHeight = 0; ///< likewise
    int cursor = 0; ///< position in `text`, characters

    /// Keyboards that would stick out of their window are moved into it, and made smaller when the window
    /// is too small. Off at first: they stand in the middle of the screen, which suits windows that fill it.
    static bool s_keepInside;

    explicit ZrInputDlg(QWidget* parent = nullptr);

    void BuildInt(); ///< digits and the minus sign
    void BuildFloat(); ///< these and the decimal point, for plain numbers the exponent sign
    void BuildGeo(); ///< digits, point, space, degree, minute and second marks, hemispheres
    void BuildQwerty(); ///< letters with capitals, digits, a page of symbols: all of ASCII
    void BuildStd(); ///< what every layout has: cursor, delete, negate, OK, Cancel

    int Bx(int column) const; ///< left edge of a column of keys, real pixels
    int By(int row) const; ///< upper edge of a row of keys

    /// Makes the layout that was built last smaller, as much as it takes to fit into \p room, but never
    /// below a tenth.
    void FitInto(const QSize& room);

    const std::vector<ZrInputItem>& Items() const { return m_items; }

    /// What stands on \p item now; empty where a picture does.
    QString Label(const ZrInputItem& item) const;

    /// Whom to ask for unit, range and the reason of a refusal; may be null. Before a layout is built: it
    /// leaves out what the control's kind has no use for.
    void SetControl(ZrInput* control);

    /// Shows the dialog at \p place, coordinates of the parent, with the cursor behind the text.
    void Open(const QRect& place);

    int IsValid(); ///< asks `Validate`

    /// Why the text is refused: "Range Error" or "Error", a dash and the reason; empty while it is not.
    QString Refusal() const;

    /// Paints the strip: caption and error at the top, the text with cursor and unit, the range or the
    /// reason of the error below.
    void DrawDisplay(QPainter& painter, QRect rect);

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    void Negate(QString& text); ///< the receiver writes the opposite value
    void Commit(QString text);
    int Validate(QString text); ///< the receiver answers 1 when it would take the text
    void Cancelled();

public Q_SLOTS:
    void OnOk();
    void OnCancel();
    void OnNeg();
    void OnStart();
    void OnEnd();
    void OnLeft();
    void OnRight();
    void OnKey(QChar c);
    void OnDelete();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    /// A finger, or the mouse, that holds a key.
    struct Finger
    {
        int id = 0;
        int item = 0;
        bool isOver = true; ///< still on its key
    };

    using Builder = void (ZrInputDlg::*)();

    void Begin(Builder builder, int columns, int rows);
    QRect Cell(int column, int row, int columns) const;
    void AddKeys(int column, int row, const QString& characters);
    void AddKey(int column, int row, int columns, QChar character, const QString& label);
    void AddAction(
        int column, int row, int columns, eZriAction action, const QString& label, const QString& img);
    void AddDigits(bool hasPoint);
    void AddEditKeys(int column, int negateColumns);
    void AddClosingKeys(int row, int cancelColumns, int okColumn);
    int Px(float design) const;

    int ItemAt(const QPoint& p) const;
    void PointerDown(int id, const QPoint& p);
    void PointerMove(int id, const QPoint& p);
    void PointerUp(int id, const QPoint& p);
    void ReleaseAll();
    void HandleTouch(QTouchEvent& event);
    bool IsHeld(int item) const;
    bool IsTypingKey(const QKeyEvent& event) const;
    QString AsTyped(const QString& s) const;
    void Paste();
    void Perform(ZrInputItem item);
    void Repeat();
    void Insert(const QString& s);
    void RemoveBefore();
    void Changed();
    void Describe();
    void MoveCursor(int position);
    int Boundary(bool next) const;
    QRect Inside(QRect place) const;

    QFont Sized(float design) const;
    QRect DisplayRect() const;
    QString Range() const;
    bool IsRangeError() const;
    void PaintHead(QPainter& painter, const QRect& rect);
    void PaintField(QPainter& painter, const QRect& rect);
    void PaintText(QPainter& painter, const QRect& line);
    void PaintFoot(QPainter& painter, const QRect& rect);
    void PaintItem(QPainter& painter, int i);

    std::vector<ZrInputItem> m_items;
    std::vector<Finger> m_fingers;
    QPointer<ZrInput> m_control;
    QTimer m_repeat; ///< of a key that is held down
    QString m_preedit; ///< what an input method is composing
    Builder m_builder = nullptr; ///< of the layout shown
    float m_fit = 1.0F; ///< how much smaller the window makes the layout
    float m_unit = 1.0F; ///< real pixels for each design pixel
    int m_repeatFinger = 0;
    int m_hot = -1; ///< the key under the mouse
    bool m_isFresh = false; ///< the next character replaces the text
    bool m_caps = false;
    bool m_symbols = false;
};
