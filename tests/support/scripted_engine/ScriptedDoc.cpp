#include <algorithm>
#include <array>
#include <fstream>

#include "document/engine/DisplayMatrix.h"
#include "platform/storage/StorageFile.h"
#include "tests/support/scripted_engine/ScriptedDoc_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;

namespace {

constexpr std::int32_t kUserPassword = 2;
constexpr std::int32_t kOwnerPassword = 3;

EngineCall PageCall(EngineOp eOp, std::int32_t nPage, std::int32_t nIndex = -1) {
    EngineCall call;
    call.eOp = eOp;
    call.nPage = nPage;
    call.nIndex = nIndex;
    return call;
}

}

ScriptedDoc::ScriptedDoc(std::shared_ptr<EngineScript> pScript,
                         std::shared_ptr<common::vxbase::IFileReaderCallback> pReader)
    : m_pScript(std::move(pScript)), m_counted(m_pScript->m_nDocs), m_pReader(std::move(pReader)) {}

ScriptedDoc::~ScriptedDoc() {
    if (!m_pReader) {
        return;
    }
    try {
        m_pScript->Arrive(PageCall(EngineOp::ReleaseReader, -1));
    } catch (const std::exception&) {
        // A scripted failure here only shows in the log: a destructor cannot raise.
    }
    m_pReader->Release();
}

ErrorCode ScriptedDoc::Load(const std::string& strPassword) {
    try {
        m_pScript->Arrive(PageCall(EngineOp::Load, -1));
    } catch (const EngineException& error) {
        return error.Code();
    }
    if (const auto eScripted = m_pScript->TakeLoadResult();
        eScripted && *eScripted != ErrorCode::e_ErrSuccess) {
        return *eScripted;
    }
    return Parse(strPassword);
}

ErrorCode ScriptedDoc::Parse(const std::string& strPassword) {
    EngineScript::Settings settings = m_pScript->GetSettings();
    if (settings.bLoadReads && !ReadHeadAndEnd()) {
        return ErrorCode::e_ErrFile;
    }
    std::int32_t nType = kNoPassword;
    if (!settings.strUserPassword.empty() || !settings.strOwnerPassword.empty()) {
        if (!settings.strOwnerPassword.empty() && strPassword == settings.strOwnerPassword) {
            nType = kOwnerPassword;
        } else if (strPassword == settings.strUserPassword) {
            nType = kUserPassword;
        } else {
            return ErrorCode::e_ErrPassword;
        }
    }
    if (settings.pages.empty()) {
        return ErrorCode::e_ErrFormat;
    }
    const std::scoped_lock lock(m_mutex);
    m_pages = std::move(settings.pages);
    m_nPasswordType = nType;
    m_nPermissions = nType == kUserPassword ? settings.nPermissions : 0xFFFFFFFFU;
    m_nEncryptionType = settings.nEncryptionType;
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

std::int32_t ScriptedDoc::GetPageCount() const {
    const std::scoped_lock lock(m_mutex);
    return static_cast<std::int32_t>(m_pages.size());
}

std::shared_ptr<pdf::PDFPage> ScriptedDoc::GetPage(std::int32_t nIndex) {
    m_pScript->Arrive(PageCall(EngineOp::GetPage, nIndex));
    const std::scoped_lock lock(m_mutex);
    if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= m_pages.size()) {
        throw EngineException(ErrorCode::e_ErrParam, "the document has no such page");
    }
    return std::make_shared<ScriptedPageObject>(m_pScript, shared_from_this(),
                                                m_pages[static_cast<std::size_t>(nIndex)], nIndex);
}

std::int32_t ScriptedDoc::GetPasswordType() const {
    const std::scoped_lock lock(m_mutex);
    return m_nPasswordType;
}

std::uint32_t ScriptedDoc::GetUserPermissions() const {
    const std::scoped_lock lock(m_mutex);
    return m_nPermissions;
}

std::int32_t ScriptedDoc::GetEncryptionType() const {
    const std::scoped_lock lock(m_mutex);
    return m_nEncryptionType;
}

std::shared_ptr<common::Progressive> ScriptedDoc::StartSaveAs(
    std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t, common::IPauseCallback*) {
    m_pScript->Arrive(PageCall(EngineOp::StartSaveAs, -1));
    const std::vector<std::uint8_t> bytes = m_pScript->GetSettings().savedBytes;
    std::ofstream out(pFile->Path(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        throw EngineException(ErrorCode::e_ErrFile, "the file could not be written");
    }
    return std::make_shared<CountedProgress>(0);
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

ScriptedPageObject::ScriptedPageObject(std::shared_ptr<EngineScript> pScript,
                                       std::shared_ptr<ScriptedDoc> pDoc, ScriptedPage page,
                                       std::int32_t nIndex)
    : m_pScript(std::move(pScript)),
      m_counted(m_pScript->m_nPages),
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
    m_pScript->Arrive(PageCall(EngineOp::StartParse, m_nIndex));
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
    m_pScript->Arrive(PageCall(EngineOp::GetAnnotCount, m_nIndex));
    return static_cast<std::int32_t>(m_page.annots.size());
}

std::shared_ptr<pdf::IAnnot> ScriptedPageObject::GetAnnot(std::int32_t nIndex) {
    m_pScript->Arrive(PageCall(EngineOp::GetAnnot, m_nIndex, nIndex));
    if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= m_page.annots.size()) {
        throw EngineException(ErrorCode::e_ErrParam, "the page has no such annotation");
    }
    const ScriptedAnnot& annot = m_page.annots[static_cast<std::size_t>(nIndex)];
    if (annot.nType == 0) {
        return nullptr;
    }
    return std::make_shared<ScriptedAnnotObject>(annot, m_nIndex, nIndex);
}

std::shared_ptr<pdf::PDFDoc> ScriptedDocFactory::Create(
    std::shared_ptr<common::vxbase::IFileReaderCallback> pReader) {
    m_pScript->Arrive(PageCall(EngineOp::CreateDoc, -1));
    return std::make_shared<ScriptedDoc>(m_pScript, std::move(pReader));
}

}
