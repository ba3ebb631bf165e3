#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrForm.h"

#include <QPointer>
#include <QVector>

class QScrollArea;

/// A settings form made of rows: a caption, what it is about, and the controls, beside or below. It scrolls
/// where it is too long for its panel, by a finger beside the controls, the wheel, and the keys.
///
/// \code
/// class RadioForm : public ZrRowForm
/// {
///     explicit RadioForm(QWidget* parent) : ZrRowForm(parent)
///     {
///         m_name = tr("Radio");
///         m_power = new ZrSlider(Body());
///         AddRow(tr("Power"), tr("Less of it lasts longer."), {m_power}, below);
///     }
///     void ShowValues() override { m_power->SetValue(Radio().Power()); }
/// };
/// \endcode
///
/// Sizes follow the theme: call `Restyle` when its scale, fonts or colours have changed. GUI thread only.
class ZR_KIT_EXPORT ZrRowForm : public ZrForm
{
    Q_OBJECT

public:
    /// Where the controls of a row are.
    enum ePlace : int
    {
        beside = 0, ///< in the column at the right
        below = 1 ///< over the whole width
    };

    static constexpr float ColumnWidth = 300.0F; ///< design pixels, of the controls beside

    explicit ZrRowForm(QWidget* parent);

    QWidget* Body() const; ///< the parent of the controls

    /// Adds a row and returns its number. Controls without an accessible name get the caption; an input
    /// without a caption gets it too.
    /// \param controls children of `Body`, all of one size; may be empty
    /// \param columns so many beside one another; 0 for all in one line
    int AddRow(const QString& title, const QString& help, const QVector<QWidget*>& controls, ePlace place,
        int columns = 0);

    int RowCount() const { return m_rows.size(); }

    void ShowRow(int row, bool isShown);
    bool IsRowShown(int row) const; ///< false also for a row that is none
    void SetHelp(int row, const QString& help);
    QString Help(int row) const;

    /// The unit of the row's input, shown in its right end, and behind its title where that is its caption:
    /// "MB"; empty for none.
    void SetUnit(int row, const QString& unit);
    QString Unit(int row) const;

    /// Says in place of the help text, in the colour of errors, what is wrong; empty for nothing.
    void SetProblem(int row, const QString& problem);
    QString Problem(int row) const;

    QRect TextRect(int row) const; ///< of caption and help, coordinates of `Body`; empty while not shown

    void Restyle();

protected:
    virtual void ShowValues(); ///< the form appears: puts the values of the moment into the controls

    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    class Panel;
    class UnitSign;

    struct Row
    {
        QString title;
        QString help;
        QString problem;
        QVector<QWidget*> controls;
        QPointer<UnitSign> unit; ///< of an input; null for none
        ePlace place;
        int columns;
        bool isShown = true;
        QRect text; ///< set by `Place`
        int line = 0; ///< y of the line below
    };

    void Place();
    int PlaceRow(Row& row, int y, int width);
    void PlaceControls(const Row& row, const QRect& area, int side) const;
    void PaintRows(QPainter& painter) const;
    static int ControlHeight(const Row& row);
    static QString Said(const Row& row);
    static int MarkWidth(const Row& row);

    QVector<Row> m_rows;
    QScrollArea* m_scroll;
    Panel* m_panel;
};
