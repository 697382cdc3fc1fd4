// What is known of single pages of the shown document, read on the task pool when
// it is first asked for, and kept: the pages asked for last, as many as have room, and
// whatever was asked for just now, so that no number of pages in sight is read in rounds.
//
// Threads: UI thread only; `fnRead` runs on the pool.
// Errors: a page of which it cannot be read has a value of nothing.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

template <class T>
class PageShelf : public QObject {
public:
    using Doc = velko::pdf::PDFDoc;
    using Reader = std::function<T(const std::shared_ptr<Doc>&, std::int32_t nPage)>;

    // Empty while it is read, which begins here at the latest; `OnRead` tells of the end.
    // What it gives stays as it is, whatever is forgotten here.
    std::shared_ptr<const T> Find(std::int32_t nPage) {
        if (m_entries.find(nPage) == m_entries.end()) {
            Begin(nPage); // the reading may have ended before anybody listens
        }
        const auto it = m_entries.find(nPage);
        if (it == m_entries.end()) {
            return nullptr;
        }
        it->second.nAskedMs = m_clock.elapsed();
        return it->second.pValue;
    }

    // The same of what is there by now; nothing is read for it.
    std::shared_ptr<const T> Peek(std::int32_t nPage) const {
        const auto it = m_entries.find(nPage);
        return it == m_entries.end() ? nullptr : it->second.pValue;
    }

    // The page has changed: what is known of it holds until it is read anew.
    void Renew(std::int32_t nPage) {
        if (m_entries.find(nPage) != m_entries.end()) {
            Begin(nPage);
        }
    }

    // False when the control shows another document than at the call before; what
    // was known is forgotten then.
    bool IsSameDocument() {
        const auto pDocument = m_control.GetPDFDoc();
        if (pDocument && m_wkDocument.lock() == pDocument) {
            return true;
        }
        m_entries.clear();
        m_wkDocument = pDocument;
        return false;
    }
    std::shared_ptr<Doc> Document() const { return m_wkDocument.lock(); }

protected:
    // `szWhat` names it in the debug output.
    PageShelf(PDFViewCtrl& control, const char* szWhat, Reader fnRead)
        : m_control(control), m_strWhat(szWhat), m_fnRead(std::move(fnRead)) {
        m_clock.start();
    }

    PDFViewCtrl& Control() const { return m_control; }
    virtual void OnRead(std::int32_t nPage) = 0;

private:
    static constexpr std::size_t kMostPages = 64;
    static constexpr qint64 kJustNowMs = 2'000;

    struct Entry {
        std::shared_ptr<const T> pValue; // empty while it is read for the first time
        std::uint64_t nReading = 0;      // the one that counts
        qint64 nAskedMs = 0;             // when it was last asked for
    };

    void Begin(std::int32_t nPage) {
        const auto pDocument = Document();
        if (!pDocument) {
            return;
        }
        if (m_entries.size() >= kMostPages && m_entries.find(nPage) == m_entries.end()) {
            MakeRoom();
        }
        const std::uint64_t nReading = ++m_nReadings;
        Entry& entry = m_entries[nPage];
        entry.nReading = nReading;
        entry.nAskedMs = m_clock.elapsed();
        const auto fnRead = [pDocument, nPage, fnRead = m_fnRead, strWhat = m_strWhat]() -> T {
            try {
                return fnRead(pDocument, nPage);
            } catch (...) {
                Platform::Debug::OutputDebugString("the " + strWhat + " of page " +
                                                   std::to_string(nPage) + " could not be read\n");
                return T();
            }
        };
        concurrency::create_task(fnRead).then([pThis = QPointer<PageShelf>(this), nPage,
                                               nReading](const concurrency::task<T>& reading) {
            if (pThis && reading.is_value()) {
                pThis->Take(nPage, nReading, reading.get());
            }
        });
    }

    void MakeRoom() {
        const auto oldest = std::min_element(
            m_entries.begin(), m_entries.end(),
            [](const auto& a, const auto& b) { return a.second.nAskedMs < b.second.nAskedMs; });
        if (m_clock.elapsed() - oldest->second.nAskedMs > kJustNowMs) {
            m_entries.erase(oldest);
        }
    }

    void Take(std::int32_t nPage, std::uint64_t nReading, T value) {
        const auto it = m_entries.find(nPage);
        if (it != m_entries.end() && it->second.nReading == nReading) {
            it->second.pValue = std::make_shared<const T>(std::move(value));
            OnRead(nPage);
        }
    }

    PDFViewCtrl& m_control;
    const std::string m_strWhat;
    const Reader m_fnRead;
    std::weak_ptr<Doc> m_wkDocument; // whose pages these are
    std::map<std::int32_t, Entry> m_entries;
    std::uint64_t m_nReadings = 0; // begun, of whatever document
    QElapsedTimer m_clock;
};

}
