#pragma once

#include "ZrUtil/ZrExport.h"

#include <QColor>
#include <QFont>
#include <QLineEdit>
#include <QPointer>
#include <QString>
#include <QTextOption>

#include <vector>

class ZrInputDlg;

/// The one-line control through which a value is typed: a number, a text, a position, a length, a speed, a
/// temperature or a grid coordinate.
///
/// \code
/// auto* depth = new ZrInput(form);
/// depth->kind = ZrInput::kindShortLength;
/// depth->caption = tr("Depth limit");
/// depth->SetRange(0.0, 6000.0); // metres, whatever unit is shown
/// depth->SetValue(120.0);
/// connect(depth, &ZrInput::NewInput, this, [=] { plan->SetDepthLimit(depth->value); });
/// \endcode
///
/// The value is in SI units, degrees for positions, metres for the grid; the text is in the units and the
/// geographic style of `ZrUnits`. The value is what the text shown says: of 3.14159 shown with two
/// places 3.14 stays. What does not parse turns the control red and keeps the last accepted value.
///
/// A value outside the range is accepted when typed into the line, and refused by the keyboard on the screen,
/// which a press opens while `ZrTheme::tabletMode` is on. There is one keyboard at a time in a window.
///
/// Caption, range and error are the accessible name and description, unless the application sets its own.
///
/// `NewInput` comes while the line is still at work, as `textChanged` does: who deletes the control in a slot
/// does so by `deleteLater`. GUI thread only.
class ZR_UTIL_EXPORT ZrInput : public QLineEdit
{
    Q_OBJECT

public:
    /// Values of `kind`: how a text is read, and how a value is shown.
    enum eKind : int
    {
        kindInt = 0, ///< integer
        kindDouble = 1, ///< number, `places` decimals
        kindFloat = 2, ///< the same in single precision
        kindText = 3, ///< any text; has no value
        kindLat = 4, ///< latitude, degrees, in the geographic style
        kindLng = 5, ///< longitude, likewise
        kindTinyLength = 6, ///< metres, shown in the unit of tiny lengths
        kindShortLength = 7, ///< metres, shown in the unit of short lengths
        kindLongLength = 8, ///< metres, shown in the unit of long lengths
        kindSpeed = 9, ///< m/s, shown in the unit of speeds
        kindTemperature = 10, ///< °C, shown in the unit of temperatures
        kindEasting = 11, ///< metres, shown with two decimals in the unit of the grid
        kindNorthing = 12 ///< likewise
    };

    static constexpr int valid = 1; ///< the text is a value within the range
    static constexpr int error = 0; ///< the text is no value
    static constexpr int outOfRange = -1; ///< a value outside the range

    static std::vector<ZrInput*> s_inputs; ///< every control that lives, in the order of construction
    static QTextOption s_to; ///< how values are aligned where they are painted

    int kind = kindInt; ///< one of `eKind`; of any other number the stored text is shown and nothing parses
    QString text; ///< accepted last, and shown
    QString caption; ///< what the keyboard on the screen says above the text
    double value = 0.0; ///< accepted last
    double min = -1e100; ///< smallest value accepted, when `hasRange`
    double max = 1e100; ///< largest value accepted, when `hasRange`
    QColor textCol; ///< for painting; invalid: the theme's
    QColor backCol; ///< likewise
    QFont valueFont; ///< likewise
    int places = 2; ///< decimal places shown
    bool hasRange = false; ///< whether `min` and `max` count
    bool updating = false; ///< the control itself is setting its text: no `NewInput`

    explicit ZrInput(QWidget* parent);
    ~ZrInput() override;

    /// Reads \p text as a value: `valid`, `error` or `outOfRange`; ends of the range belong to it, a value
    /// that is not a number does not. \p out gets what was read in any case, 0 where nothing was; for free
    /// text alone it stays.
    int GetStrValue(QString text, double& out);

    int GetCurValue(double& out); ///< of the text in the line

    QString GetText(double v); ///< \p v as the control would show it

    void SetRange(double lo, double hi); ///< from now on the range counts

    void SetValue(double v); ///< shows \p v, without `NewInput`; ignored while `updating`

    void SetText(QString s); ///< shows \p s, without `NewInput`

    void SetValid(bool ok); ///< grey or red

    QString UnitText() const; ///< label of the unit that values are typed in; empty for plain numbers

    /// The range in the unit shown, "0.00 to 6000.00 m", its ends rounded so that both are accepted when
    /// typed. "at least", "at most" where one end is infinite or 1e99 and beyond; empty without a range.
    QString RangeText();

    /// Why \p s is refused, in words for the user: "a number is expected"; empty when it is not. For a value
    /// outside the range it is the range.
    QString RefusalText(const QString& s);

    QSize sizeHint() const override; ///< in tablet mode at least 44 pixels high: a finger hits it
    QSize minimumSizeHint() const override; ///< likewise

    /// Shows every control with a unit or a geographic style anew; after either changed.
    static void RecalcAllInputs();

Q_SIGNALS:
    void NewInput(); ///< the user has given a value

public Q_SLOTS:
    void OnTextChanged(const QString& s);
    void OnCommit(
        QString s); ///< takes \p s over when it is valid; with `NewInput`, twice when it is another text
    int OnValidate(QString s); ///< 1 when \p s is valid, else 0
    void OnNegate(QString& s); ///< the text of the opposite value; stays unless it is valid

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double Parse(const QString& s, bool& ok) const;
    QString BoundText(double bound, bool isUpper);
    void Show(const QString& s);
    void Describe();
    void OpenKeyboard();
    void CloseKeyboard();
    void PaintDisabled();
    void BuildKeys(ZrInputDlg& dlg) const;

    QPointer<ZrInputDlg> m_dlg; ///< the keyboard opened last; one at most
    QString m_saidName; ///< accessible texts that the control itself has set
    QString m_saidDescription;
    bool m_isError = false; ///< the text shown is no value
};
