#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/ui/ZrOverlay.h"

#include <QString>

#include <functional>

class ZrInput;

/// Asks for a text, which is checked when it is accepted.
///
/// \code
/// m_text->Ask(tr("Go to"), tr("12:34:56, +90, 2021-05-03 12:34"), QString(),
///     [this](const QString& text) { return GoTo(text); }); // what is wrong with it; empty when it is taken
/// \endcode
///
/// GUI thread only.
class ZR_KIT_EXPORT ZrTextPanel : public ZrOverlay
{
    Q_OBJECT

public:
    /// Takes a text, or says in words why not.
    using Take = std::function<QString(const QString& text)>;

    explicit ZrTextPanel(QWidget* parent);

    /// \param hint below the line: what may be typed
    void Ask(const QString& title, const QString& hint, const QString& text, const Take& take);

    /// After `Ask`: another line with \p caption before it, which is checked together with the first.
    void AskMore(const QString& caption, const QString& text);

    ZrInput& Input() { return *m_input; }

    ZrInput& MoreInput() { return *m_more; } ///< hidden unless it was asked for

    QString More() const; ///< what stands in it

protected:
    QSize Wanted() const override;
    void Place() override;
    bool OnAccept() override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect MoreRow() const;

    ZrInput* m_input;
    ZrInput* m_more;
    QString m_moreCaption; ///< empty while there is but one line
    QString m_hint;
    Take m_take;
};
