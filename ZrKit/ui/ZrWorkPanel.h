#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QWidget>

class QTimer;
class ZrBtn;
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
/// says so until then. GUI thread only.
class ZR_KIT_EXPORT ZrWorkPanel : public QWidget
{
    Q_OBJECT

public:
    static constexpr int DelayMilliseconds = 200;

    explicit ZrWorkPanel(QWidget* parent);

    void Begin(ZrWorker& worker, const QString& text); ///< what is done, for people

    int Percent() const { return m_percent; }

    void Cancel(); ///< as the button

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void End();
    QRect Panel() const;
    void Place();

    ZrWorker* m_worker = nullptr;
    ZrBtn* m_cancel;
    QTimer* m_delay;
    QString m_text;
    int m_percent = 0;
    bool m_isShown = false; ///< the panel, not only its cover
    bool m_isCancelled = false;
};
