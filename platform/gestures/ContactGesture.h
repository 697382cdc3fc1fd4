// What pointers that touch mean: fingers, a pen's tip, the pressed mouse.
//
// - A pointer that left the reach of a tap pans; the pan takes up all of its
//   movement, so that what was touched stays under it. Two that pan keep on
//   panning when a finger comes or goes; the position then goes on from where
//   it was. Lifted at speed, a pan goes on as inertia.
// - Two whose distance changed by more than the reach pinch about their
//   midpoint, without inertia. When one of the two goes, the pinch is over, and
//   until all are up nothing pans any more; two fingers may pinch again.
//   A pan that stood beside the midpoint ends when its fingers begin to pinch.
// - A third finger waits to take the place of one that goes. Pointers of
//   another device than the first are not looked at.
// - A lone pointer that stayed within its reach taps; a finger or pen that stays
//   for half a second holds instead. A press that stopped an inertia does
//   neither, and pans from its first movement.
//
// Units: logical. Threads: UI thread only. Handlers may call back in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/gestures/Inertia.h"
#include "platform/gestures/Manipulation.h"
#include "platform/gestures/VelocityTracker.h"

namespace Platform::Gestures {

class ContactGesture {
public:
    // `pHoldTimer`: its owner passes each tick on to `OnHeld`.
    ContactGesture(PanelEvents& events, Manipulation& manipulation, Inertia& inertia,
                   std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pHoldTimer);

    // `fReach`: how far a pointer may stray and still tap. `fUnit`: as of `Fling`.
    void SetScale(float fReach, float fUnit);

    // Movements first, of released pointers too; then what went, then what came.
    void Apply(const PointerFrame& frame);

    // One pointer went without being lifted: the gesture completes, and those
    // that are left do nothing until they are up.
    void Lose(std::uint32_t nId);

    bool Holds(std::uint32_t nId) const;
    bool IsAnyDown() const { return !m_contacts.empty(); }
    std::vector<PointerRecord> Down() const; // first come first
    void OnHeld();

private:
    struct Shape { // of the one or two pointers that lead
        Point ptCentre;
        float fDistance = 0.0F; // between them; 0 for one
    };

    bool IsPair() const { return m_contacts.size() > 1; }
    Shape Measure() const;
    void Track(const PointerFrame& frame);
    void Follow(InputTime time);
    bool HasLeft(const Shape& shape) const;
    bool HasSpread(const Shape& shape) const;
    bool Start(std::uint64_t nThis);
    bool TurnIntoPinch(std::uint64_t nThis);
    bool GoesOn(bool bOpen, std::uint64_t nThis);
    void Press(const PointerRecord& record, InputTime time);
    void Lift(std::uint32_t nId, InputTime time);
    void Finish(InputTime time);
    void Grip(InputTime time);
    void Spend();
    void RuleOutTap();

    PanelEvents& m_events;
    Manipulation& m_manipulation;
    Inertia& m_inertia;
    const std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> m_pHoldTimer;
    float m_fReach = 10.0F;
    float m_fUnit = 1.0F;

    std::vector<PointerRecord> m_contacts; // first come first; the first two lead
    std::uint64_t m_nChanges = 0;          // of these and their places
    bool m_bManipulating = false;          // the open manipulation is of these pointers
    bool m_bPinching = false;              // and has scaled
    bool m_bPinched = false;               // these pointers have, once
    bool m_bSpent = false;                 // nothing more comes of them
    bool m_bCaught = false;                // the first one stopped an inertia
    bool m_bMayTap = false;
    Shape m_gripped;          // when the leading pointers came together
    Point m_ptCentre;         // of the last movement
    float m_fDistance = 0.0F; // that the scale has followed so far
    Point m_ptAside;          // from their centre to the manipulation's position
    VelocityTracker m_velocity;
};

}
