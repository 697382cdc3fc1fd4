#include "widget/text/TextCopier.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "document/engine/PDFDoc.h"
#include "document/engine/PageText.h"
#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"
#include "widget/text/PlainText.h"

namespace velko::vkit {

using Clock = std::chrono::steady_clock;

namespace {

constexpr auto kTurn = std::chrono::milliseconds(20);

}

struct TextCopier::Work {
    std::shared_ptr<velko::pdf::ITextReader> pReader;
    TextSpan span;
    std::int32_t nPage = 0; // to be read
    concurrency::cancellation_token token;
    QString strText;
    int nUnreadPages = 0;

    bool IsDone() const { return nPage > span.last.nPage; }

    void ReadPage() {
        try {
            const auto pText = pReader->Read(nPage);
            const auto nChars = static_cast<std::int32_t>(pText->chars.size());
            AppendPage(strText, PlainTextOf(*pText, RangeOn(nPage, nChars, span.first, span.last)));
        } catch (...) {
            ++nUnreadPages;
            Platform::Debug::OutputDebugString(
                "the text of page " + std::to_string(nPage) +
                " was not copied: " + Platform::Describe(std::current_exception()) + "\n");
        }
        ++nPage;
    }

    // On a thread of the pool.
    void ReadSome() {
        const auto end = Clock::now() + kTurn;
        while (!IsDone() && !token.is_canceled() && Clock::now() < end) {
            ReadPage();
        }
    }
};

void TextCopier::Begin(velko::pdf::PDFDoc& document, const TextSpan& span) {
    m_source.cancel();
    m_source = {};
    m_bRunning = true;
    const auto token = m_source.get_token();
    auto* const pSource = dynamic_cast<velko::pdf::ITextSource*>(&document);
    Work work{pSource != nullptr ? pSource->NewReader(token.flag()) : nullptr,
              span,
              span.first.nPage,
              token,
              {},
              0};
    work.span.last.nPage =
        work.pReader ? std::min(span.last.nPage, document.GetPageCount() - 1) : -1;
    Run(this, std::make_shared<Work>(std::move(work)));
}

void TextCopier::Cancel() {
    m_source.cancel();
    if (std::exchange(m_bRunning, false)) {
        emit Ended();
    }
}

concurrency::task<void> TextCopier::Run(QPointer<TextCopier> pSelf, std::shared_ptr<Work> pWork) {
    while (!pWork->IsDone() && !pWork->token.is_canceled()) {
        const auto reading = concurrency::create_task([pWork] { pWork->ReadSome(); });
        co_await reading;
    }
    if (pSelf) { // not within the call that asked for it
        QMetaObject::invokeMethod(
            pSelf.data(), [pSelf, pWork] { pSelf->Give(*pWork); }, Qt::QueuedConnection);
    }
}

void TextCopier::Give(const Work& work) {
    const QPointer<TextCopier> pThis(this);
    if (work.token.is_canceled()) {
        return;
    }
    m_bRunning = false;
    emit Gathered(work.strText, work.nUnreadPages);
    if (pThis) {
        emit Ended();
    }
}

}
