// A document on its way into a file, step by step.
//
// The document's file is opened once more, beside the one that is shown, and gets the
// edits that there were when the save began; what it writes is read back before the
// target's file is replaced. So renders and further edits go on meanwhile.
//
// Threads: one at a time, never the UI thread. Letting go of it before its end leaves
// nothing behind.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/IFileReaderCallback.h"
#include "document/engine/Progressive.h"
#include "document/engine/SaveProgress.h"
#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/edit/EditLog.h"
#include "engines/mupdf/save/SaveTarget.h"
#include "platform/foundation/SecretText.h"

namespace velko::engines::mupdf {

// What is to be written, and where. A value.
struct SaveOrder {
    std::shared_ptr<const void> pDocument; // whose reader this is: kept until the end
    std::shared_ptr<common::vxbase::IFileReaderCallback> pReader;
    Platform::MaskedText password;
    std::int32_t nPages = 0;
    std::vector<EditLog::Entry> edits;
    bool bUpdate = false; // behind the document's own bytes, where that can be
    std::shared_ptr<Windows::Storage::StorageFile> pFile;
};

class SaveProgress final : public common::Progressive, public common::ISaveProgress {
public:
    explicit SaveProgress(SaveOrder order) : m_order(std::move(order)) {}

    // Raises `EngineException` with the codes of `PDFDoc::StartSaveAs`; a failure of the
    // platform is nested in it.
    std::int32_t Continue() override;
    float Share() const override { return m_fShare; }

private:
    // A step answers whether it was the last of its kind; it is taken again otherwise.
    using Step = bool (SaveProgress::*)();

    bool OpenTarget();
    bool OpenSource();
    bool Edit();
    bool Copy();
    bool Write();
    bool OpenWritten();
    bool CompareSizes();
    bool LoadEdited();
    bool Commit();

    void TakeStep();
    void LetGo();
    bool IsCopyEnough() const { return m_order.bUpdate && m_order.edits.empty(); }
    void Tell(float fFrom, float fTo, std::size_t nDone, std::size_t nAll);

    static const std::vector<Step>& Steps();

    SaveOrder m_order;
    std::shared_ptr<SaveTarget> m_pTarget;
    std::shared_ptr<OpenedFile> m_pSource; // with the edits; empty where a copy is enough
    std::shared_ptr<OpenedFile> m_pWritten;
    std::size_t m_nStep = 0;
    std::size_t m_nDone = 0; // of the step's parts
    std::int32_t m_nState = kToBeContinued;
    float m_fShare = 0.0F;
};

}
