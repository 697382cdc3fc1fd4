#include "engines/mupdf/reflow/ExtractedText.h"

#include <algorithm>
#include <cmath>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kAscent = 0.75F; // of a line's box above its baseline, in its size
constexpr float kDescent = 0.25F;
constexpr float kLikePitch = 1.05F;

Direction DirectionOf(fz_point dir) {
    constexpr float kStraight = 0.998F; // within some three degrees
    if (dir.x > kStraight) {
        return Direction::kRight;
    }
    if (dir.y > kStraight) {
        return Direction::kDown;
    }
    if (dir.x < -kStraight) {
        return Direction::kLeft;
    }
    return dir.y < -kStraight ? Direction::kUp : Direction::kOblique;
}

}

float Kept(float f, float fLeast, float fMost) {
    return f >= fLeast ? std::min(f, fMost) : fLeast;
}

fz_rect PageInLists(const PageFacts& facts) {
    const common::vxbase::RectF& rc = facts.rcBox;
    return fz_transform_rect(fz_make_rect(rc.Left, rc.Bottom, rc.Right, rc.Top),
                             facts.mListFromPage);
}

void DropText(fz_context* ctx, fz_stext_page* pText) {
    fz_drop_stext_page(ctx, pText);
}

ExtractedText ExtractText(std::initializer_list<const Drawing*> drawings, const fz_rect& rcPage,
                          fz_cookie* pCookie) {
    fz_context* const ctx = ThreadContext();
    ExtractedText text;
    DeviceHandle device;
    const fz_stext_options options = {FZ_STEXT_PRESERVE_LIGATURES, 1.0F};
    Guard(ctx, [&] {
        text.Out() = fz_new_stext_page(ctx, rcPage);
        device.Out() = fz_new_stext_device(ctx, text.Get(), &options);
    });
    for (const Drawing* pDrawing : drawings) {
        if (pDrawing == nullptr) {
            continue;
        }
        for (const Drawing::Part& part : pDrawing->parts) {
            if (part.list) {
                Leniently([&] {
                    fz_run_display_list(ctx, part.list.Get(), device.Get(), fz_identity,
                                        fz_infinite_rect, pCookie);
                });
            }
        }
    }
    Leniently([&] { fz_close_device(ctx, device.Get()); });
    return text;
}

fz_matrix Upright(Direction eDirection, fz_point dir) {
    switch (eDirection) {
        case Direction::kRight:
            return fz_identity;
        case Direction::kDown:
            return fz_make_matrix(0.0F, -1.0F, 1.0F, 0.0F, 0.0F, 0.0F);
        case Direction::kLeft:
            return fz_make_matrix(-1.0F, 0.0F, 0.0F, -1.0F, 0.0F, 0.0F);
        case Direction::kUp:
            return fz_make_matrix(0.0F, 1.0F, -1.0F, 0.0F, 0.0F, 0.0F);
        default:
            return fz_make_matrix(dir.x, -dir.y, dir.y, dir.x, 0.0F, 0.0F);
    }
}

std::vector<Direction> DirectionsOf(const LettersByDirection& letters) {
    std::vector<Direction> directions = {Direction::kRight, Direction::kDown, Direction::kLeft,
                                         Direction::kUp, Direction::kOblique};
    const auto fnLetters = [&](Direction e) { return letters[static_cast<std::size_t>(e)]; };
    std::erase_if(directions, [&](Direction e) { return fnLetters(e) == 0; });
    std::stable_sort(directions.begin(), directions.end(),
                     [&](Direction one, Direction two) { return fnLetters(one) > fnLetters(two); });
    return directions;
}

LineBox LineCharacters::Read(const fz_stext_line& line) {
    LineBox result;
    result.eDirection = DirectionOf(line.dir);
    m_toUpright = Upright(result.eDirection, line.dir);
    Collect(line);
    if (m_characters.empty()) {
        return result;
    }
    Measure(result);
    result.bRightToLeft = ToLogicalOrder(m_order);
    std::vector<NumberedChar> inOrder;
    inOrder.reserve(m_order.size());
    for (const PlacedCharacter& placed : m_order) {
        inOrder.push_back(m_characters[placed.nIndex]);
    }
    m_characters = std::move(inOrder);
    return result;
}

void LineCharacters::Collect(const fz_stext_line& line) {
    m_characters.clear();
    m_order.clear();
    for (const fz_stext_char* p = line.first_char; p != nullptr; p = p->next) {
        const std::uint32_t nNumber = m_nRead++;
        if (IsOnPage(*p)) {
            const fz_rect rc = fz_rect_from_quad(fz_transform_quad(p->quad, m_toUpright));
            m_order.push_back(
                {static_cast<char32_t>(p->c), (rc.x0 + rc.x1) / 2.0F, m_characters.size()});
            m_characters.push_back({p, nNumber});
        }
    }
}

bool LineCharacters::IsOnPage(const fz_stext_char& c) const {
    const fz_rect rc = fz_rect_from_quad(c.quad);
    return std::isfinite(c.origin.x) && std::isfinite(c.origin.y) && std::isfinite(c.size) &&
           rc.x1 >= m_rcPage.x0 && rc.x0 <= m_rcPage.x1 && rc.y1 >= m_rcPage.y0 &&
           rc.y0 <= m_rcPage.y1;
}

void LineCharacters::Measure(LineBox& line) const {
    std::vector<float> sizes;
    std::vector<float> baselines;
    float fStart = INFINITY;
    float fEnd = -INFINITY;
    float fNarrowest = INFINITY;
    float fWidest = 0.0F;
    bool bOnePitch = true; // as their fonts say, which may be wrong
    for (const auto& [p, nNumber] : m_characters) {
        line.rcOnPage = fz_union_rect(line.rcOnPage, fz_rect_from_quad(p->quad));
        if (IsSpace(static_cast<char32_t>(p->c))) {
            continue;
        }
        const fz_rect rc = fz_rect_from_quad(fz_transform_quad(p->quad, m_toUpright));
        fStart = std::min(fStart, rc.x0);
        fEnd = std::max(fEnd, rc.x1);
        fNarrowest = std::min(fNarrowest, rc.x1 - rc.x0);
        fWidest = std::max(fWidest, rc.x1 - rc.x0);
        bOnePitch = bOnePitch && fz_font_is_monospaced(ThreadContext(), p->font) != 0;
        sizes.push_back(Kept(p->size, kLeastSize, kMostSize));
        baselines.push_back(fz_transform_point(p->origin, m_toUpright).y);
    }
    if (sizes.empty()) {
        return;
    }
    line.bFixedPitch = bOnePitch && fWidest < kLikePitch * fNarrowest;
    std::nth_element(sizes.begin(), sizes.begin() + sizes.size() / 2, sizes.end());
    std::nth_element(baselines.begin(), baselines.begin() + baselines.size() / 2, baselines.end());
    line.fSize = sizes[sizes.size() / 2];
    line.fBaseline = baselines[baselines.size() / 2];
    line.rc = fz_make_rect(fStart, line.fBaseline - kAscent * line.fSize, fEnd,
                           line.fBaseline + kDescent * line.fSize);
}

}
