// Saving: the reader's bytes with a line behind them, in as many steps as the script says.
#include <filesystem>
#include <fstream>

#include "document/engine/SaveProgress.h"
#include "platform/storage/StorageFile.h"
#include "tests/support/scripted_engine/ScriptedEditor.h"
#include "tests/support/scripted_engine/ScriptedObjects_p.h"

namespace velko::testing {

namespace {

class ScriptedSave final : public common::Progressive, public common::ISaveProgress {
public:
    ScriptedSave(EnginePtr pEngine, std::string strPath, std::string strBytes, SaveScript script)
        : m_pEngine(std::move(pEngine)),
          m_strPath(std::move(strPath)),
          m_strBytes(std::move(strBytes)),
          m_script(script) {}

    std::int32_t Continue() override {
        if (m_nDone < m_script.nSteps) {
            m_pEngine->Arrive({EngineOp::SaveStep, -1, m_nDone});
            ++m_nDone;
        }
        if (m_nDone < m_script.nSteps) {
            return kToBeContinued;
        }
        if (m_script.nResult == kFinished) {
            Write();
        }
        return m_script.nResult;
    }
    float Share() const override {
        return static_cast<float>(m_nDone) / static_cast<float>(m_script.nSteps);
    }

private:
    void Write() const { // aside first, as an engine does
        std::ofstream(m_strPath + "~", std::ios::binary) << m_strBytes;
        std::filesystem::rename(m_strPath + "~", m_strPath);
    }

    const EnginePtr m_pEngine;
    const std::string m_strPath;
    const std::string m_strBytes;
    const SaveScript m_script;
    std::int32_t m_nDone = 0;
};

std::string ReadAll(common::vxbase::IFileReaderCallback* pReader) {
    std::string strBytes(pReader != nullptr ? pReader->GetSize() : 0, '\0');
    const auto bytes = std::span(reinterpret_cast<std::uint8_t*>(strBytes.data()), strBytes.size());
    if (!strBytes.empty() && !pReader->ReadBlock(bytes, 0, pReader->GetSize())) {
        throw common::EngineException(common::ErrorCode::e_ErrFile, "the file does not answer");
    }
    return strBytes;
}

}

std::shared_ptr<common::Progressive> StartScriptedSave(const EnginePtr& pEngine,
                                                       common::vxbase::IFileReaderCallback* pReader,
                                                       const Windows::Storage::StorageFile& file,
                                                       std::uint64_t nRevision) {
    pEngine->Arrive(EngineOp::StartSaveAs);
    const SaveScript script = pEngine->GetSaveScript();
    if (script.nSteps == 0) {
        return nullptr;
    }
    std::string strBytes = ReadAll(pReader) + "edits " + std::to_string(nRevision) + "\n";
    return std::make_shared<ScriptedSave>(pEngine, file.Path(), std::move(strBytes), script);
}

}
