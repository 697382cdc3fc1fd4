// Actions and destinations with chosen values.
#pragma once

#include <memory>
#include <utility>

#include "document/engine/Action.h"

namespace velko::testing {

struct ScriptedDestination final : pdf::IDestination {
    std::int32_t nPageIndex = 0;
    std::int32_t nZoomMode = 2;
    float fLeft = 0.0F;
    float fTop = 0.0F;
    float fRight = 0.0F;
    float fBottom = 0.0F;
    bool bLeftAbsent = false;
    bool bTopAbsent = false;

    std::int32_t GetPageIndex(const pdf::PDFDoc&) const override { return nPageIndex; }
    std::int32_t GetZoomMode() const override { return nZoomMode; }
    float GetLeft() const override { return fLeft; }
    float GetTop() const override { return fTop; }
    float GetRight() const override { return fRight; }
    float GetBottom() const override { return fBottom; }
    bool IsLeftAbsent() const override { return bLeftAbsent; }
    bool IsTopAbsent() const override { return bTopAbsent; }
};

class ScriptedAction final : public pdf::IAction {
public:
    explicit ScriptedAction(std::shared_ptr<pdf::IDestination> pDestination)
        : m_pDestination(std::move(pDestination)) {}
    std::shared_ptr<pdf::IDestination> GetDestination() const override { return m_pDestination; }

private:
    std::shared_ptr<pdf::IDestination> m_pDestination;
};

}
