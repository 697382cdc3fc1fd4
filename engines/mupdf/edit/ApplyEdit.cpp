#include "engines/mupdf/edit/ApplyEdit.h"

#include <algorithm>
#include <utility>

#include "engines/mupdf/LoadedPage.h"
#include "engines/mupdf/edit/AnnotKinds.h"
#include "engines/mupdf/edit/AnnotWriting.h"
#include "engines/mupdf/edit/FileAnnots.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;
using Entry = PageAnnots::Entry;
using Kind = AnnotEdit::Kind;

// May throw as the library does.
void PushEntry(fz_context* ctx, pdf_obj* pList, pdf_obj* pEntry) {
    if (pEntry == nullptr) {
        pdf_array_push(ctx, pList, PDF_NULL);
    } else {
        pdf_array_push_drop(ctx, pList, pdf_deep_copy_obj(ctx, pEntry));
    }
}

// One edit of one page.
class Edit {
public:
    Edit(OpenedFile& file, const AnnotEdit& edit)
        : m_file(file), m_edit(edit), m_page(file.Annots().Edited(edit.nPage)) {}

    void Check();
    void CarryOut();
    EditOutcome Outcome() const;

private:
    void CheckChange(const Entry& entry);
    void Add();
    void Change();
    void TakeOut(bool bOut);
    void PutOriginal(Entry& entry, pdf_obj* pOriginal);
    void PutList();
    void DrawAnew(const Entry& entry);

    OpenedFile& m_file;
    const AnnotEdit& m_edit;
    PageAnnots& m_page;
    bool m_bIsOriginal = false;
};

void Edit::Check() {
    if (!m_page.bIsPage) {
        throw EngineException(ErrorCode::e_ErrNotFound, "the file has no such page");
    }
    if (m_edit.eKind == Kind::Add) {
        CheckFields(m_edit.record.nType, m_edit.record, FieldsOf(m_edit.record.nType));
        return;
    }
    const Entry* const pEntry = m_page.Find(m_edit.nId);
    const bool bRestores = m_edit.eKind == Kind::Restore;
    if (pEntry == nullptr || !(bRestores ? pEntry->bTakenOut : m_page.IsShown(*pEntry))) {
        throw EngineException(ErrorCode::e_ErrParam, "the page has no such annotation");
    }
    if (m_edit.eKind == Kind::Change) {
        CheckChange(*pEntry);
    }
}

// What stays as it is may be whatever the file says.
void Edit::CheckChange(const Entry& entry) {
    const auto& original = m_file.Annots().OriginalOf(m_page, entry);
    CheckFields(entry.nKind, m_edit.record,
                DifferingFields(entry.nKind, original.record, m_edit.record));
}

void Edit::CarryOut() {
    switch (m_edit.eKind) {
        case Kind::Add:
            Add();
            break;
        case Kind::Change:
            Change();
            break;
        default:
            TakeOut(m_edit.eKind == Kind::Remove);
            break;
    }
}

void Edit::Add() {
    fz_context* const ctx = ThreadContext();
    const pdf::AnnotRecord& record = m_edit.record;
    ObjectHandle page;
    ObjectHandle dictionary;
    Entry entry;
    entry.nId = m_edit.nId;
    entry.nKind = record.nType;
    m_file.Use([&] {
        page.Out() = m_file.LoadPageReference(ctx, m_edit.nPage);
        dictionary.Out() =
            NewAnnotDictionary(ctx, m_file.Document(), record.nType, page.Get(), m_page.nRotation);
        WriteAnnotFields(ctx, dictionary.Get(), record, FieldsOf(record.nType), m_page.nRotation);
        entry.object.Out() = pdf_add_object(ctx, m_file.Document(), dictionary.Get());
    });
    m_page.entries.push_back(std::move(entry));
    PutList();
    DrawAnew(m_page.entries.back());
}

// From what it was in the file, so that the result does not depend on what it was meanwhile.
void Edit::Change() {
    fz_context* const ctx = ThreadContext();
    Entry& entry = *m_page.Find(m_edit.nId);
    const auto& original = m_file.Annots().OriginalOf(m_page, entry);
    pdf::AnnotRecord record = m_edit.record;
    record.nType = entry.nKind;
    const unsigned nFields = DifferingFields(entry.nKind, original.record, record);
    PutOriginal(entry, original.dictionary.Get());
    m_bIsOriginal = nFields == 0 && entry.nId < EditLog::kFirstAdded;
    m_file.Use(
        [&] { WriteAnnotFields(ctx, entry.object.Get(), record, nFields, m_page.nRotation); });
    if ((nFields & VisibleFieldsOf(entry.nKind)) != 0 && CanBeDrawnAnew(entry.nKind)) {
        DrawAnew(entry);
    }
}

// One that stands in the list itself becomes an object of its own.
void Edit::PutOriginal(Entry& entry, pdf_obj* pOriginal) {
    fz_context* const ctx = ThreadContext();
    ObjectHandle copy;
    ObjectHandle reference;
    m_file.Use([&] {
        copy.Out() = pdf_deep_copy_obj(ctx, pOriginal);
        if (pdf_is_indirect(ctx, entry.object.Get()) != 0) {
            pdf_update_object(ctx, m_file.Document(), pdf_to_num(ctx, entry.object.Get()),
                              copy.Get());
        } else {
            reference.Out() = pdf_add_object(ctx, m_file.Document(), copy.Get());
        }
    });
    if (reference) {
        entry.object = std::move(reference);
        PutList();
    }
}

// Every entry of that id: a list may name an annotation twice.
void Edit::TakeOut(bool bOut) {
    for (Entry& entry : m_page.entries) {
        if (entry.nId == m_edit.nId) {
            entry.bTakenOut = bOut;
        }
    }
    PutList();
}

// Into a list of the page's own: the one that it had may be another page's too.
void Edit::PutList() {
    fz_context* const ctx = ThreadContext();
    ObjectHandle page;
    ObjectHandle list;
    m_file.Use([&] {
        page.Out() = m_file.LoadPageObject(ctx, m_edit.nPage);
        list.Out() = pdf_new_array(ctx, m_file.Document(), static_cast<int>(m_page.entries.size()));
        for (const Entry& entry : m_page.entries) {
            if (m_page.IsShown(entry)) {
                PushEntry(ctx, list.Get(), entry.object.Get());
            }
        }
        pdf_dict_put(ctx, page.Get(), PDF_NAME(Annots), list.Get());
    });
}

void Edit::DrawAnew(const Entry& entry) {
    fz_context* const ctx = ThreadContext();
    m_file.Use([&] {
        pdf_dict_del(ctx, entry.object.Get(), PDF_NAME(AP)); // it may be another's too
        pdf_dict_del(ctx, entry.object.Get(), PDF_NAME(AS));
    });
    const PageHandle page = LoadPage(m_file, m_edit.nPage);
    m_file.Use([&] { DrawAppearance(ctx, page.Get(), pdf_to_num(ctx, entry.object.Get())); });
}

EditOutcome Edit::Outcome() const {
    const auto nShown = std::count_if(m_page.entries.begin(), m_page.entries.end(),
                                      [this](const Entry& entry) { return m_page.IsShown(entry); });
    return {static_cast<std::int32_t>(nShown), m_bIsOriginal};
}

}

EditOutcome ApplyEdit(OpenedFile& file, const AnnotEdit& edit) {
    Edit work(file, edit);
    work.Check();
    try {
        work.CarryOut();
        return work.Outcome();
    } catch (...) {
        file.MarkDamaged();
        throw;
    }
}

void Replay(const std::vector<EditLog::Entry>& edits, OpenedFile& file) {
    for (const EditLog::Entry& pEdit : edits) {
        ApplyEdit(file, *pEdit);
    }
}

}
