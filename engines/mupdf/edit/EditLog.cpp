#include "engines/mupdf/edit/EditLog.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velko::engines::mupdf {

void EditLog::Append(AnnotEdit edit) {
    switch (edit.eKind) {
        case Kind::Change:
            ReplaceRecord(std::move(edit));
            break;
        case Kind::Restore:
            Erase(Kind::Remove, edit);
            break;
        default:
            m_entries.push_back(std::make_shared<const AnnotEdit>(std::move(edit)));
            break;
    }
}

// Wherever it stands: whether an annotation is taken out says nothing about its record.
void EditLog::ReplaceRecord(AnnotEdit edit) {
    const auto it = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& pEntry) {
        return pEntry->nId == edit.nId && pEntry->eKind != Kind::Remove;
    });
    if (it == m_entries.end()) {
        m_entries.push_back(std::make_shared<const AnnotEdit>(std::move(edit)));
    } else {
        edit.eKind = (*it)->eKind;
        edit.nPage = (*it)->nPage;
        *it = std::make_shared<const AnnotEdit>(std::move(edit));
    }
}

void EditLog::Erase(Kind eKind, const AnnotEdit& edit) {
    std::erase_if(m_entries, [&](const Entry& pEntry) {
        return pEntry->eKind == eKind && pEntry->nId == edit.nId && pEntry->nPage == edit.nPage;
    });
}

void EditLog::ForgetChange(pdf::AnnotId nId) {
    std::erase_if(m_entries, [nId](const Entry& pEntry) {
        return pEntry->nId == nId && pEntry->eKind == Kind::Change;
    });
}

bool EditLog::IsTakenOut(const AnnotEdit& edit) const {
    return std::any_of(m_entries.begin(), m_entries.end(), [&](const Entry& pEntry) {
        return pEntry->eKind == Kind::Remove && pEntry->nId == edit.nId &&
               pEntry->nPage == edit.nPage;
    });
}

std::vector<EditLog::Entry> EditLog::NetEntries() const {
    std::vector<Entry> entries;
    std::copy_if(
        m_entries.begin(), m_entries.end(), std::back_inserter(entries),
        [this](const Entry& pEntry) { return pEntry->nId < kFirstAdded || !IsTakenOut(*pEntry); });
    return entries;
}

}
