#pragma once

#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrExport.h"

#include <QString>
#include <QWidget>

/// A panel that shows how far long work is.
///
/// \code
/// ZrProgress panel(view);
/// panel.Start();
/// ZrPlayer::ExportFileSegment(in, out, from, to, &panel);
/// panel.Stop();
/// \endcode
///
/// It repaints at once when the percentage changes, since the work may keep the event loop of the same thread
/// from running. GUI thread only: work in another thread sends its percentages through a queued signal to
/// `OnPercentDone`.
class ZR_UTIL_EXPORT ZrProgress : public QWidget, public IZrProgress
{
    Q_OBJECT

public:
    QString text; ///< what is going on
    int percent = 0;

    explicit ZrProgress(QWidget* parent = nullptr);

    void Start(); ///< from 0: shows the panel above its siblings
    void Stop(); ///< hides it

    void UpdateProgress(int p) override;
    int GetProgress() override;

    QSize sizeHint() const override;

public Q_SLOTS:
    void OnPercentDone(int p); ///< as `UpdateProgress`

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintText(QPainter& painter, const QRectF& rect);
    void PaintBar(QPainter& painter, const QRectF& rect);
};
