#include "engines/mupdf/reflow/Capture.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/GlyphInk.h"
#include "engines/mupdf/reflow/LogicalOrder.h"
#include "engines/mupdf/reflow/StyleTable.h"

namespace velko::engines::mupdf::reflow {

namespace {

void DropText(fz_context* ctx, fz_stext_page* pText) {
    fz_drop_stext_page(ctx, pText);
}
using TextHandle = Handle<fz_stext_page, DropText>;

constexpr float kLeastSize = 0.5F; // points; what is smaller is set as if it had that
constexpr float kMostSize = 2000.0F;
constexpr float kAscent = 0.75F; // of a line's box above its baseline, in its size
constexpr float kDescent = 0.25F;
constexpr char32_t kUnknown = 0xFFFD;
constexpr float kLikePitch = 1.05F;
constexpr float kWideSpace = 0.6F;  // in the text's size
constexpr float kLightest = 150.0F; // of letters on white paper, 255 is white

// A fault within a list leaves out the rest of it and nothing else.
template <class Body>
void Leniently(Body&& body) {
    try {
        Guard(ThreadContext(), std::forward<Body>(body));
    } catch (const LibraryError& error) {
        if (error.Kind() == FZ_ERROR_MEMORY) {
            throw;
        }
    }
}

TextHandle ExtractText(const PageModel& model, const fz_rect& rcPage, fz_cookie* pCookie) {
    fz_context* const ctx = ThreadContext();
    TextHandle text;
    DeviceHandle device;
    const fz_stext_options options = {FZ_STEXT_PRESERVE_LIGATURES, 1.0F};
    Guard(ctx, [&] {
        text.Out() = fz_new_stext_page(ctx, rcPage);
        device.Out() = fz_new_stext_device(ctx, text.Get(), &options);
    });
    ForEachList(model, [&](fz_display_list* pList) {
        Leniently([&] {
            fz_run_display_list(ctx, pList, device.Get(), fz_identity, fz_infinite_rect, pCookie);
        });
    });
    Leniently([&] { fz_close_device(ctx, device.Get()); });
    return text;
}

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

// Letters that are too light for white paper become darker.
std::uint32_t Readable(int nColor) {
    std::uint32_t nReadable = 0;
    const auto fnChannel = [&](unsigned nShift) {
        return static_cast<float>((static_cast<unsigned>(nColor) >> nShift) & 0xFFU);
    };
    const float fLight = 0.3F * fnChannel(16) + 0.59F * fnChannel(8) + 0.11F * fnChannel(0);
    const float fFactor = fLight > 240.0F ? 0.0F : fLight > kLightest ? kLightest / fLight : 1.0F;
    for (const unsigned nShift : {0U, 8U, 16U}) {
        nReadable |= static_cast<std::uint32_t>(fnChannel(nShift) * fFactor) << nShift;
    }
    return nReadable;
}

float Kept(float f, float fLeast, float fMost) {
    return f >= fLeast ? std::min(f, fMost) : fLeast; // not a number is the least
}

// Type 3 fonts choose their own unit; their box tells what a letter's height is.
float UnitOf(fz_font* pFont) {
    if (pFont->t3procs == nullptr) {
        return 1.0F;
    }
    const float fHeight = pFont->bbox.y1 - pFont->bbox.y0;
    const bool bLikely = fHeight > 0.5F && fHeight < 2.5F;
    return bLikely || !(fHeight > 1.0E-4F && fHeight < 1.0E4F) ? 1.0F : fHeight / 1.2F;
}

class LineReader {
public:
    LineReader(PageModel& model, GlyphRecorder& recorder, const fz_rect& rcPage)
        : m_styles(model), m_recorder(recorder), m_rcPage(rcPage) {}

    // A line without glyphs for one that has nothing to read on the page.
    TextLine Read(const fz_stext_line& line) {
        TextLine result;
        result.eDirection = DirectionOf(line.dir);
        m_toUpright = Upright(result.eDirection, line.dir);
        m_bVertical = line.wmode != 0;
        CollectCharacters(line);
        if (m_characters.empty()) {
            return result;
        }
        MeasureLine(result);
        result.bRightToLeft = ToLogicalOrder(m_order);
        m_places.clear();
        for (const PlacedCharacter& placed : m_order) {
            Append(result, *m_characters[placed.nIndex]);
        }
        if (!result.glyphs.empty() && IsSpace(result.glyphs.back().nUnicode)) {
            result.glyphs.pop_back();
        }
        KeepPlaces(result.glyphs);
        return result;
    }

private:
    struct Place { // of a glyph along the line
        float fStart = 0.0F;
        float fEnd = 0.0F;
        float fOrigin = 0.0F;
    };

    void CollectCharacters(const fz_stext_line& line) {
        m_characters.clear();
        m_order.clear();
        for (const fz_stext_char* p = line.first_char; p != nullptr; p = p->next) {
            if (IsOnPage(*p)) {
                const fz_rect rc = fz_rect_from_quad(fz_transform_quad(p->quad, m_toUpright));
                m_order.push_back(
                    {static_cast<char32_t>(p->c), (rc.x0 + rc.x1) / 2.0F, m_characters.size()});
                m_characters.push_back(p);
            }
        }
    }

    bool IsOnPage(const fz_stext_char& c) const {
        const fz_rect rc = fz_rect_from_quad(c.quad);
        return std::isfinite(c.origin.x) && std::isfinite(c.origin.y) && std::isfinite(c.size) &&
               rc.x1 >= m_rcPage.x0 && rc.x0 <= m_rcPage.x1 && rc.y1 >= m_rcPage.y0 &&
               rc.y0 <= m_rcPage.y1;
    }

    void MeasureLine(TextLine& line) {
        std::vector<float> sizes;
        std::vector<float> baselines;
        line.rc = fz_empty_rect;
        float fStart = INFINITY;
        float fEnd = -INFINITY;
        float fNarrowest = INFINITY;
        float fWidest = 0.0F;
        bool bOnePitch = true; // as their fonts say, which may be wrong
        for (const fz_stext_char* p : m_characters) {
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
        std::nth_element(baselines.begin(), baselines.begin() + baselines.size() / 2,
                         baselines.end());
        line.fSize = sizes[sizes.size() / 2];
        line.fBaseline = baselines[baselines.size() / 2];
        line.rc = fz_make_rect(fStart, line.fBaseline - kAscent * line.fSize, fEnd,
                               line.fBaseline + kDescent * line.fSize);
    }

    void Append(TextLine& line, const fz_stext_char& c) {
        const auto nUnicode = static_cast<char32_t>(c.c);
        if (IsSpace(nUnicode)) {
            AppendSpace(line);
            return;
        }
        KeepSpace(line, c);
        // The extraction gives a sign of a vertical line the place where it begins.
        const fz_point ptDrawn = m_bVertical ? c.quad.lr : c.origin;
        const RecordedGlyph* const pRecorded = m_recorder.Take(ptDrawn);
        if (pRecorded == nullptr && m_recorder.HasAt(ptDrawn) && !line.glyphs.empty()) {
            line.glyphs.push_back({nUnicode, Glyph::kNone, line.glyphs.back().nStyle, true});
        } else if (nUnicode == kUnknown && pRecorded != nullptr && !HasInk(*pRecorded)) {
            AppendSpace(line); // of a font that does not say what its glyphs are
            return;
        } else {
            line.glyphs.push_back(MakeGlyph(line, c, nUnicode, pRecorded));
            NoteOperator(line, c, pRecorded);
        }
        m_places.resize(line.glyphs.size());
        m_places.back() = PlaceOf(c);
    }

    void AppendSpace(TextLine& line) {
        if (!line.glyphs.empty() && !IsSpace(line.glyphs.back().nUnicode)) {
            line.glyphs.push_back({U' ', Glyph::kNone, line.glyphs.back().nStyle, false});
        }
    }

    // A space knows how wide it is on the page when that may mean something.
    void KeepSpace(TextLine& line, const fz_stext_char& c) const {
        Glyphs& glyphs = line.glyphs;
        if (glyphs.size() < 2 || !IsSpace(glyphs.back().nUnicode)) {
            return;
        }
        const Place place = PlaceOf(c);
        const float fGap = place.fStart - m_places[glyphs.size() - 2].fEnd;
        if (line.bFixedPitch) {
            KeepPitch(glyphs, fGap, place.fEnd - place.fStart);
        } else if (fGap > kWideSpace * c.size) {
            glyphs.back().nUnicode = kWideGap;
            KeepRoom(glyphs.back(), fGap);
        }
    }

    // In a listing as many spaces as letters would have room, and as wide.
    void KeepPitch(Glyphs& glyphs, float fGap, float fPitch) const {
        constexpr float kMost = 60.0F;
        const float fSpaces = std::round(fGap / fPitch);
        KeepRoom(glyphs.back(), fPitch);
        if (fSpaces > 1.0F && fSpaces < kMost) {
            glyphs.insert(glyphs.end(), static_cast<std::size_t>(fSpaces) - 1,
                          Glyph(glyphs.back()));
        }
    }

    // Its size says little about what such a sign takes. Many fonts of formulas do not
    // say what their signs are; those that are higher than letters may be such ones.
    void NoteOperator(TextLine& line, const fz_stext_char& c, const RecordedGlyph* pRecorded) {
        constexpr float kHigh = 0.95F; // of the size
        const auto nUnicode = static_cast<char32_t>(c.c);
        if (pRecorded == nullptr || (nUnicode != kUnknown && !IsOperator(nUnicode))) {
            return;
        }
        const fz_matrix shape = fz_concat(pRecorded->shape, m_toUpright);
        const fz_rect rc = fz_transform_rect(GlyphInk(*pRecorded), shape);
        if (nUnicode != kUnknown || rc.y1 - rc.y0 > kHigh * c.size) {
            const fz_point pt = fz_transform_point(c.origin, m_toUpright);
            line.operators.push_back(fz_translate_rect(rc, pt.x, pt.y));
        }
    }

    bool HasInk(const RecordedGlyph& glyph) {
        const fz_rect rc = GlyphInk(glyph);
        return rc.x1 > rc.x0 && rc.y1 > rc.y0;
    }

    // In the font's units. What cannot be told is taken for something.
    fz_rect GlyphInk(const RecordedGlyph& glyph) {
        const auto [it, bNew] = m_ink.try_emplace({glyph.pFont, glyph.nGlyph}, fz_unit_rect);
        if (bNew) {
            try {
                it->second = InkOf(glyph.pFont, glyph.nGlyph, fz_identity);
            } catch (const LibraryError&) {
                // It is drawn as it can be.
            }
        }
        return it->second;
    }

    Place PlaceOf(const fz_stext_char& c) const {
        const fz_rect rc = fz_rect_from_quad(fz_transform_quad(c.quad, m_toUpright));
        return {rc.x0, rc.x1, fz_transform_point(c.origin, m_toUpright).x};
    }

    // Letters of a script that joins them, and accents that are glyphs of their own,
    // stand to their neighbours as on the page: a font's widths do not tell how.
    void KeepPlaces(Glyphs& glyphs) {
        for (std::size_t i = 0; i < glyphs.size(); ++i) {
            if (i > 0 && IsWithinLeft(glyphs, i)) {
                KeepRoom(glyphs[i], m_places[i - 1].fOrigin - m_places[i].fOrigin);
            } else if (IsAccent(glyphs[i].nUnicode)) {
                i = KeepAccent(glyphs, i);
            }
        }
    }

    // Within a word that runs to the left.
    static bool IsWithinLeft(const Glyphs& glyphs, std::size_t i) {
        const auto fnRunsLeft = [](const Glyph& glyph) {
            return IsRightToLeft(glyph.nUnicode) || IsMark(glyph.nUnicode) ||
                   glyph.nUnicode == kUnknown;
        };
        return !glyphs[i].bNoRoom && fnRunsLeft(glyphs[i]) && fnRunsLeft(glyphs[i - 1]) &&
               (IsRightToLeft(glyphs[i].nUnicode) || IsRightToLeft(glyphs[i - 1].nUnicode));
    }

    // An accent that comes before its letter changes places with it, so that the letter
    // stands where the word goes on. Returns where the accent is then.
    std::size_t KeepAccent(Glyphs& glyphs, std::size_t i) {
        if (i + 1 < glyphs.size() && StandsOver(glyphs, i, i + 1)) {
            std::swap(glyphs[i], glyphs[i + 1]);
            std::swap(m_places[i], m_places[i + 1]);
            ++i;
        } else if (i == 0 || !StandsOver(glyphs, i, i - 1)) {
            return i;
        }
        const bool bAfter = i + 1 < glyphs.size() && !IsSpace(glyphs[i + 1].nUnicode);
        const float fNext = bAfter ? m_places[i + 1].fOrigin : m_places[i - 1].fEnd;
        KeepRoom(glyphs[i - 1], m_places[i].fOrigin - m_places[i - 1].fOrigin);
        KeepRoom(glyphs[i], fNext - m_places[i].fOrigin);
        return i;
    }

    // A slanted letter has its accent beside its middle.
    bool StandsOver(const Glyphs& glyphs, std::size_t nAccent, std::size_t nLetter) const {
        constexpr float kBeside = 0.3F; // of the letter's width
        const Place& letter = m_places[nLetter];
        const float fMiddle = (m_places[nAccent].fStart + m_places[nAccent].fEnd) / 2.0F;
        const float fBeside = kBeside * (letter.fEnd - letter.fStart);
        return IsLetter(glyphs[nLetter].nUnicode) && fMiddle > letter.fStart - fBeside &&
               fMiddle < letter.fEnd + fBeside;
    }

    void KeepRoom(Glyph& glyph, float fRoom) const {
        constexpr float kMost = 3.0F; // in its size
        const float fRelative = fRoom / m_styles.At(glyph.nStyle).fSize;
        if (std::abs(fRelative) <= kMost) {
            glyph.nRoom = static_cast<std::int16_t>(std::lround(fRelative * 1000.0F));
        }
    }

    Glyph MakeGlyph(const TextLine& line, const fz_stext_char& c, char32_t nUnicode,
                    const RecordedGlyph* pRecorded) {
        Style style;
        style.nColor = Readable(c.color);
        style.fSize = Kept(c.size, kLeastSize, kMostSize);
        style.fRise = RiseOf(line, c);
        const bool bOwn = pRecorded != nullptr && pRecorded->bVisible &&
                          (pRecorded->nGlyph != 0 || pRecorded->pFont->t3procs != nullptr);
        if (!bOwn) {
            const StandIn standIn = FindStandIn(c.font, nUnicode);
            if (standIn.pFont != nullptr) {
                style.nFont = m_styles.FontIndex(standIn.pFont);
                return {nUnicode, standIn.nGlyph, m_styles.Index(style), false};
            }
        }
        if (pRecorded == nullptr || (!bOwn && !pRecorded->bVisible)) {
            style.nFont = m_styles.FontIndex(c.font);
            return {nUnicode, Glyph::kNone, m_styles.Index(style), false};
        }
        if (m_bVertical) {
            return LyingGlyph(style, c.font, nUnicode, *pRecorded);
        }
        TakeShape(style, *pRecorded);
        style.nFont = m_styles.FontIndex(pRecorded->pFont);
        return {nUnicode, pRecorded->nGlyph, m_styles.Index(style), false};
    }

    // Signs of vertical text have shapes of their own there, which do not fit a line;
    // a font that is there in part may lack those that do.
    Glyph LyingGlyph(Style style, fz_font* pLike, char32_t nUnicode, const RecordedGlyph& drawn) {
        RecordedGlyph lying = drawn;
        lying.nGlyph = GlyphFor(drawn.pFont, nUnicode);
        const bool bHas = lying.nGlyph > 0 && HasInk(lying);
        const StandIn standIn = bHas ? StandIn() : FindStandIn(pLike, nUnicode);
        if (standIn.pFont != nullptr) {
            style.nFont = m_styles.FontIndex(standIn.pFont);
            return {nUnicode, standIn.nGlyph, m_styles.Index(style), false};
        }
        TakeShape(style, drawn);
        style.nFont = m_styles.FontIndex(drawn.pFont);
        return {nUnicode, bHas ? lying.nGlyph : drawn.nGlyph, m_styles.Index(style), false};
    }

    // A raised or lowered sign; what little a line wavers is none.
    float RiseOf(const TextLine& line, const fz_stext_char& c) const {
        const float fRise = line.fBaseline - fz_transform_point(c.origin, m_toUpright).y;
        return std::abs(fRise) > 0.08F * line.fSize ? Kept(fRise, -line.fSize, line.fSize) : 0.0F;
    }

    void TakeShape(Style& style, const RecordedGlyph& glyph) const {
        const fz_matrix m = fz_concat(glyph.shape, m_toUpright);
        const float fWidth = std::hypot(m.a, m.b);
        const float fHeight = std::abs(m.a * m.d - m.b * m.c) / fWidth;
        if (!(fWidth > 0.0F) || !(fHeight > 0.0F)) {
            return;
        }
        const float fUnit = UnitOf(glyph.pFont);
        style.fSize = Kept(fHeight * fUnit, kLeastSize, kMostSize);
        style.fToFont = 1.0F / fUnit;
        style.fStretch = Kept(fWidth / fHeight, 0.4F, 2.5F);
        style.fSlant = Kept((m.c * m.a + m.d * m.b) / fWidth / fHeight, -0.5F, 0.5F);
    }

    StyleTable m_styles;
    GlyphRecorder& m_recorder;
    fz_rect m_rcPage;
    fz_matrix m_toUpright = fz_identity;
    bool m_bVertical = false;                       // the line at hand
    std::vector<const fz_stext_char*> m_characters; // of the line at hand
    std::vector<PlacedCharacter> m_order;
    std::vector<Place> m_places; // of the glyphs of the line at hand
    std::map<std::pair<fz_font*, std::int32_t>, fz_rect> m_ink;
};

void CollectLines(CapturedPage& page, const fz_stext_page& text, LineReader& reader) {
    for (const fz_stext_block* pBlock = text.first_block; pBlock != nullptr;
         pBlock = pBlock->next) {
        if (pBlock->type != FZ_STEXT_BLOCK_TEXT) {
            continue;
        }
        for (const fz_stext_line* pLine = pBlock->u.t.first_line; pLine != nullptr;
             pLine = pLine->next) {
            TextLine line = reader.Read(*pLine);
            if (!line.glyphs.empty()) {
                page.lines.push_back(std::move(line));
            }
        }
    }
}

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

CapturedPage CapturePage(PageModel& model, const fz_rect& rcPage, Operation& operation) {
    fz_context* const ctx = ThreadContext();
    const AllocationWatch watch;
    CapturedPage page;
    GlyphRecorder recorder;
    ForEachList(model, [&](fz_display_list* pList) {
        Leniently([&] { recorder.Run(ctx, pList, operation.Cookie()); });
    });
    operation.ThrowIfAborted();
    recorder.Sort();
    page.artwork = recorder.Artwork();
    page.bars = recorder.Bars();
    page.bTooMuch = recorder.IsFull();
    if (!page.bTooMuch && recorder.GlyphCount() != 0) {
        const TextHandle text = ExtractText(model, rcPage, operation.Cookie());
        operation.ThrowIfAborted();
        LineReader reader(model, recorder, rcPage);
        CollectLines(page, *text.Get(), reader);
    }
    model.bCutShort = model.bCutShort || operation.IsTimedOut();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw common::EngineException(common::ErrorCode::e_ErrOutOfMemory,
                                      "no memory for the page's text");
    }
    return page;
}

}
