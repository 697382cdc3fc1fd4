// What the open of a protected document and its password dialog share.
//
// Threads: UI thread only.
#pragma once

#include <memory>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class VLK_Document;

struct VLK_DocOpenRecord {
    using Completion = concurrency::task_completion_event<std::shared_ptr<VLK_DocOpenRecord>>;

    VLK_DocOpenRecord(std::shared_ptr<VLK_Document> pDocument, velko::common::ErrorCode nErrorCode)
        : m_pDocument(std::move(pDocument)), m_nErrorCode(nErrorCode) {}

    // Ends the wait of whoever took a task of `m_completion`, with `pRecord`.
    // The record gives the event away, since the event's task holds the record.
    static void Complete(const std::shared_ptr<VLK_DocOpenRecord>& pRecord) {
        const Completion completion = std::exchange(pRecord->m_completion, Completion());
        completion.set(pRecord);
    }

    std::shared_ptr<VLK_Document> m_pDocument;
    velko::common::ErrorCode m_nErrorCode; // of the open; success once a password was accepted
    Completion m_completion;               // take its task before the dialog ends
};

}
