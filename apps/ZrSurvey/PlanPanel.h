#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class ZrBtn;
class ZrInput;
class SurveyView;

/// What stands beside the map of the page "Plan": fields in two columns below one another, each with its
/// caption, and what derived panels put below them.
class PlanPanel : public QWidget
{
    Q_OBJECT

public:
    explicit PlanPanel(SurveyView& view, QWidget* parent);

    virtual void Restyle(); ///< after a change of colours, scale or units

protected:
    /// A field whose value goes to \p apply when the user has given it.
    ZrInput* AddField(const QString& caption, int kind, const std::function<void(double)>& apply);
    ZrBtn* AddButton(
        const QString& icon, const QString& text, const QString& hint, const std::function<void()>& run);

    virtual void Place() = 0; ///< puts everything into the panel

    /// Puts fields, two in a row unless \p isWide, below \p y; where they end.
    int PlaceFields(const QVector<QWidget*>& fields, int y, bool isWide = false);
    int PlaceRow(const QVector<ZrBtn*>& buttons, int y, float height); ///< side by side; where they end

    int Gap() const;

    int Margin() const { return 2 * Gap(); }

    SurveyView& View() const { return m_view; }

    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    SurveyView& m_view;
};
