#include "widget/facts/DocFacts.h"

#include "platform/concurrency/Task.h"
#include "platform/system/Debug.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

using velko::pdf::IDocumentFacts;
using velko::pdf::PDFDoc;

namespace {

// Of an engine that tells no facts, what is empty.
template <class T>
T FactOf(PDFDoc& document, T (IDocumentFacts::*fnGet)()) {
    auto* const pFacts = dynamic_cast<IDocumentFacts*>(&document);
    return pFacts != nullptr ? (pFacts->*fnGet)() : T();
}

}

DocFacts::DocFacts(VelkoPdfView& view) : QObject(&view), m_view(view) {
    connect(&view, &VelkoPdfView::StateChanged, this, &DocFacts::FollowDocument);
    connect(&view, &VelkoPdfView::Opened, this, &DocFacts::FollowDocument);
    connect(&view, &VelkoPdfView::ViewChanged, this, &DocFacts::FollowDocument);
    connect(&view, &VelkoPdfView::Painted, this, &DocFacts::ReadLabelsWhenSharp,
            Qt::QueuedConnection);
    FollowDocument();
    ReadLabelsWhenSharp();
}

void DocFacts::FollowDocument() {
    const auto pDocument = m_view.PageCount() > 0 ? m_view.Control()->GetPDFDoc() : nullptr;
    if (pDocument != m_wkDocument.lock() || (!pDocument && m_known.bLabelsAsked)) {
        m_wkDocument = pDocument;
        m_known = {};
        emit Forgotten();
    }
}

template <class T>
void DocFacts::Read(bool Known::*pAsked, std::shared_ptr<const T> Known::*pValue,
                    std::function<T(Doc&)> fnRead, void (DocFacts::*fnTell)()) {
    const auto pDocument = Document();
    if (!pDocument || std::exchange(m_known.*pAsked, true)) {
        return;
    }
    const auto fnWork = [pDocument, fnRead = std::move(fnRead)]() -> std::shared_ptr<const T> {
        try {
            return std::make_shared<const T>(fnRead(*pDocument));
        } catch (...) {
            Platform::Debug::OutputDebugString("a fact of the document could not be read\n");
            return std::make_shared<const T>();
        }
    };
    concurrency::create_task(fnWork).then(
        [pThis = QPointer<DocFacts>(this), pDocument, pValue,
         fnTell](const concurrency::task<std::shared_ptr<const T>>& reading) {
            if (pThis && reading.is_value() && pThis->Document() == pDocument) {
                pThis->m_known.*pValue = reading.get();
                emit(pThis.data()->*fnTell)();
            }
        });
}

std::shared_ptr<const Outline> DocFacts::FindOutline() {
    Read<Outline>(&Known::bOutlineAsked, &Known::pOutline, &Outline::Of, &DocFacts::OutlineRead);
    return m_known.pOutline;
}

std::shared_ptr<const DocFacts::Properties> DocFacts::FindProperties() {
    const auto fnRead = [](Doc& document) {
        return FactOf(document, &IDocumentFacts::GetProperties);
    };
    Read<Properties>(&Known::bPropertiesAsked, &Known::pProperties, fnRead,
                     &DocFacts::PropertiesRead);
    return m_known.pProperties;
}

std::shared_ptr<const DocFacts::Files> DocFacts::FindFiles() {
    const auto fnRead = [](Doc& document) {
        return FactOf(document, &IDocumentFacts::GetAttachedFiles);
    };
    Read<Files>(&Known::bFilesAsked, &Known::pFiles, fnRead, &DocFacts::FilesRead);
    return m_known.pFiles;
}

const DocFacts::PageLabels& DocFacts::Labels() const {
    static const PageLabels s_none;
    return m_known.pLabels ? *m_known.pLabels : s_none;
}

QString DocFacts::LabelOf(int nPage) const {
    const QString strLabel = QString::fromStdString(Labels().LabelOf(nPage)).trimmed();
    return strLabel.isEmpty() ? QString::number(nPage + 1) : strLabel;
}

void DocFacts::ReadLabelsWhenSharp() {
    FollowDocument();
    if (!m_known.bLabelsAsked && m_view.HasInk() && m_view.IsSharp()) {
        const auto fnRead = [](Doc& document) {
            return FactOf(document, &IDocumentFacts::GetPageLabels);
        };
        Read<PageLabels>(&Known::bLabelsAsked, &Known::pLabels, fnRead, &DocFacts::LabelsRead);
    }
}

}
