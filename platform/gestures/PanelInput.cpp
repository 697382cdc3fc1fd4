#include "platform/gestures/PanelInput.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace Input = Windows::UI::Xaml::Input;
using Panel = PanelEvents::Panel;

namespace {

bool IsPlace(Point pt) {
    return std::isfinite(pt.X) && std::isfinite(pt.Y);
}

bool BeginsContact(const PointerRecord& record) {
    return record.eChange == PointerChange::Pressed && record.bContact;
}

Windows::Foundation::Event<Input::PointerRoutedEventArgs&> Panel::*EventOf(PointerChange eChange) {
    switch (eChange) {
        case PointerChange::Pressed:
            return &Panel::PointerPressed;
        case PointerChange::Moved:
            return &Panel::PointerMoved;
        case PointerChange::Released:
            return &Panel::PointerReleased;
        case PointerChange::Entered:
            return &Panel::PointerEntered;
        case PointerChange::Exited:
            return &Panel::PointerExited;
        case PointerChange::Canceled:
            break;
    }
    return &Panel::PointerCanceled;
}

}

std::shared_ptr<PanelInput> PanelInput::Create(std::shared_ptr<IEnvironment> pEnvironment,
                                               std::shared_ptr<Panel> pPanel) {
    std::shared_ptr<PanelInput> pInput(new PanelInput(std::move(pEnvironment), std::move(pPanel)));
    pInput->Connect();
    return pInput;
}

PanelInput::PanelInput(std::shared_ptr<IEnvironment> pEnvironment, std::shared_ptr<Panel> pPanel)
    : m_events(pPanel),
      m_pPanel(std::move(pPanel)),
      m_pFrameTimer(pEnvironment->CreateTimer()),
      m_pHoldTimer(pEnvironment->CreateTimer()),
      m_pSilenceTimer(pEnvironment->CreateTimer()),
      m_manipulation(m_events),
      m_inertia(m_events, m_manipulation, std::move(pEnvironment), m_pFrameTimer),
      m_contacts(m_events, m_manipulation, m_inertia, m_pHoldTimer),
      m_scroll(m_events, m_manipulation, m_pSilenceTimer),
      m_pinch(m_manipulation) {
    Configure({});
}

PanelInput::~PanelInput() {
    Close();
}

void PanelInput::Connect() {
    OnTick(m_pFrameTimer, &PanelInput::OnFrame);
    OnTick(m_pHoldTimer, &PanelInput::OnHeld);
    OnTick(m_pSilenceTimer, &PanelInput::OnSilence);
    const auto token = m_pPanel->Unloaded.add([wkSelf = weak_from_this()] {
        if (const auto pSelf = wkSelf.lock()) {
            pSelf->Stop();
        }
    });
    m_unsubscribe.emplace_back([pPanel = m_pPanel, token] { pPanel->Unloaded.remove(token); });
}

void PanelInput::OnTick(const Timer& pTimer, void (PanelInput::*pfnTick)()) {
    pTimer->Tick.add([wkSelf = weak_from_this(), pfnTick] {
        if (const auto pSelf = wkSelf.lock()) {
            (*pSelf.*pfnTick)();
        }
    });
}

void PanelInput::OnFrame() {
    m_inertia.OnTick();
}

void PanelInput::OnHeld() {
    m_contacts.OnHeld();
}

void PanelInput::OnSilence() {
    m_scroll.Cancel();
}

void PanelInput::Configure(const Settings& settings) {
    m_contacts.SetScale(settings.fReach, settings.fUnit);
    m_pFrameTimer->Interval(settings.frame);
}

void PanelInput::OnFailure(FailureSink::Listener fnReport) {
    if (!m_events.IsClosed()) {
        m_events.Failures().Listen(std::move(fnReport));
    }
}

// --- pointers --------------------------------------------------------------

void PanelInput::Apply(const PointerFrame& frame) {
    const auto pKeep = weak_from_this().lock();
    PointerFrame sound = frame;
    std::erase_if(sound.records, [](const PointerRecord& record) { return !IsPlace(record.ptAt); });
    if (std::any_of(sound.records.begin(), sound.records.end(), BeginsContact)) {
        m_scroll.Cancel();
        m_pinch.Cancel();
    }
    for (const PointerRecord& record : sound.records) {
        RaisePointer(record);
    }
    LoseThoseThatLeft(sound);
    if (!m_events.IsClosed()) {
        m_contacts.Apply(sound);
    }
}

void PanelInput::RaisePointer(const PointerRecord& record) {
    Input::PointerRoutedEventArgs args;
    args.PointerId = record.nId;
    args.Position = record.ptAt;
    args.PointerDeviceType = record.eDevice;
    m_events.Raise(EventOf(record.eChange), args);
}

// A contact that moves without touching was released where nobody told.
void PanelInput::LoseThoseThatLeft(const PointerFrame& frame) {
    for (const PointerRecord& record : frame.records) {
        if (!m_contacts.Holds(record.nId)) {
            continue;
        }
        if (record.eChange == PointerChange::Canceled) {
            m_contacts.Lose(record.nId);
        } else if (record.eChange == PointerChange::Moved && !record.bContact) {
            m_contacts.Lose(record.nId);
            RaiseLoss(record, Loss::Capture);
        }
    }
}

void PanelInput::RaiseLoss(const PointerRecord& record, Loss eLoss) {
    Input::PointerRoutedEventArgs args;
    args.PointerId = record.nId;
    args.Position = record.ptAt;
    args.PointerDeviceType = record.eDevice;
    m_events.Raise(eLoss == Loss::Capture ? &Panel::PointerCaptureLost : &Panel::PointerCanceled,
                   args);
}

void PanelInput::LosePointers(Loss eLoss) {
    const auto pKeep = weak_from_this().lock();
    for (const PointerRecord& record : m_contacts.Down()) {
        if (m_contacts.Holds(record.nId)) {
            m_contacts.Lose(record.nId);
            RaiseLoss(record, eLoss);
        }
    }
}

// --- touchpad and wheel ----------------------------------------------------

void PanelInput::Apply(const ScrollRecord& record) {
    const auto pKeep = weak_from_this().lock();
    if (!IsPlace(record.ptAt) || !IsPlace(record.ptPixels)) {
        return;
    }
    const bool bFingersAct =
        record.ePhase != ScrollPhase::Momentum && record.ePhase != ScrollPhase::End;
    if (bFingersAct) {
        m_inertia.Stop();
        m_pinch.Cancel();
    }
    if (m_contacts.IsAnyDown() && record.ePhase != ScrollPhase::None) {
        m_scroll.Cancel();
    } else {
        m_scroll.Apply(record);
    }
}

void PanelInput::Apply(const PinchRecord& record) {
    const auto pKeep = weak_from_this().lock();
    if (!IsPlace(record.ptAt) || m_contacts.IsAnyDown()) {
        return;
    }
    if (record.ePhase == PinchPhase::Zoom) {
        m_inertia.Stop();
        m_scroll.Cancel();
    }
    m_pinch.Apply(record);
}

// --- the end ---------------------------------------------------------------

void PanelInput::StopInertia() {
    const auto pKeep = weak_from_this().lock();
    m_inertia.Stop();
}

void PanelInput::Stop() {
    const auto pKeep = weak_from_this().lock();
    LosePointers(Loss::Capture);
    m_inertia.Stop();
    m_scroll.Cancel();
    m_pinch.Cancel();
}

void PanelInput::Close() {
    const auto pKeep = weak_from_this().lock();
    Stop();
    m_events.Close();
    for (const auto& fnUnsubscribe : std::exchange(m_unsubscribe, {})) {
        fnUnsubscribe();
    }
}

}
