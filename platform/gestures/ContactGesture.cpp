#include "platform/gestures/ContactGesture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace Input = Windows::UI::Xaml::Input;

namespace {

constexpr std::chrono::milliseconds kHoldTime{500};
constexpr float kLeastDistance = 1.0F; // fingers in one place still have a ratio
constexpr std::size_t kLeading = 2;

Point operator+(Point a, Point b) {
    return {a.X + b.X, a.Y + b.Y};
}

Point operator-(Point a, Point b) {
    return {a.X - b.X, a.Y - b.Y};
}

float Length(Point pt) {
    return std::hypot(pt.X, pt.Y);
}

auto IsPointer(std::uint32_t nId) {
    return [nId](const PointerRecord& record) { return record.nId == nId; };
}

}

ContactGesture::ContactGesture(PanelEvents& events, Manipulation& manipulation, Inertia& inertia,
                               std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pHoldTimer)
    : m_events(events),
      m_manipulation(manipulation),
      m_inertia(inertia),
      m_pHoldTimer(std::move(pHoldTimer)) {
    m_pHoldTimer->Interval(kHoldTime);
}

void ContactGesture::SetScale(float fReach, float fUnit) {
    m_fReach = fReach;
    m_fUnit = fUnit;
}

bool ContactGesture::Holds(std::uint32_t nId) const {
    return std::any_of(m_contacts.begin(), m_contacts.end(), IsPointer(nId));
}

std::vector<PointerRecord> ContactGesture::Down() const {
    return m_contacts;
}

ContactGesture::Shape ContactGesture::Measure() const {
    const Point ptFirst = m_contacts[0].ptAt;
    if (!IsPair()) {
        return {ptFirst, 0.0F};
    }
    const Point ptSecond = m_contacts[1].ptAt;
    return {{(ptFirst.X + ptSecond.X) / 2.0F, (ptFirst.Y + ptSecond.Y) / 2.0F},
            std::max(Length(ptSecond - ptFirst), kLeastDistance)};
}

void ContactGesture::Apply(const PointerFrame& frame) {
    ++m_nChanges; // what an outer call has measured is old by now
    Track(frame);
    Follow(frame.time);
    for (const PointerRecord& record : frame.records) {
        if (record.eChange == PointerChange::Released && record.bContact) {
            Lift(record.nId, frame.time);
        }
    }
    for (const PointerRecord& record : frame.records) {
        if (record.eChange == PointerChange::Pressed && record.bContact) {
            Press(record, frame.time);
        }
    }
}

void ContactGesture::Track(const PointerFrame& frame) {
    for (const PointerRecord& record : frame.records) {
        const auto it = std::find_if(m_contacts.begin(), m_contacts.end(), IsPointer(record.nId));
        const bool bMoves = record.eChange == PointerChange::Moved ||
                            (record.eChange == PointerChange::Released && record.bContact);
        if (it != m_contacts.end() && bMoves) {
            it->ptAt = record.ptAt;
        }
    }
}

// --- movement --------------------------------------------------------------

void ContactGesture::Follow(InputTime time) {
    if (m_contacts.empty() || m_bSpent) {
        return;
    }
    const Shape shape = Measure();
    m_velocity.Add(time, shape.ptCentre + m_ptAside);
    const std::uint64_t nThis = m_nChanges;
    if (!m_bManipulating && (!HasLeft(shape) || !Start(nThis))) {
        return;
    }
    if (!m_bPinching && HasSpread(shape) && !TurnIntoPinch(nThis)) {
        return;
    }
    const float fScale = m_bPinching ? shape.fDistance / m_fDistance : 1.0F;
    m_fDistance = m_bPinching ? shape.fDistance : m_fDistance;
    m_ptCentre = shape.ptCentre;
    const bool bOpen = m_manipulation.MoveTo(shape.ptCentre + m_ptAside, fScale);
    GoesOn(bOpen, nThis);
}

// After handlers ran: whether the pointers are the same as before and their
// manipulation is open. Pointers whose manipulation was ended are spent.
bool ContactGesture::GoesOn(bool bOpen, std::uint64_t nThis) {
    if (m_nChanges != nThis) {
        return false;
    }
    if (!bOpen) {
        m_bSpent = true;
        m_bManipulating = m_bPinching = false;
    }
    return bOpen;
}

bool ContactGesture::HasLeft(const Shape& shape) const {
    const float fReach = m_bCaught ? 0.0F : m_fReach;
    const bool bPans = !m_bPinched && Length(shape.ptCentre - m_gripped.ptCentre) > fReach;
    return bPans || HasSpread(shape);
}

bool ContactGesture::HasSpread(const Shape& shape) const {
    return IsPair() && std::fabs(shape.fDistance - m_gripped.fDistance) > m_fReach;
}

bool ContactGesture::Start(std::uint64_t nThis) {
    RuleOutTap();
    m_bManipulating = true; // before handlers run, so that a loss in them ends it
    return GoesOn(m_manipulation.Begin(m_contacts[0].eDevice, m_gripped.ptCentre), nThis);
}

// A pinch is about the fingers' midpoint; where the position of the pan stands
// beside it, another manipulation begins, for none of them ever jumps.
bool ContactGesture::TurnIntoPinch(std::uint64_t nThis) {
    m_bPinching = true;
    m_bPinched = true;
    if (std::exchange(m_ptAside, Point{}) == Point{}) {
        return true;
    }
    m_manipulation.End();
    if (m_nChanges != nThis) {
        return false;
    }
    return GoesOn(m_manipulation.Begin(m_contacts[0].eDevice, m_ptCentre), nThis);
}

// --- pointers that come and go ---------------------------------------------

void ContactGesture::Grip(InputTime time) {
    if (!m_bManipulating) {
        m_velocity.Clear();
    }
    m_gripped = Measure();
    m_ptCentre = m_gripped.ptCentre;
    m_fDistance = m_gripped.fDistance;
    m_ptAside = m_bManipulating ? m_manipulation.Position() - m_ptCentre : Point{};
    m_velocity.Add(time, m_ptCentre + m_ptAside);
}

void ContactGesture::Press(const PointerRecord& record, InputTime time) {
    if (Holds(record.nId)) {
        Lose(record.nId); // its release was never told
    }
    const bool bCaught = !IsAnyDown() && m_inertia.Stop();
    if (IsAnyDown() && record.eDevice != m_contacts[0].eDevice) {
        return;
    }
    ++m_nChanges;
    m_contacts.push_back(record);
    if (m_contacts.size() > kLeading) {
        return;
    }
    if (IsPair()) {
        RuleOutTap();
    } else {
        m_bManipulating = m_bPinching = m_bPinched = m_bSpent = false;
        m_bCaught = bCaught;
        m_bMayTap = !bCaught;
        if (m_bMayTap && record.eDevice != Device::Mouse) {
            m_pHoldTimer->Start();
        }
    }
    Grip(time);
}

void ContactGesture::Lift(std::uint32_t nId, InputTime time) {
    const auto it = std::find_if(m_contacts.begin(), m_contacts.end(), IsPointer(nId));
    if (it == m_contacts.end()) {
        return;
    }
    const bool bLed = it < m_contacts.begin() + kLeading;
    const bool bPinchEnds = bLed && std::exchange(m_bPinching, false);
    if (bPinchEnds) {
        m_bManipulating = false;
    }
    ++m_nChanges;
    m_contacts.erase(it);
    if (bLed && IsAnyDown()) {
        Grip(time);
    }
    if (bPinchEnds) {
        m_manipulation.End();
    }
    if (!IsAnyDown()) {
        Finish(time);
    }
}

void ContactGesture::Finish(InputTime time) {
    m_pHoldTimer->Stop();
    if (std::exchange(m_bManipulating, false) && m_manipulation.IsOpen()) {
        const auto fling = m_bSpent ? std::nullopt : Fling::From(m_velocity.At(time), m_fUnit);
        if (fling) {
            m_inertia.Start(*fling);
        } else {
            m_manipulation.End();
        }
    }
    if (std::exchange(m_bMayTap, false)) {
        Input::TappedRoutedEventArgs args;
        args.Position = m_gripped.ptCentre;
        m_events.Raise(&PanelEvents::Panel::Tapped, args);
    }
}

void ContactGesture::Lose(std::uint32_t nId) {
    const auto it = std::find_if(m_contacts.begin(), m_contacts.end(), IsPointer(nId));
    if (it == m_contacts.end()) {
        return;
    }
    ++m_nChanges;
    m_contacts.erase(it);
    Spend();
}

void ContactGesture::Spend() {
    RuleOutTap();
    m_bSpent = true;
    m_bPinching = false;
    if (std::exchange(m_bManipulating, false)) {
        m_manipulation.End();
    }
}

// --- taps ------------------------------------------------------------------

void ContactGesture::RuleOutTap() {
    m_bMayTap = false;
    m_pHoldTimer->Stop();
}

void ContactGesture::OnHeld() {
    m_pHoldTimer->Stop();
    if (std::exchange(m_bMayTap, false)) {
        Input::HoldingRoutedEventArgs args;
        args.Position = m_gripped.ptCentre;
        m_events.Raise(&PanelEvents::Panel::Holding, args);
    }
}

}
