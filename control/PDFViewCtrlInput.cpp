// The host's input sink: what happens over the canvas goes on to it as it is.

#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/VelkoViewControl.h"

namespace velko::vkit {

template <class Args>
void PDFViewCtrl::Forward(
    Windows::Foundation::Event<Args&>& event,
    void (IUIExtensionsEvents::*fnOperation)(const IUIExtensionsEvents::Sender&, Args&)) {
    event.add([wkSelf = std::weak_ptr<PDFViewCtrl>(Self()), fnOperation](Args& args) {
        const auto pSelf = wkSelf.lock();
        const auto pSink = pSelf ? pSelf->m_pExtensionsManager : nullptr;
        if (pSink) {
            (pSink.get()->*fnOperation)(pSelf->m_pViewControl->CanvasPanel(), args);
        }
    });
}

// A control that is loaded again attaches again; nothing detaches.
void PDFViewCtrl::OnLoaded() {
    if (IsTemplateApplied()) {
        ConnectPanel();
    } else {
        ApplyTemplate(); // connects the panel that it makes
    }
    ForwardSize();
    OpenPasswordDialog(); // which a document may wait for since before there was a window
}

void PDFViewCtrl::ConnectPanel() {
    ConnectManipulation();
    ConnectPointer();
    ForwardCompositionScale();
}

void PDFViewCtrl::ConnectManipulation() {
    const auto pPanel = m_pViewControl->CanvasPanel();
    Forward(pPanel->ManipulationStarted, &IUIExtensionsEvents::OnManipulationStarted);
    Forward(pPanel->ManipulationDelta, &IUIExtensionsEvents::OnManipulationDelta);
    // Hosts count on hearing twice that a gesture started.
    Forward(pPanel->ManipulationStarted, &IUIExtensionsEvents::OnManipulationStarted);
    Forward(pPanel->ManipulationCompleted, &IUIExtensionsEvents::OnManipulationCompleted);
}

void PDFViewCtrl::ConnectPointer() {
    const auto pPanel = m_pViewControl->CanvasPanel();
    Forward(pPanel->PointerPressed, &IUIExtensionsEvents::OnPointerPressed);
    Forward(pPanel->PointerMoved, &IUIExtensionsEvents::OnPointerMoved);
    Forward(pPanel->PointerReleased, &IUIExtensionsEvents::OnPointerReleased);
    Forward(pPanel->PointerEntered, &IUIExtensionsEvents::OnPointerEntered);
    Forward(pPanel->PointerExited, &IUIExtensionsEvents::OnPointerExited);
    Forward(pPanel->PointerCaptureLost, &IUIExtensionsEvents::OnPointerCaptureLost);
    Forward(pPanel->PointerCanceled, &IUIExtensionsEvents::OnPointerCanceled);
    Forward(pPanel->PointerWheelChanged, &IUIExtensionsEvents::OnPointerWheelChanged);
    Forward(pPanel->Holding, &IUIExtensionsEvents::OnHolding);
    Forward(pPanel->Tapped, &IUIExtensionsEvents::OnTapped);
}

void PDFViewCtrl::ForwardCompositionScale() {
    const std::weak_ptr<PDFViewCtrl> wkSelf = Self();
    m_pViewControl->CanvasPanel()->CompositionScaleChanged.add([wkSelf] {
        const auto pSelf = wkSelf.lock();
        const auto pSink = pSelf ? pSelf->m_pExtensionsManager : nullptr;
        if (pSink) {
            pSink->OnCompositionScaleChanged(pSelf->m_pViewControl->CanvasPanel());
        }
    });
}

void PDFViewCtrl::ForwardSize() {
    const std::weak_ptr<PDFViewCtrl> wkSelf = Self();
    SizeChanged.add([wkSelf](const Windows::UI::Xaml::SizeChangedEventArgs& args) {
        const auto pSelf = wkSelf.lock();
        const auto pSink = pSelf ? pSelf->m_pExtensionsManager : nullptr;
        if (pSink) {
            pSink->OnSizeChanged(pSelf, args);
        }
    });
}

}
