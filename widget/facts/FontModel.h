// The fonts that a document names, for Qt's views: a row for each, collected page by
// page on the task pool and growing while they come.
//
// Lifetime: what is still to be read is cancelled when it goes. Threads: UI thread only.
// Errors: a page whose fonts cannot be read has none.
#pragma once

#include <QAbstractTableModel>
#include <QPointer>
#include <memory>
#include <set>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class FontModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using Font = velko::pdf::FontFact;
    enum Column { kName, kKind, kEmbedded, kColumns };

    // Begins to read.
    FontModel(std::shared_ptr<velko::pdf::PDFDoc> pDocument, QObject* pParent);
    ~FontModel() override;

    int PagesRead() const { return m_nRead; }
    bool IsComplete() const { return m_bComplete; }

    QVariant data(const QModelIndex& index, int nRole) const override;
    QVariant headerData(int nSection, Qt::Orientation eOrientation, int nRole) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;

signals:
    void Grown(); // more pages are read

private:
    static concurrency::task<void> ReadAll(QPointer<FontModel> pThis,
                                           std::shared_ptr<velko::pdf::PDFDoc> pDocument,
                                           concurrency::cancellation_token token);
    void Take(const std::vector<Font>& fonts, int nRead, bool bComplete);

    std::vector<Font> m_fonts; // in the order in which they came
    std::set<Font> m_known;
    int m_nRead = 0;
    bool m_bComplete = false;
    concurrency::cancellation_token_source m_source;
};

}
