// Who draws on a canvas: the canvas calls it, under its lock, for each frame.
//
// Lifetime: the canvas holds a client weakly, and only while a frame of it
// waits for the frame that is open to end.
// Threads: the UI thread.
#pragma once

#include <memory>

namespace velko::vkit {

class WPRenderDC;

class ICanvasClient {
public:
    ICanvasClient() = default;
    virtual ~ICanvasClient() = default;
    ICanvasClient(const ICanvasClient&) = delete;
    ICanvasClient& operator=(const ICanvasClient&) = delete;

    // Draws the current frame, from begin to end of drawing. It may run twice
    // for one request: again when the device was lost with the first frame.
    virtual void OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) = 0;

    // Clears the frame to the colour around pages.
    virtual void ClearCanvas(const std::shared_ptr<WPRenderDC>& pDc) = 0;

    // The device was lost and made anew since the last frame: no bitmap made
    // before is alive (`D2DBitmapSource::HasBitmap`), and what is visible has to
    // be rendered again. Called after a frame, outside of the canvas's lock.
    virtual void OnDeviceRemade() {}

    // A reference to this client for the length of a frame, in which the host
    // may close it. Empty when the caller of the frame keeps it alive.
    virtual std::shared_ptr<void> KeepAlive() { return {}; }

    // Tells whether this client still exists; does not keep it alive.
    std::weak_ptr<ICanvasClient> WeakReference() const { return m_pSelf; }

private:
    const std::shared_ptr<ICanvasClient> m_pSelf{this, [](ICanvasClient* /*pClient*/) {}};
};

}
