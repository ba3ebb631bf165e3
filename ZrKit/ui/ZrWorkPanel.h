#pragma once

#include "ZrKit/ui/ZrOverlay.h"

class QTimer;
class ZrWorker;

/// Shows over a window how far the work of a `ZrWorker` is, with a button that ends it.
///
/// \code
/// m_work->Begin(m_worker, tr("Exporting the track"));
/// m_worker.Start(work, stop);
/// \endcode
///
/// It covers its parent from `Begin` on and takes its input; the panel itself comes up when the work takes
/// longer than `DelayMilliseconds`. It goes when the worker tells `Finished`. After the button was pressed it
/// says so until then. A tap beside it does nothing. GUI thread only.
class ZR_KIT_EXPORT ZrWorkPanel : public ZrOverlay
{
    Q_OBJECT

public:
    static constexpr int DelayMilliseconds = 200;

    explicit ZrWorkPanel(QWidget* parent);

    void Begin(ZrWorker& worker, const QString& text); ///< what is done, for people

    void End(); ///< as the worker's end does; for work that could not be started

    int Percent() const { return m_percent; }

protected:
    QSize Wanted() const override;
    bool OnCancel() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    ZrWorker* m_worker = nullptr;
    QTimer* m_delay;
    int m_percent = 0;
    bool m_isShown = false; ///< the panel, not only its cover
    bool m_isCancelled = false;
};
