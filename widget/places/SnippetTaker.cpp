#include "widget/places/SnippetTaker.h"

#include <QString>
#include <algorithm>
#include <utility>

#include "viewers/core/Modes.h"
#include "widget/text/TextRange.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::PageText;
using velko::pdf::PDFDoc;
using velko::pdf::TextChar;
using velko::pdf::TextLine;

namespace {

constexpr int kRestMs = 400;
constexpr qsizetype kMost = 80;  // units
constexpr qsizetype kLeast = 10; // letters and digits

bool IsSpace(char32_t nCode) {
    return QChar::isSpace(nCode) || QChar::category(nCode) == QChar::Other_Control;
}

bool IsHyphen(char32_t nCode) {
    return QChar::category(nCode) == QChar::Punctuation_Dash || nCode == 0x00AD;
}

bool IsWithin(const RectF& rc, const TextChar& item) {
    const PointF one = item.quad.ptTopLeft;
    const PointF other = item.quad.ptBottomRight;
    const float fX = (one.X + other.X) / 2.0F;
    const float fY = (one.Y + other.Y) / 2.0F;
    return fX >= rc.Left && fX <= rc.Right && fY >= rc.Bottom && fY <= rc.Top;
}

// -1: none.
std::int32_t FirstSeen(const PageText& text, const RectF& rcSeen) {
    const auto first = std::find_if(
        text.chars.begin(), text.chars.end(),
        [&](const TextChar& item) { return !IsSpace(item.nCode) && IsWithin(rcSeen, item); });
    return first != text.chars.end() ? static_cast<std::int32_t>(first - text.chars.begin()) : -1;
}

// Words of a text from a character on, with the character that each unit comes from.
struct Words {
    QString strText;
    std::vector<std::int32_t> chars;

    void Append(char32_t nCode, std::int32_t nChar) {
        const bool bSpace = IsSpace(nCode);
        if (bSpace && (strText.isEmpty() || strText.back() == u' ')) {
            return;
        }
        const char32_t nKept = bSpace ? U' ' : nCode;
        strText += QString::fromUcs4(&nKept, 1);
        chars.resize(static_cast<std::size_t>(strText.size()), nChar);
    }
    void Cut(qsizetype nLength) {
        strText.truncate(nLength);
        chars.resize(static_cast<std::size_t>(nLength));
    }
};

// The end of a line is a space, unless its last word goes on.
void AppendLine(Words& words, const PageText& text, const TextLine& line, std::int32_t nFrom) {
    std::int32_t nEnd = line.nEnd;
    if (line.bHyphenated && nEnd > line.nFirst &&
        IsHyphen(text.chars[static_cast<std::size_t>(nEnd) - 1].nCode)) {
        --nEnd;
    }
    for (std::int32_t n = std::max(nFrom, line.nFirst); n < nEnd; ++n) {
        words.Append(text.chars[static_cast<std::size_t>(n)].nCode, n);
    }
    if (!line.bHyphenated) {
        words.Append(U' ', line.nEnd);
    }
}

// Whole ones, as far as there are spaces between them.
Words WordsFrom(const PageText& text, std::int32_t nFrom) {
    Words words;
    for (const TextLine& line : text.lines) {
        if (line.nEnd > nFrom && words.strText.size() <= kMost) {
            AppendLine(words, text, line, nFrom);
        }
    }
    if (words.strText.size() > kMost) {
        const qsizetype nSpace = words.strText.lastIndexOf(u' ', kMost);
        words.Cut(nSpace > kMost / 2 ? nSpace : kMost);
    }
    if (words.strText.endsWith(u' ')) {
        words.Cut(words.strText.size() - 1);
    }
    return words;
}

bool IsEnough(const QString& strText) {
    return std::count_if(strText.begin(), strText.end(),
                         [](QChar c) { return c.isLetterOrNumber() || c.isSurrogate(); }) >= kLeast;
}

SeenText ReadText(const std::shared_ptr<PDFDoc>& pDocument, std::int32_t nPage, bool bSet) {
    try {
        const PlacedText own = ReadPlacedText(pDocument, nPage, false);
        return {bSet ? ReadPlacedText(pDocument, nPage, true).pText : own.pText, own.pText};
    } catch (...) { // the place is known by its page
        return {};
    }
}

bool IsSet(PDFViewCtrl& control) {
    return control.GetPageLayoutMode() == LayoutMode::kReflow;
}

RectF SeenOf(PDFViewCtrl& control, std::int32_t nPage) {
    const auto size = control.GetCanvasSize();
    const auto rc = control.DeviceRectToPageRect(nPage, {0.0F, 0.0F, size.Width, size.Height});
    return {rc.X, rc.Y, rc.X + rc.Width, rc.Y + rc.Height};
}

}

PlaceSnippet SnippetOf(const SeenText& text, const RectF& rcSeen) {
    PlaceSnippet snippet;
    if (!text.pShown || !text.pOwn) {
        return snippet;
    }
    const PageText& own = *text.pOwn;
    const std::int32_t nSeen = FirstSeen(*text.pShown, rcSeen);
    if (nSeen < 0 || nSeen >= static_cast<std::int32_t>(own.chars.size())) {
        return snippet;
    }
    const Words words = WordsFrom(own, WordAt(own, nSeen).nFirst);
    if (!IsEnough(words.strText)) {
        return snippet;
    }
    const auto fnPointAt = [&](qsizetype nUnit) {
        const auto nChar = static_cast<std::size_t>(words.chars[static_cast<std::size_t>(nUnit)]);
        return own.chars[nChar].quad.ptTopLeft;
    };
    const qsizetype nHalf = words.strText.indexOf(u' ', words.strText.size() / 2) + 1;
    const PointF ptStart = fnPointAt(0);
    const PointF ptHalf = fnPointAt(nHalf);
    snippet.strText = words.strText.toStdString();
    snippet.dbX = ptStart.X;
    snippet.dbY = ptStart.Y;
    snippet.nHalf = static_cast<std::int32_t>(words.strText.left(nHalf).toUtf8().size());
    snippet.dbHalfX = ptHalf.X;
    snippet.dbHalfY = ptHalf.Y;
    return snippet;
}

concurrency::task<PlaceSnippet> ReadSnippetIn(PDFViewCtrl& control, std::int32_t nPage) {
    const auto pDocument = control.GetPDFDoc();
    if (!control.GetPageScreenRect(nPage)) {
        co_return PlaceSnippet();
    }
    const RectF rcSeen = SeenOf(control, nPage);
    const bool bSet = IsSet(control);
    const auto reading = concurrency::create_task([pDocument, nPage, bSet, rcSeen] {
        return SnippetOf(ReadText(pDocument, nPage, bSet), rcSeen);
    });
    co_return co_await reading;
}

SnippetTaker::SnippetTaker(PDFViewCtrl& control, PageTexts& texts)
    : m_control(control), m_texts(texts) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    m_rest.callOnTimeout(this, [this] {
        if (m_control.IsSharp()) { // else there is a frame to come, and another rest
            WhenKnown({});
        }
    });
}

void SnippetTaker::Forget() {
    ++m_nDocument;
    m_rest.stop();
    m_kept = {};
    m_bReading = false;
    m_waiting.clear();
}

bool SnippetTaker::IsOf(const Kept& kept, std::int32_t nPage) const {
    return kept.nPage == nPage && kept.bSet == IsSet(m_control) &&
           kept.wkDocument.lock() == m_control.GetPDFDoc();
}

SeenText SnippetTaker::TextNow(std::int32_t nPage) const {
    if (!IsSet(m_control) && m_texts.Document() == m_control.GetPDFDoc()) {
        if (const auto pKnown = m_texts.Known(nPage)) {
            return {pKnown, pKnown};
        }
    }
    return IsOf(m_kept, nPage) ? m_kept.text : SeenText();
}

PlaceSnippet SnippetTaker::Now(std::int32_t nPage) const {
    const SeenText text = TextNow(nPage);
    return text.pShown && m_control.GetPageScreenRect(nPage)
               ? SnippetOf(text, SeenOf(m_control, nPage))
               : PlaceSnippet();
}

void SnippetTaker::WhenKnown(std::function<void()> fnThen) {
    const std::int32_t nPage = m_control.GetCurrentPageIndex();
    if (!m_control.GetPDFDoc() || TextNow(nPage).pShown || IsOf(m_kept, nPage)) {
        if (fnThen) {
            fnThen();
        }
        return;
    }
    if (fnThen) {
        m_waiting.push_back(std::move(fnThen));
    }
    if (!std::exchange(m_bReading, true)) {
        Read(this);
    }
}

concurrency::task<void> SnippetTaker::Read(QPointer<SnippetTaker> pSelf) {
    const auto pDocument = pSelf->m_control.GetPDFDoc();
    const std::int32_t nPage = pSelf->m_control.GetCurrentPageIndex();
    const bool bSet = IsSet(pSelf->m_control);
    const int nDocument = pSelf->m_nDocument;
    const auto reading = concurrency::create_task(
        [pDocument, nPage, bSet] { return ReadText(pDocument, nPage, bSet); });
    const SeenText text = co_await reading;
    if (!pSelf || pSelf->m_nDocument != nDocument) {
        co_return;
    }
    pSelf->m_bReading = false;
    pSelf->m_kept = Kept{pDocument, nPage, bSet, text};
    for (const auto& fnThen : std::exchange(pSelf->m_waiting, {})) {
        fnThen();
    }
}

}
