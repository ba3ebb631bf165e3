#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QWidget>

class ZrBtn;

/// A panel along the lower edge of a window that tells a person something: a warning sign, the text, OK.
///
/// \code
/// if (!settings.Message().isEmpty())
///     new ZrNotice(&view, settings.Message());
/// \endcode
///
/// It stands above the other widgets of the window, follows its size, holds nothing up, and deletes itself at
/// OK. A text that finds no room ends in an ellipsis; the tool tip has the whole of it. GUI thread only.
class ZR_KIT_EXPORT ZrNotice : public QWidget
{
    Q_OBJECT

public:
    /// Shows \p text in \p window, which must not be null.
    ZrNotice(QWidget* window, const QString& text);

    QString Text() const { return m_text; }

    QString ShownText() const { return m_shown; } ///< with the ellipsis, if there is one

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override; ///< stays here
    void mouseDoubleClickEvent(QMouseEvent* event) override; ///< likewise

private:
    void Place();
    QSize TextSize(const QString& text, int width) const;

    QString m_text;
    QString m_shown;
    QRect m_textRect;
    ZrBtn* m_ok;
};
