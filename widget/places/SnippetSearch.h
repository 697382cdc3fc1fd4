// Looks for one place by its words, in the document that is shown or in a file that is to
// be shown next.
//
// Lifetime: ends with this object; nobody waits for what is read just then.
// Threads: UI thread only; the looking is done on the task pool. Errors: none; what cannot
// be read has no words.
#pragma once

#include <QObject>
#include <QPointer>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "platform/concurrency/Task.h"
#include "platform/foundation/SecretText.h"
#include "widget/places/SnippetFinder.h"

namespace velko::vkit {

struct JudgedFile;

class SnippetSearch : public QObject {
public:
    using Then = std::function<void(const std::optional<FoundPlace>& found)>;

    ~SnippetSearch() override { End(); }

    // Each ends what was begun before. `fnThen` hears of the end once, unless it is ended.
    void Begin(std::shared_ptr<velko::pdf::PDFDoc> pDocument, SoughtPlace sought, Then fnThen);
    void BeginIn(const JudgedFile& judged, Platform::SecretText password, SoughtPlace sought,
                 Then fnThen);
    void End();
    bool IsRunning() const { return m_pAbort != nullptr; }

private:
    using Flag = std::shared_ptr<std::atomic<bool>>;
    using FinderPtr = std::shared_ptr<SnippetFinder>;

    static concurrency::task<void> Run(QPointer<SnippetSearch> pSelf,
                                       std::function<FinderPtr(Flag)> fnMake, Then fnThen);

    Flag m_pAbort; // of what is under way
};

// Goes on with it on the task pool to its end.
concurrency::task<void> RunToEnd(std::shared_ptr<SnippetFinder> pFinder);

}
