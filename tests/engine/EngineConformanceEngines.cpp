#include <array>
#include <cstdio>
#include <string>

#include "engines/mupdf/Register.h"
#include "tests/engine/EngineConformance.h"
#include "tests/support/pdf_writer/PdfWriter.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

namespace {

using common::vxbase::RectF;

std::string ColorOperands(std::uint32_t nColor) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.6f %.6f %.6f", ((nColor >> 16U) & 0xFFU) / 255.0,
                  ((nColor >> 8U) & 0xFFU) / 255.0, (nColor & 0xFFU) / 255.0);
    return text.data();
}

std::string FilledRect(const RectF& rc, std::uint32_t nColor) {
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "%s rg %g %g %g %g re f\n",
                  ColorOperands(nColor).c_str(), rc.Left, rc.Bottom, rc.Right - rc.Left,
                  rc.Top - rc.Bottom);
    return text.data();
}

PdfBox BoxOf(const RectF& rc) {
    return {rc.Left, rc.Bottom, rc.Right, rc.Top};
}

// An annotation of the file for a described square or stamp; its appearance is the next
// extra object.
std::string AnnotOf(const ScriptedAnnot& annot, PdfOptions& options) {
    if (annot.nType == 0) {
        return "null";
    }
    const PdfBox box = BoxOf(annot.rcArea);
    options.extraObjects.push_back(FormObject(box.dbRight - box.dbLeft, box.dbTop - box.dbBottom,
                                              ColorOperands(annot.nColor)));
    const int nForm = kFirstExtraObject + static_cast<int>(options.extraObjects.size()) - 1;
    return AnnotDictionary(annot.nType == 5 ? "Square" : "Stamp", box, nForm);
}

std::string PdfOf(const DocumentDescription& description) {
    PdfOptions options;
    options.strUserPassword = description.strUserPassword;
    options.strOwnerPassword = description.strOwnerPassword;
    std::vector<PdfPage> pages;
    for (const ScriptedPage& described : description.pages) {
        PdfPage page;
        page.mediaBox = BoxOf(described.rcBox);
        page.nRotate = described.nRotation * 90;
        if (described.ePaper == ScriptedPage::Paper::Solid) {
            page.strContent = FilledRect(described.rcBox, described.nColor);
        }
        for (const ScriptedRect& rect : described.rects) {
            page.strContent += FilledRect(rect.rcArea, rect.nColor);
        }
        for (const ScriptedAnnot& annot : described.annots) {
            page.annots.push_back(AnnotOf(annot, options));
        }
        pages.push_back(std::move(page));
    }
    return MakePdf(pages, options);
}

class MuPdfEngine final : public ConformanceEngine {
public:
    MuPdfEngine() { engines::mupdf::RegisterEngine(); }
    std::shared_ptr<MemoryReader> MakeReader(const DocumentDescription& description) override {
        return std::make_shared<MemoryReader>(PdfOf(description));
    }
};

class Scripted final : public ConformanceEngine {
public:
    std::shared_ptr<MemoryReader> MakeReader(const DocumentDescription& description) override {
        m_pEngine->SetPages(description.pages);
        m_pEngine->SetPasswords(description.strUserPassword, description.strOwnerPassword);
        m_pEngine->SetPermissions(0xFFFFFFFCU);
        return std::make_shared<MemoryReader>("the bytes of a document");
    }

private:
    const std::shared_ptr<ScriptedEngine> m_pEngine = std::make_shared<ScriptedEngine>();
    const ScriptedEngine::Registration m_registration{m_pEngine};
};

template <class Engine>
std::unique_ptr<ConformanceEngine> Make() {
    return std::make_unique<Engine>();
}

}

std::vector<ConformanceCase> ConformanceCases() {
    return {{"MuPdf", Make<MuPdfEngine>}, {"Scripted", Make<Scripted>}};
}

}
