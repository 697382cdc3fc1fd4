// The annotations of a scripted document, which hosts may change.
//
// Threads: any.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

class ScriptedEditor : public pdf::IAnnotEditor {
public:
    explicit ScriptedEditor(std::shared_ptr<ScriptedEngine> pEngine)
        : m_pEngine(std::move(pEngine)) {}

    // As the pages have them now; entries that are no annotation included.
    std::vector<ScriptedAnnot> AnnotsOf(std::int32_t nPageIndex) const;

    std::vector<pdf::ListedAnnot> ListAnnots(std::int32_t nPageIndex) override;
    pdf::AnnotId AddAnnot(std::int32_t nPageIndex, const pdf::AnnotRecord& record) override;
    void ChangeAnnot(std::int32_t nPageIndex, pdf::AnnotId nId,
                     const pdf::AnnotRecord& record) override;
    void RemoveAnnot(std::int32_t nPageIndex, pdf::AnnotId nId) override;
    void RestoreAnnot(std::int32_t nPageIndex, pdf::AnnotId nId) override;
    std::uint64_t Revision() const override;

protected:
    void TakePages(const std::vector<ScriptedPage>& pages);

private:
    struct Entry {
        pdf::AnnotId nId = 0;
        ScriptedAnnot annot;
        bool bRemoved = false;
    };

    std::vector<Entry>& Page(std::int32_t nPageIndex);
    Entry& Find(std::int32_t nPageIndex, pdf::AnnotId nId, bool bRemoved);
    // Runs `fnEdit` under the lock; what it returns is an edit.
    template <class F>
    auto Edit(std::int32_t nPageIndex, F fnEdit);

    const std::shared_ptr<ScriptedEngine> m_pEngine;
    mutable std::mutex m_mutex; // guards what follows
    std::vector<std::vector<Entry>> m_pages;
    pdf::AnnotId m_nLastId = 0;
    std::uint64_t m_nRevision = 0;
};

}
