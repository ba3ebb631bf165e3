#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QPointer>
#include <QString>
#include <QWidget>

class ZrBtn;

/// A panel over the window that wants an answer: darkens what is below and takes all input until it is
/// accepted, or cancelled by its button, Escape, or a tap beside it.
///
/// Inside the window, not a window of its own: those hide behind full-screen windows and keyboards. Derived
/// classes put their controls into `Body`. GUI thread only.
class ZR_KIT_EXPORT ZrOverlay : public QWidget
{
    Q_OBJECT

public:
    /// \param parent the window, or anything that is to be covered as a whole
    ZrOverlay(QWidget* parent, const QString& title);

    void SetTitle(const QString& title);
    void SetAcceptText(const QString& text); ///< of the button that accepts; empty for no such button
    void SetCancelText(const QString& text);
    void SetAcceptEnabled(bool isEnabled);
    void SetProblem(const QString& text); ///< why it cannot be accepted, beside the buttons; empty for none

    QString Problem() const { return m_problem; }

    void Open(); ///< shows it over its parent and takes the focus
    void Accept(); ///< as the button does, unless that is disabled
    void Cancel();

    void Restyle(); ///< after a change of size, colours or scale

Q_SIGNALS:
    void Accepted();
    void Cancelled();

protected:
    QRect Panel() const; ///< of the parent
    QRect Body() const; ///< for the controls of a derived class

    void SetTitleRoom(int pixels); ///< that a derived class needs for itself, at the right end of the title

    virtual QSize Wanted() const; ///< size of the panel, design pixels; as much as there is room for
    virtual void Place(); ///< puts the controls into `Body`
    virtual bool OnAccept(); ///< false keeps it open
    virtual bool OnCancel(); ///< likewise
    void Close(); ///< without an answer

    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    ZrBtn* m_accept;
    ZrBtn* m_cancel;

private:
    QString m_title;
    QString m_problem;
    int m_titleRoom = 0; ///< pixels
    QPointer<QWidget> m_focusBefore;
    bool m_isPressedBeside = false;
};
