#include "tests/surface/SurfaceFixture.h"

#include <cstring>

#include "platform/foundation/Describe.h"

namespace velko::testing {

CountingBitmap::CountingBitmap(std::int32_t nWidth, std::int32_t nHeight)
    : m_nWidth(nWidth), m_nHeight(nHeight) {
    for (std::uint32_t nPixel = 0; nPixel < static_cast<std::uint32_t>(nWidth * nHeight);
         ++nPixel) {
        const auto nValue = static_cast<std::uint8_t>(nPixel);
        m_bytes.insert(m_bytes.end(), {nValue, nValue, nValue, 0xFF});
    }
}

void CountingBitmap::FillRect(std::uint32_t /*nColor*/, const common::vxbase::RectI& /*rc*/) {
    throw Platform::Exception(Platform::E_FAIL, "the pixels of this bitmap are fixed");
}

std::vector<std::string> SurfaceTest::CallNames() const {
    std::vector<std::string> names;
    for (const RecordedCall& call : m_pFactory->Calls()) {
        names.emplace_back(NameOf(call.eCall));
    }
    return names;
}

RecordedCall SurfaceTest::LastCall(GraphicsCall eCall) const {
    const auto calls = m_pFactory->CallsOf(eCall);
    if (calls.empty()) {
        ADD_FAILURE() << "no call of " << NameOf(eCall);
        return {};
    }
    return calls.back();
}

std::shared_ptr<Graphics::ID2D1Bitmap> SurfaceTest::MakeBitmap(std::uint32_t nWidth,
                                                               std::uint32_t nHeight,
                                                               std::uint32_t nColor) {
    std::vector<std::uint8_t> bytes(std::size_t{nWidth} * nHeight * 4);
    for (std::size_t nAt = 0; nAt < bytes.size(); nAt += 4) {
        std::memcpy(&bytes[nAt], &nColor, 4); // 0xAARRGGBB lies as B, G, R, A
    }
    return m_pCanvas->GetDeviceContext()->CreateBitmap({nWidth, nHeight}, bytes, nWidth * 4, {});
}

void SurfaceTest::ExpectTold(const std::function<void()>& fnBody, const std::string& strWords) {
    std::vector<std::string> told;
    Canvas().OnFrameFailed = [&](const std::exception_ptr& pFailure) {
        told.push_back(Platform::Describe(pFailure));
    };
    EXPECT_NO_THROW(fnBody());
    ASSERT_EQ(told.size(), 1U);
    EXPECT_NE(told[0].find(strWords), std::string::npos) << told[0];
    Canvas().OnFrameFailed = nullptr;
}

Platform::HRESULT CodeRaisedBy(const std::function<void()>& fnBody) {
    try {
        fnBody();
    } catch (const Platform::Exception& e) {
        return e.HResult();
    }
    return Platform::S_OK;
}

}
