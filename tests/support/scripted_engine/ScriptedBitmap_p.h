// Pixels in a vector.
#pragma once

#include <memory>
#include <vector>

#include "document/engine/Bitmap.h"
#include "tests/support/scripted_engine/EngineScript_p.h"

namespace velko::testing {

class ScriptedBitmap final : public common::Bitmap {
public:
    ScriptedBitmap(std::shared_ptr<EngineScript> pScript, std::int32_t nWidth,
                   std::int32_t nHeight);

    std::span<std::uint8_t> GetBuffer() override { return m_pixels; }
    std::int32_t GetWidth() const override { return m_nWidth; }
    std::int32_t GetHeight() const override { return m_nHeight; }
    void FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) override;

private:
    std::shared_ptr<EngineScript> m_pScript;
    EngineScript::Counted m_counted;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::vector<std::uint8_t> m_pixels;
};

class ScriptedBitmapFactory final : public common::IBitmapFactory {
public:
    explicit ScriptedBitmapFactory(std::shared_ptr<EngineScript> pScript)
        : m_pScript(std::move(pScript)) {}
    std::shared_ptr<common::Bitmap> Create(std::int32_t nWidth, std::int32_t nHeight,
                                           std::int32_t nFormat, void* pBuffer,
                                           std::int32_t nPitch) override;

private:
    std::shared_ptr<EngineScript> m_pScript;
};

}
