// What the raster device's objects share: counters, faults to inject, the life
// of a device and the images of a swap chain.
//
// Threads: the UI thread only. Units: device pixels, bytes.
#pragma once

#include <QImage>
#include <QSize>
#include <cstdint>
#include <optional>

#include "platform/foundation/HResult.h"
#include "platform/qt/QtFrameScript_p.h"

namespace Platform::Qt {

// Counters and faults of one `QtGraphicsFactory`, over all its devices.
struct QtGraphicsState {
    std::int64_t nLiveBitmaps = 0; // made by `CreateBitmap` and not yet released
    std::int64_t nLiveBitmapBytes = 0;
    std::uint64_t nBitmapsCreated = 0;
    std::uint64_t nFrames = 0;   // begun
    std::uint64_t nPresents = 0; // that showed a frame
    std::uint64_t nDevicesLost = 0;

    // Faults, for tests and scripts. Each counts down the presents still to
    // succeed, happens once, and is gone; 0 is the next present.
    std::optional<std::uint64_t> nPresentsUntilLoss;
    std::optional<std::uint64_t> nPresentsUntilFailure; // with `E_FAIL`, device kept
};

// One device, as far as its bitmaps and chains need to know it.
struct QtDeviceState {
    bool bLost = false;
};

// The images of one swap chain.
struct QtSwapBuffers {
    QSize size;               // of the buffers; the front may still have the one before
    QImage back;              // drawn into; null until a frame begins
    QImage front;             // shown; null before the first present
    QtFrameScript backScript; // what the two are made of; empty when that is not known
    QtFrameScript frontScript;
    QRect rcChanged;          // of the front, drawn since the last present
    bool bFrameBegun = false; // into the back, since the last present
    bool bFrameDrawn = false; // ended since the last present

    // What a read of the target gives: the frame under way, else the last one.
    const QImage& Current() const { return bFrameBegun || front.isNull() ? back : front; }
};

}
