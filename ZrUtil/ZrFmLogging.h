#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrForm.h"

#include <memory>

namespace Ui {
class ZrFmLogging;
}

/// The settings form of the debug log: its switches, levels, and where it is written.
///
/// The controls show the variables of the debug log and change them at once. GUI thread only.
class ZR_UTIL_EXPORT ZrFmLogging : public ZrForm
{
    Q_OBJECT

public:
    explicit ZrFmLogging(QWidget* parent);
    ~ZrFmLogging() override;

    /// "level", "terminate on critical", "log to file", "log to debug", "flush if above".
    void settings(zr::ZrSetModule& module) override;

    void update_bindings(); ///< shows the variables as they are

    /// The base path of the log files; empty for none.
    static QString cur_log_path();

    void OnFormDisplay() override;

public Q_SLOTS:
    void change_log_path(); ///< asks for another base path
    void browse_log_path(); ///< shows the current log file in the file browser of the desktop

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ConnectControls();

    std::unique_ptr<Ui::ZrFmLogging> m_ui;
};
