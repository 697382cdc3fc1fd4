#include "tests/support/scripted_engine/ScriptedEditor.h"

#include <algorithm>
#include <array>

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;
using pdf::AnnotId;
using pdf::AnnotRecord;

namespace {

ScriptedAnnot FromRecord(const AnnotRecord& record, std::int32_t nType) {
    constexpr std::uint32_t kOpaque = 0xFF000000U;
    return {nType, record.rcArea, kOpaque | record.nColor.value_or(0xFF0000U)};
}

bool CanBeMade(std::int32_t nType) {
    constexpr std::array<std::int32_t, 10> kKinds = {1, 3, 4, 5, 6, 9, 10, 11, 12, 15};
    return std::find(kKinds.begin(), kKinds.end(), nType) != kKinds.end();
}

}

void ScriptedEditor::TakePages(const std::vector<ScriptedPage>& pages) {
    const std::scoped_lock lock(m_mutex);
    m_pages.clear();
    for (const ScriptedPage& page : pages) {
        auto& entries = m_pages.emplace_back();
        for (const ScriptedAnnot& annot : page.annots) {
            entries.push_back({++m_nLastId, annot});
        }
    }
}

std::vector<ScriptedAnnot> ScriptedEditor::AnnotsOf(std::int32_t nPageIndex) const {
    const std::scoped_lock lock(m_mutex);
    std::vector<ScriptedAnnot> annots;
    for (const Entry& entry : m_pages.at(static_cast<std::size_t>(nPageIndex))) {
        if (!entry.bRemoved) {
            annots.push_back(entry.annot);
        }
    }
    return annots;
}

std::vector<ScriptedEditor::Entry>& ScriptedEditor::Page(std::int32_t nPageIndex) {
    if (nPageIndex < 0 || static_cast<std::size_t>(nPageIndex) >= m_pages.size()) {
        throw EngineException(ErrorCode::e_ErrParam, "the document has no such page");
    }
    return m_pages[static_cast<std::size_t>(nPageIndex)];
}

ScriptedEditor::Entry& ScriptedEditor::Find(std::int32_t nPageIndex, AnnotId nId, bool bRemoved) {
    auto& entries = Page(nPageIndex);
    const auto it = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.nId == nId && entry.bRemoved == bRemoved;
    });
    if (it == entries.end()) {
        throw EngineException(ErrorCode::e_ErrParam, "the page has no such annotation");
    }
    return *it;
}

template <class F>
auto ScriptedEditor::Edit(std::int32_t nPageIndex, F fnEdit) {
    m_pEngine->Arrive({EngineOp::Edit, nPageIndex});
    const std::scoped_lock lock(m_mutex);
    const auto result = fnEdit();
    ++m_nRevision;
    return result;
}

std::vector<pdf::ListedAnnot> ScriptedEditor::ListAnnots(std::int32_t nPageIndex) {
    const std::scoped_lock lock(m_mutex);
    std::vector<pdf::ListedAnnot> listed;
    for (const Entry& entry : Page(nPageIndex)) {
        if (!entry.bRemoved && entry.annot.nType != 0) {
            pdf::ListedAnnot& item = listed.emplace_back();
            item.nId = entry.nId;
            item.record.nType = entry.annot.nType;
            item.record.rcArea = entry.annot.rcArea;
            item.record.nColor = entry.annot.nColor & 0xFFFFFFU;
        }
    }
    return listed;
}

AnnotId ScriptedEditor::AddAnnot(std::int32_t nPageIndex, const AnnotRecord& record) {
    return Edit(nPageIndex, [&] {
        if (!CanBeMade(record.nType)) {
            throw EngineException(ErrorCode::e_ErrUnsupported, "such an annotation is not made");
        }
        Page(nPageIndex).push_back({m_nLastId + 1, FromRecord(record, record.nType)});
        return ++m_nLastId;
    });
}

void ScriptedEditor::ChangeAnnot(std::int32_t nPageIndex, AnnotId nId, const AnnotRecord& record) {
    Edit(nPageIndex, [&] {
        Entry& entry = Find(nPageIndex, nId, false);
        entry.annot = FromRecord(record, entry.annot.nType);
        return nId;
    });
}

void ScriptedEditor::RemoveAnnot(std::int32_t nPageIndex, AnnotId nId) {
    Edit(nPageIndex, [&] { return Find(nPageIndex, nId, false).bRemoved = true; });
}

void ScriptedEditor::RestoreAnnot(std::int32_t nPageIndex, AnnotId nId) {
    Edit(nPageIndex, [&] { return Find(nPageIndex, nId, true).bRemoved = false; });
}

std::uint64_t ScriptedEditor::Revision() const {
    const std::scoped_lock lock(m_mutex);
    return m_nRevision;
}

}
