#pragma once

#include "ZrUtil/ZrTypes.h"

#include <atomic>
#include <mutex>

class ZrGlSurface;

/// The playback cursor that views and datasets share: where it is, when, and at which record.
///
/// Any thread may read and write any of it. Every value is an atomic of its own: two values set together,
/// such as `x` and `y`, may for a moment be seen apart. Nothing is signalled; views look at the cursor
/// whenever they draw.
///
/// The owner, the surface that moves the cursor, is only a pointer here: the cursor neither calls nor deletes
/// it.
class ZrCursor
{
public:
    std::atomic<double> x{0.0}; ///< in the units of the owner's view
    std::atomic<double> y{0.0}; ///< in the units of the owner's view
    std::atomic<float> size{0.0f};
    std::atomic<float> timeSpan{0.0f}; ///< seconds
    std::atomic<double> time{-1.0}; ///< seconds since 1970-01-01T00:00:00 UTC, -1 before it was set
    std::atomic<i32> rec{0}; ///< record index of the dataset
    std::mutex mutex; ///< guards `owner`
    ZrGlSurface* owner = nullptr;

    ZrCursor() = default;
    ZrCursor(const ZrCursor&) = delete;
    ZrCursor& operator=(const ZrCursor&) = delete;

    void SetOwner(ZrGlSurface* surface)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        owner = surface;
    }

    ZrGlSurface* GetOwner()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return owner;
    }

    void SetPosition(double newX, double newY)
    {
        x = newX;
        y = newY;
    }

    void SetPosition(double newX, double newY, float newSize)
    {
        SetPosition(newX, newY);
        size = newSize;
    }

    void SetRecord(int newRec) { rec = newRec; }

    void SetRecord(int newRec, float newSize)
    {
        SetRecord(newRec);
        size = newSize;
    }

    void SetTime(double newTime) { time = newTime; }

    void SetTime(double newTime, float newTimeSpan)
    {
        SetTime(newTime);
        timeSpan = newTimeSpan;
    }
};
