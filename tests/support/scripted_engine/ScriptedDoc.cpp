#include <algorithm>
#include <array>
#include <mutex>
#include <stdexcept>

#include "document/engine/DisplayMatrix.h"
#include "tests/support/scripted_engine/ScriptedObjects_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;

namespace {

constexpr std::int32_t kUserPassword = 2;
constexpr std::int32_t kOwnerPassword = 3;

class ScriptedDoc final : public pdf::PDFDoc,
                          public ScriptedEditor,
                          public std::enable_shared_from_this<ScriptedDoc> {
public:
    using ReaderPtr = std::shared_ptr<common::vxbase::IFileReaderCallback>;

    ScriptedDoc(EnginePtr pEngine, ReaderPtr pReader)
        : ScriptedEditor(pEngine),
          m_pEngine(std::move(pEngine)),
          m_counted(m_pEngine->m_nDocs),
          m_pReader(std::move(pReader)) {}

    ~ScriptedDoc() override {
        if (m_pReader) {
            m_pEngine->Arrive(EngineOp::ReleaseReader);
            m_pReader->Release();
        }
    }

    ErrorCode Load(const std::string& strPassword) override;
    std::shared_ptr<pdf::PDFPage> GetPage(std::int32_t nIndex) override;

    std::int32_t GetPageCount() const override {
        const std::scoped_lock lock(m_mutex);
        return static_cast<std::int32_t>(m_contents.pages.size());
    }
    std::int32_t GetPasswordType() const override {
        const std::scoped_lock lock(m_mutex);
        return m_nPasswordType;
    }
    std::uint32_t GetUserPermissions() const override {
        const std::scoped_lock lock(m_mutex);
        return m_nPasswordType == kUserPassword ? m_contents.nPermissions : 0xFFFFFFFFU;
    }
    std::int32_t GetEncryptionType() const override {
        const std::scoped_lock lock(m_mutex);
        return m_contents.nEncryptionType;
    }
    std::shared_ptr<common::Progressive> StartSaveAs(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t,
        common::IPauseCallback*) override {
        return StartScriptedSave(m_pEngine, m_pReader.get(), *pFile, Revision());
    }

private:
    bool ReadHeadAndEnd();

    EnginePtr m_pEngine;
    ScriptedEngine::Counted m_counted;
    ReaderPtr m_pReader; // may be empty

    mutable std::mutex m_mutex; // guards what follows
    ScriptedEngine::Contents m_contents;
    std::int32_t m_nPasswordType = kNoPassword;
};

ErrorCode ScriptedDoc::Load(const std::string& strPassword) {
    try {
        m_pEngine->Arrive(EngineOp::Load);
    } catch (const EngineException& error) {
        return error.Code();
    }
    const ErrorCode eScripted = m_pEngine->TakeLoadResult();
    if (eScripted != ErrorCode::e_ErrSuccess) {
        return eScripted;
    }
    ScriptedEngine::Contents contents = m_pEngine->GetContents();
    if (contents.bLoadReads && !ReadHeadAndEnd()) {
        return ErrorCode::e_ErrFile;
    }
    std::int32_t nType = kNoPassword;
    if (!contents.strUserPassword.empty()) {
        nType = strPassword == contents.strOwnerPassword  ? kOwnerPassword
                : strPassword == contents.strUserPassword ? kUserPassword
                                                          : 0;
    }
    if (nType == 0) {
        return ErrorCode::e_ErrPassword;
    }
    if (contents.pages.empty()) {
        return ErrorCode::e_ErrFormat;
    }
    const std::scoped_lock lock(m_mutex);
    m_contents = std::move(contents);
    TakePages(m_contents.pages);
    m_nPasswordType = nType;
    return ErrorCode::e_ErrSuccess;
}

bool ScriptedDoc::ReadHeadAndEnd() {
    if (!m_pReader) {
        return false;
    }
    const std::uint32_t nSize = m_pReader->GetSize();
    std::array<std::uint8_t, 64> bytes{};
    const auto nRead = std::min<std::uint32_t>(nSize, bytes.size());
    try {
        return nRead > 0 && m_pReader->ReadBlock(std::span(bytes).first(nRead), 0, nRead) &&
               m_pReader->ReadBlock(std::span(bytes).first(nRead), nSize - nRead, nRead);
    } catch (const std::exception&) {
        return false;
    }
}

std::shared_ptr<pdf::PDFPage> ScriptedDoc::GetPage(std::int32_t nIndex) {
    m_pEngine->Arrive({EngineOp::GetPage, nIndex});
    const std::scoped_lock lock(m_mutex);
    if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= m_contents.pages.size()) {
        throw EngineException(ErrorCode::e_ErrParam, "the document has no such page");
    }
    return std::make_shared<ScriptedPageObject>(
        m_pEngine, shared_from_this(), m_contents.pages[static_cast<std::size_t>(nIndex)], nIndex);
}

class DocFactory final : public pdf::IPDFDocFactory {
public:
    explicit DocFactory(EnginePtr pEngine) : m_pEngine(std::move(pEngine)) {}
    std::shared_ptr<pdf::PDFDoc> Create(ScriptedDoc::ReaderPtr pReader) override {
        m_pEngine->Arrive(EngineOp::CreateDoc);
        return std::make_shared<ScriptedDoc>(m_pEngine, std::move(pReader));
    }

private:
    EnginePtr m_pEngine;
};

}

std::shared_ptr<pdf::IPDFDocFactory> MakeDocFactory(EnginePtr pEngine) {
    return std::make_shared<DocFactory>(std::move(pEngine));
}

std::shared_ptr<pdf::PDFDoc> ScriptedEngine::MakeLoadedDoc() {
    auto pDoc = std::make_shared<ScriptedDoc>(shared_from_this(), nullptr);
    if (pDoc->Load({}) != ErrorCode::e_ErrSuccess) {
        throw std::logic_error("the scripted document does not load");
    }
    return pDoc;
}

// Marks the page as parsed when its last step is done.
class ScriptedPageObject::Parse final : public CountedProgress {
public:
    Parse(std::shared_ptr<ScriptedPageObject> pPage, std::int32_t nSteps)
        : CountedProgress(nSteps), m_pPage(std::move(pPage)) {}
    std::int32_t Continue() override {
        const std::int32_t nState = CountedProgress::Continue();
        if (nState == kFinished) {
            m_pPage->m_bParsed = true;
        }
        return nState;
    }

private:
    std::shared_ptr<ScriptedPageObject> m_pPage;
};

ScriptedPageObject::ScriptedPageObject(EnginePtr pEngine, std::shared_ptr<ScriptedEditor> pDoc,
                                       ScriptedPage page, std::int32_t nIndex)
    : m_pEngine(std::move(pEngine)),
      m_counted(m_pEngine->m_nPages),
      m_pDoc(std::move(pDoc)),
      m_page(std::move(page)),
      m_nIndex(nIndex) {}

float ScriptedPageObject::GetWidth() const {
    const auto& rc = m_page.rcBox;
    return (m_page.nRotation & 1) != 0 ? rc.Top - rc.Bottom : rc.Right - rc.Left;
}

float ScriptedPageObject::GetHeight() const {
    const auto& rc = m_page.rcBox;
    return (m_page.nRotation & 1) != 0 ? rc.Right - rc.Left : rc.Top - rc.Bottom;
}

std::shared_ptr<common::Progressive> ScriptedPageObject::StartParse(std::int32_t,
                                                                    common::IPauseCallback*,
                                                                    std::int32_t) {
    m_pEngine->Arrive({EngineOp::StartParse, m_nIndex});
    auto pParse = std::make_shared<Parse>(shared_from_this(), m_page.nParseSteps);
    if (m_page.nParseSteps == 0) {
        m_bParsed = true;
    }
    return pParse;
}

common::vxbase::Matrix2D ScriptedPageObject::GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                                              std::int32_t nWidth,
                                                              std::int32_t nHeight,
                                                              std::int32_t nRotate) const {
    return pdf::MakeDisplayMatrix(m_page.rcBox, m_page.nRotation, nLeft, nTop, nWidth, nHeight,
                                  nRotate);
}

std::int32_t ScriptedPageObject::GetAnnotCount() {
    m_pEngine->Arrive({EngineOp::GetAnnotCount, m_nIndex});
    const auto nCount = static_cast<std::int32_t>(m_pDoc->AnnotsOf(m_nIndex).size());
    for (std::int32_t nTold = m_nToldAnnots;
         nTold < nCount && !m_nToldAnnots.compare_exchange_weak(nTold, nCount);) {
    }
    return nCount;
}

std::shared_ptr<pdf::IAnnot> ScriptedPageObject::GetAnnot(std::int32_t nIndex) {
    m_pEngine->Arrive({EngineOp::GetAnnot, m_nIndex, nIndex});
    const std::vector<ScriptedAnnot> annots = m_pDoc->AnnotsOf(m_nIndex);
    const auto nCount = static_cast<std::int32_t>(annots.size());
    if (nIndex < 0 || nIndex >= std::max<std::int32_t>(nCount, m_nToldAnnots)) {
        throw EngineException(ErrorCode::e_ErrParam, "the page has no such annotation");
    }
    if (nIndex >= nCount || annots[static_cast<std::size_t>(nIndex)].nType == 0) {
        return nullptr;
    }
    return std::make_shared<ScriptedAnnotObject>(annots[static_cast<std::size_t>(nIndex)], m_nIndex,
                                                 nIndex);
}

}
