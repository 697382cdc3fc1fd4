// An owner that notes what its document tells it, as "loaded 3", "unloaded 3",
// "rendered 3", "failure of 3", with " off ui" behind it when that came on a pool thread.
//
// Threads: events from any thread; set the handlers before.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "document/IDocumentOwner.h"
#include "document/RenderPageEventArgs.h"
#include "platform/fake/OffUiScope.h"

namespace velko::testing {

class RecordingOwner final : public vkit::IDocumentOwner {
public:
    std::function<void(std::int32_t)> fnOnLoaded;
    std::function<void(std::int32_t)> fnOnUnloaded;
    std::function<void(const vkit::RenderPageEventArgs&)> fnOnRendered;

    void RaisePageLoaded(const std::shared_ptr<pdf::PDFDoc>&, std::int32_t nPageIndex) override {
        Note("loaded ", nPageIndex, fnOnLoaded, nPageIndex);
    }
    void RaisePageUnloaded(const std::shared_ptr<pdf::PDFDoc>&, std::int32_t nPageIndex) override {
        Note("unloaded ", nPageIndex, fnOnUnloaded, nPageIndex);
    }
    void RaisePageFailure(std::int32_t nPageIndex) override {
        Note("failure of ", nPageIndex, std::function<void(std::int32_t)>(), nPageIndex);
    }
    void RaiseSaveProgress(float fDone) override {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_progress.push_back(fDone);
    }
    void RaiseRenderPage(const std::shared_ptr<vkit::RenderPageEventArgs>& pArgs) override {
        Note("rendered ", pArgs->PageIndex, fnOnRendered, *pArgs);
    }

    std::vector<std::string> TakeEvents() {
        const std::lock_guard<std::mutex> lock(m_lock);
        return std::exchange(m_events, {});
    }

    std::vector<float> TakeProgress() {
        const std::lock_guard<std::mutex> lock(m_lock);
        return std::exchange(m_progress, {});
    }

private:
    template <class F, class Arg>
    void Note(const char* szEvent, std::int32_t nPageIndex, const F& fnHandler, const Arg& arg) {
        {
            const std::lock_guard<std::mutex> lock(m_lock);
            m_events.push_back(szEvent + std::to_string(nPageIndex) +
                               (Platform::Fake::OffUiScope::IsActive() ? " off ui" : ""));
        }
        if (fnHandler) {
            fnHandler(arg);
        }
    }

    std::mutex m_lock;
    std::vector<std::string> m_events;
    std::vector<float> m_progress;
};

}
