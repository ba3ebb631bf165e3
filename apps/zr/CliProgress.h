#pragma once

#include "ZrUtil/IZrProgress.h"

#include <QString>

/// A progress bar on standard error; silent unless that is a terminal.
///
/// The bar is erased when the object goes, and before any message is written. One at a time.
class CliProgress final : public IZrProgress
{
public:
    explicit CliProgress(const QString& label);
    ~CliProgress();
    CliProgress(const CliProgress&) = delete;
    CliProgress& operator=(const CliProgress&) = delete;

    void UpdateProgress(int percent) override;

    int GetProgress() override { return m_percent; }

    /// Clears the terminal line when a bar stands on it. May be called from a signal handler.
    static void EraseLine();

private:
    QString m_label;
    int m_percent = -1;
};
