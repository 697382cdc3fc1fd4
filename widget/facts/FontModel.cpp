#include "widget/facts/FontModel.h"

#include <chrono>
#include <utility>

namespace velko::vkit {

using concurrency::task;
using velko::pdf::IDocumentFacts;
using velko::pdf::PDFDoc;

namespace {

// What one turn on the pool has read.
struct Batch {
    std::set<FontModel::Font> fonts;
    int nEnd = 0; // the page after the last one
};

void AddFontsOf(IDocumentFacts& facts, int nPage, std::set<FontModel::Font>& fonts) {
    try {
        const auto ofPage = facts.GetFonts(nPage);
        fonts.insert(ofPage.begin(), ofPage.end());
    } catch (...) { // a page that cannot be read is told where it is shown
    }
}

// For a while, so that what is found is seen soon and others get their turn.
Batch ReadFrom(PDFDoc& document, int nPage, const concurrency::cancellation_token& token) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kTurn = std::chrono::milliseconds(50);
    auto* const pFacts = dynamic_cast<IDocumentFacts*>(&document);
    const int nPages = pFacts != nullptr ? document.GetPageCount() : nPage;
    const auto end = Clock::now() + kTurn;
    Batch batch{{}, nPage};
    while (batch.nEnd < nPages && (batch.nEnd == nPage || Clock::now() < end)) {
        token.throw_if_canceled();
        AddFontsOf(*pFacts, batch.nEnd++, batch.fonts);
    }
    return batch;
}

}

FontModel::FontModel(std::shared_ptr<PDFDoc> pDocument, QObject* pParent)
    : QAbstractTableModel(pParent) {
    if (pDocument) {
        ReadAll(this, std::move(pDocument), m_source.get_token());
    }
}

FontModel::~FontModel() {
    m_source.cancel();
}

task<void> FontModel::ReadAll(QPointer<FontModel> pThis, std::shared_ptr<PDFDoc> pDocument,
                              concurrency::cancellation_token token) {
    const int nPages = pDocument->GetPageCount();
    int nPage = 0;
    do {
        const auto fnRead = [pDocument, nPage, token] {
            return ReadFrom(*pDocument, nPage, token);
        };
        const auto reading = concurrency::create_task(fnRead, token);
        co_await reading.settled();
        reading.mark_observed();
        if (!pThis || !reading.is_value()) {
            co_return;
        }
        const Batch& batch = reading.get();
        const bool bStuck = batch.nEnd == nPage;
        nPage = bStuck ? nPages : batch.nEnd;
        const std::vector<Font> fonts(batch.fonts.begin(), batch.fonts.end());
        pThis->Take(fonts, nPage, nPage >= nPages);
    } while (pThis && nPage < nPages);
}

void FontModel::Take(const std::vector<Font>& fonts, int nRead, bool bComplete) {
    m_nRead = nRead;
    m_bComplete = bComplete;
    for (const Font& font : fonts) {
        if (m_known.insert(font).second) {
            const int nRow = static_cast<int>(m_fonts.size());
            beginInsertRows({}, nRow, nRow);
            m_fonts.push_back(font);
            endInsertRows();
        }
    }
    emit Grown();
}

QVariant FontModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid() || (nRole != Qt::DisplayRole && nRole != Qt::ToolTipRole)) {
        return {};
    }
    const Font& font = m_fonts[static_cast<std::size_t>(index.row())];
    switch (index.column()) {
        case kName:
            return font.strName.empty() ? QStringLiteral("(no name)")
                                        : QString::fromStdString(font.strName);
        case kKind:
            return QString::fromStdString(font.strKind);
        default:
            return !font.bEmbedded ? QStringLiteral("no")
                   : font.bSubset  ? QStringLiteral("in part")
                                   : QStringLiteral("yes");
    }
}

QVariant FontModel::headerData(int nSection, Qt::Orientation eOrientation, int nRole) const {
    if (eOrientation != Qt::Horizontal || nRole != Qt::DisplayRole) {
        return {};
    }
    return nSection == kName   ? QStringLiteral("Name")
           : nSection == kKind ? QStringLiteral("Kind")
                               : QStringLiteral("Embedded");
}

int FontModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_fonts.size());
}

int FontModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

}
