// A document and its pages by script.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "document/engine/PDFDoc.h"
#include "tests/support/scripted_engine/EngineScript_p.h"

namespace velko::testing {

class ScriptedDoc final : public pdf::PDFDoc, public std::enable_shared_from_this<ScriptedDoc> {
public:
    ScriptedDoc(std::shared_ptr<EngineScript> pScript,
                std::shared_ptr<common::vxbase::IFileReaderCallback> pReader);
    ~ScriptedDoc() override;

    common::ErrorCode Load(const std::string& strPassword) override;
    std::int32_t GetPageCount() const override;
    std::shared_ptr<pdf::PDFPage> GetPage(std::int32_t nIndex) override;
    std::int32_t GetPasswordType() const override;
    std::uint32_t GetUserPermissions() const override;
    std::int32_t GetEncryptionType() const override;
    std::shared_ptr<common::Progressive> StartSaveAs(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFlags,
        common::IPauseCallback* pPause) override;

private:
    common::ErrorCode Parse(const std::string& strPassword);
    bool ReadHeadAndEnd();

    std::shared_ptr<EngineScript> m_pScript;
    EngineScript::Counted m_counted;
    std::shared_ptr<common::vxbase::IFileReaderCallback> m_pReader; // may be empty

    mutable std::mutex m_mutex; // guards what follows
    std::vector<ScriptedPage> m_pages;
    std::int32_t m_nPasswordType = kNoPassword;
    std::uint32_t m_nPermissions = 0;
    std::int32_t m_nEncryptionType = 0;
};

class ScriptedPageObject final : public pdf::PDFPage,
                                 public std::enable_shared_from_this<ScriptedPageObject> {
public:
    ScriptedPageObject(std::shared_ptr<EngineScript> pScript, std::shared_ptr<ScriptedDoc> pDoc,
                       ScriptedPage page, std::int32_t nIndex);

    const ScriptedPage& Script() const { return m_page; }
    std::int32_t Index() const { return m_nIndex; }

    float GetWidth() const override;
    float GetHeight() const override;
    std::int32_t GetIndex() const override { return m_nIndex; }
    std::int32_t GetRotation() const override { return m_page.nRotation & 3; }
    common::vxbase::RectF GetBox(std::int32_t) const override { return m_page.rcBox; }
    bool IsParsed() const override { return m_bParsed; }
    std::shared_ptr<common::Progressive> StartParse(std::int32_t nFlags,
                                                    common::IPauseCallback* pPause,
                                                    std::int32_t nReparse) override;
    common::vxbase::Matrix2D GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                              std::int32_t nWidth, std::int32_t nHeight,
                                              std::int32_t nRotate) const override;
    std::int32_t GetAnnotCount() override;
    std::shared_ptr<pdf::IAnnot> GetAnnot(std::int32_t nIndex) override;

private:
    class Parse;

    std::shared_ptr<EngineScript> m_pScript;
    EngineScript::Counted m_counted;
    std::shared_ptr<ScriptedDoc> m_pDoc;
    ScriptedPage m_page;
    std::int32_t m_nIndex;
    std::atomic<bool> m_bParsed = false;
};

class ScriptedAnnotObject final : public pdf::IAnnot {
public:
    ScriptedAnnotObject(ScriptedAnnot annot, std::int32_t nPage, std::int32_t nIndex)
        : m_annot(annot), m_nPage(nPage), m_nIndex(nIndex) {}
    std::int32_t GetType() const override { return m_annot.nType; }
    const ScriptedAnnot& Script() const { return m_annot; }
    std::int32_t Page() const { return m_nPage; }
    std::int32_t Index() const { return m_nIndex; }

private:
    ScriptedAnnot m_annot;
    std::int32_t m_nPage;
    std::int32_t m_nIndex;
};

// A progress that answers "to be continued" `nSteps` times.
class CountedProgress : public common::Progressive {
public:
    explicit CountedProgress(std::int32_t nSteps) : m_nSteps(nSteps) {}
    std::int32_t Continue() override { return m_nSteps-- > 0 ? kToBeContinued : kFinished; }

private:
    std::int32_t m_nSteps;
};

class ScriptedDocFactory final : public pdf::IPDFDocFactory {
public:
    explicit ScriptedDocFactory(std::shared_ptr<EngineScript> pScript)
        : m_pScript(std::move(pScript)) {}
    std::shared_ptr<pdf::PDFDoc> Create(
        std::shared_ptr<common::vxbase::IFileReaderCallback> pReader) override;

private:
    std::shared_ptr<EngineScript> m_pScript;
};

}
