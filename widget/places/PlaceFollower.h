// Follows the reader's place by its words from one version of a document to the next.
//
// A place that was kept of another version is shown where it was, and looked for once the
// pages stand; when a document is shown anew because its file has changed, it is looked for
// before.
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "component/KeptView.h"
#include "platform/foundation/Geometry.h"
#include "platform/storage/FileVersion.h"
#include "widget/ViewKeeper.h"
#include "widget/places/SnippetSearch.h"
#include "widget/places/SnippetTaker.h"

namespace velko::vkit {

class PlaceFollower : public QObject {
public:
    PlaceFollower(std::shared_ptr<PDFViewCtrl> pControl, PageTexts& texts);

    // What is shown has changed, perhaps; takes no time.
    void Changed() { m_taker.Changed(); }
    // Nothing is looked for any more.
    void Forget();

    // Beside a place on the page that is kept: the words there, as far as they are known.
    void WriteWords(Windows::Foundation::Collections::PropertySet& values,
                    std::int32_t nPage) const;
    // How far what is found is from where it stood on the screen, where the page of the
    // place is shown as it was kept, `dbGrown` times as large: device pixels.
    Windows::Foundation::Point WayTo(const Windows::Foundation::Collections::PropertySet& values,
                                     const FoundPlace& found, double dbGrown) const;

    // --- a document that was opened ---

    // It is shown at the place, which may have been kept of another version of its file.
    void Expect(const KeptView& kept, const Windows::Storage::FileVersion& version);
    // Whether there is a place to be looked for, and `Look` was not called yet.
    bool IsExpecting() const { return m_awaited && !m_bLooking; }
    // `fnFound` hears of a place that is another one than is shown.
    void Look(std::function<void(const FoundPlace& found)> fnFound);
    // While it is looked for, and the reader has not left where it is shown, the place as it
    // was kept. `bFits`: what is shown follows the window's size.
    const KeptView* Awaited(bool bFits) const;
    void EndLooking();

    // --- a document that is shown anew ---

    // Looks in the file for the place that `fnPlace` gives when it is needed.
    void Prepare(const JudgedFile& judged, Platform::SecretText password,
                 std::function<std::optional<KeptView>()> fnPlace, std::function<void()> fnDone);
    // What was found counts for this place only.
    void EndPreparing(const KeptView* pPlace);
    const std::optional<FoundPlace>& Found() const { return m_found; }
    std::int32_t PagesMoved() const;

private:
    const std::shared_ptr<PDFViewCtrl> m_pControl;
    SnippetTaker m_taker;
    SnippetSearch m_search;
    std::optional<KeptView> m_awaited;
    std::optional<ViewKeeper> m_shownAt; // with it
    bool m_bLooking = false;
    std::optional<KeptView> m_sought; // by the preparation
    std::optional<FoundPlace> m_found;
    int m_nPreparation = 0;
};

}
