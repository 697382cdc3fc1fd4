#include "engines/mupdf/reflow/Capture.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/GlyphInk.h"
#include "engines/mupdf/reflow/StyleTable.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr char32_t kUnknown = 0xFFFD;
constexpr float kWideSpace = 0.6F;  // in the text's size
constexpr float kLightest = 150.0F; // of letters on white paper, 255 is white

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
        : m_styles(model), m_recorder(recorder), m_line(rcPage) {}

    // A line without glyphs for one that has nothing to read on the page.
    TextLine Read(const fz_stext_line& line) {
        TextLine result;
        static_cast<LineBox&>(result) = m_line.Read(line);
        m_toUpright = m_line.ToUpright();
        m_bVertical = line.wmode != 0;
        m_places.clear();
        for (const auto& [p, nNumber] : m_line.Characters()) {
            const std::size_t nBefore = result.glyphs.size();
            Append(result, *p);
            for (std::size_t i = nBefore; i < result.glyphs.size(); ++i) {
                result.glyphs[i].nSource = nNumber;
            }
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
    LineCharacters m_line; // at hand
    fz_matrix m_toUpright = fz_identity;
    bool m_bVertical = false;    // the line at hand
    std::vector<Place> m_places; // of the glyphs of the line at hand
    std::map<std::pair<fz_font*, std::int32_t>, fz_rect> m_ink;
};

void CollectLines(CapturedPage& page, const ExtractedText& text, LineReader& reader) {
    ForEachLine(text, [&](const fz_stext_line& extracted, std::size_t) {
        TextLine line = reader.Read(extracted);
        if (!line.glyphs.empty()) {
            page.lines.push_back(std::move(line));
        }
    });
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
        const ExtractedText text =
            ExtractText({model.pContent.get(), model.pAnnots.get()}, rcPage, operation.Cookie());
        operation.ThrowIfAborted();
        LineReader reader(model, recorder, rcPage);
        CollectLines(page, text, reader);
    }
    model.bCutShort = model.bCutShort || operation.IsTimedOut();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw common::EngineException(common::ErrorCode::e_ErrOutOfMemory,
                                      "no memory for the page's text");
    }
    return page;
}

}
