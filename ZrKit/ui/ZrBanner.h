#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class ZrBtn;

/// A strip within a page that tells what has happened and what to do next, until it is touched away.
///
/// \code
/// banner->Show(ZrBanner::error, tr("Recording stopped: the disk is nearly full"),
///     tr("Free some space, or choose another folder."), {{tr("Settings"), [this] { ShowSettings(); }}});
/// connect(banner, &ZrBanner::Dismissed, this, [this] { m_message.clear(); });
/// const int high = banner->HeightFor(width); // 0 while there is nothing to tell
/// \endcode
///
/// The page places it: its height depends on the width, where a narrow one has its buttons below the text.
/// No text is cut. Texts are never smaller than `LeastText` pixels. For what may be missed there is
/// `ZrToast`. GUI thread only.
class ZR_KIT_EXPORT ZrBanner : public QWidget
{
    Q_OBJECT

public:
    enum eKind : int
    {
        info = 0,
        warning = 1,
        error = 2
    };

    struct Action
    {
        QString text;
        std::function<void()> run; ///< the banner stays
    };

    static constexpr int LeastText = 14; ///< pixels

    explicit ZrBanner(QWidget* parent); ///< hidden

    /// \param text what has happened; \param advice what to do next, may be empty
    void Show(eKind kind, const QString& text, const QString& advice, const QVector<Action>& actions = {});
    void Clear(); ///< hides it, as there is nothing to tell any more

    bool IsEmpty() const { return m_text.isEmpty(); }

    eKind Kind() const { return m_kind; }

    QString Text() const { return m_text; }

    QString Advice() const { return m_advice; }

    const QVector<ZrBtn*>& Buttons() const { return m_buttons; } ///< of the actions

    int HeightFor(int width) const; ///< real pixels; 0 while it is empty

    void Restyle(); ///< after a change of colours or scale

Q_SIGNALS:
    void Dismissed(); ///< by its close button; it is empty then
    void Changed(); ///< it is to be placed anew

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Plan;

    Plan PlanFor(int width) const;
    void Place();

    eKind m_kind = info;
    QString m_text;
    QString m_advice;
    QVector<ZrBtn*> m_buttons;
    ZrBtn* m_close;
};
