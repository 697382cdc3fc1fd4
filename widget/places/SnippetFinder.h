// Finds places that were kept by their words in a document that has changed since: from
// the page that each was on outwards, the nearest page with all of the words, else the
// nearest with the longer half of them, else with the other.
//
// It is gone in slices of a few milliseconds, so that no render waits long for a thread of
// the pool, and is bound by pages and by time.
// Threads: made anywhere, used by one at a time; `Run` not on the UI thread. Setting the
// flag ends it from any thread. Errors: none; a page whose text cannot be read has none.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "component/PlaceSnippet.h"
#include "document/engine/PageText.h"
#include "widget/search/SearchPattern.h"
#include "widget/search/SearchTexts.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

struct SoughtPlace {
    std::int32_t nPage = 0; // in the version that it was kept in
    PlaceSnippet snippet;
};

// Where words that were found stood, and where they stand: points of the pages.
struct FoundPlace {
    std::int32_t nPage = 0; // now
    velko::common::vxbase::PointF ptThen;
    velko::common::vxbase::PointF ptNow;
};

class SnippetFinder {
public:
    using AbortFlag = velko::pdf::ITextSource::AbortFlag;
    struct Limits {
        std::int32_t nMostPages = 1'000; // for each place
        std::chrono::milliseconds longest{3'000};
    };

    SnippetFinder(std::shared_ptr<velko::pdf::PDFDoc> pDocument, std::vector<SoughtPlace> sought,
                  AbortFlag pAbort, const Limits& limits);
    ~SnippetFinder();

    // Goes on for a while; false: it has ended.
    bool Run();
    // For each place, once it has ended; what a limit or the flag has cut off is not found.
    const std::vector<std::optional<FoundPlace>>& Found() const { return m_found; }

private:
    struct Piece;
    using Clock = std::chrono::steady_clock;
    using TextPtr = std::shared_ptr<const velko::pdf::PageText>;

    void Begin();
    void End();
    std::optional<std::int32_t> NextPage();
    bool LookAt(std::int32_t nPage);
    bool LookFor(Piece& piece, std::int32_t nPage, const SearchText& text);
    TextPtr Read(std::int32_t nPage);
    SearchTexts::Text TextOf(std::int32_t nPage);

    const std::shared_ptr<velko::pdf::PDFDoc> m_pDocument;
    const std::vector<SoughtPlace> m_sought;
    const AbortFlag m_pAbort;
    const std::int32_t m_nMostPages;
    const Clock::time_point m_deadline;
    const std::int32_t m_nPages;
    std::shared_ptr<velko::pdf::ITextReader> m_pReader; // empty: the engine has no text
    SearchTexts m_texts;
    std::vector<std::optional<FoundPlace>> m_found; // of those that are done
    std::vector<std::unique_ptr<Piece>> m_pieces;   // of the next one, the best first
    std::int32_t m_nStep = 0;                       // of its way
    std::int32_t m_nLookedAt = 0;                   // pages on it
};

}
