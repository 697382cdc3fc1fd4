// What was edited in a document since it was opened, as values: enough to edit the file
// again where it is opened anew.
//
// It holds what the edits come to, not their history: an annotation has at most one record
// in it, and one that was taken out and put back has none of both. So it grows with the
// annotations that were touched. Carried out in its order it gives the same document.
//
// Threads: a value; the records are shared and never change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/AnnotEditor.h"

namespace velko::engines::mupdf {

struct AnnotEdit {
    enum class Kind { Add, Change, Remove, Restore };
    Kind eKind = Kind::Add;
    std::int32_t nPage = 0;
    pdf::AnnotId nId = 0;
    pdf::AnnotRecord record; // Add and Change
};

class EditLog {
public:
    using Entry = std::shared_ptr<const AnnotEdit>;

    // An edit that was carried out. May fail for want of memory only.
    void Append(AnnotEdit edit);

    // The annotation's own record is the file's again.
    void ForgetChange(pdf::AnnotId nId);

    const std::vector<Entry>& Entries() const { return m_entries; }

    // The same for a file that is to be written: without what was added and taken out.
    std::vector<Entry> NetEntries() const;

    // Names an annotation that is added; never given twice.
    pdf::AnnotId NewId() { return kFirstAdded + m_nAdded++; }

    // Above all numbers that a file gives its objects.
    static constexpr pdf::AnnotId kFirstAdded = pdf::AnnotId{1} << 40;

private:
    using Kind = AnnotEdit::Kind;

    void ReplaceRecord(AnnotEdit edit);
    void Erase(Kind eKind, const AnnotEdit& edit);
    bool IsTakenOut(const AnnotEdit& edit) const;

    std::vector<Entry> m_entries;
    std::int64_t m_nAdded = 0;
};

}
