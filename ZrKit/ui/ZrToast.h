#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QWidget>

#include <functional>

class QTimer;
class ZrBtn;

/// A strip at the lower edge of its parent that tells something for some seconds, and may offer to take it
/// back.
///
/// \code
/// toast->Show(tr("Waypoint 7 deleted"), tr("Undo"), [this] { m_history.Undo(); });
/// \endcode
///
/// One message at a time: a new one takes the place of the one shown, whose action is gone then. A tap on the
/// strip hides it. GUI thread only.
class ZR_KIT_EXPORT ZrToast : public QWidget
{
    Q_OBJECT

public:
    enum eKind : int
    {
        info = 0,
        warning = 1,
        error = 2
    };

    static constexpr int Milliseconds = 5000; ///< shown for so long; errors twice as long

    explicit ZrToast(QWidget* parent);

    /// Shows \p text; with \p action a button that calls \p run and hides the strip.
    void Show(const QString& text, const QString& action = QString(), const std::function<void()>& run = {});
    void Show(eKind kind, const QString& text);

    QString Text() const { return m_text; }

    eKind Kind() const { return m_kind; } ///< of the message shown last

    /// Keeps so many pixels at the lower and at the right edge of the parent free, of controls that are in
    /// use while it is shown; none at first.
    void SetFree(int below, int right = 0);

    /// Gives the keys to the button of the action: Space or Return calls it. False when there is none, or it
    /// has them already.
    bool FocusAction();

    /// What a message of one line covers above the free part, with the distances to both.
    static int Room();

    void Place(); ///< at the lower edge of the parent; after a change of its size or of the scale

Q_SIGNALS:
    void Shown(int kind, const QString& text); ///< an `eKind`

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void Start(eKind kind, const QString& text);
    QRect TextRect() const;

    QString m_text;
    eKind m_kind = info;
    int m_freeBelow = 0;
    int m_freeRight = 0;
    std::function<void()> m_run;
    ZrBtn* m_action;
    QTimer* m_timer;
};
