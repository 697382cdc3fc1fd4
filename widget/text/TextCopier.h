// Gathers the plain text of a stretch of pages on the task pool, beside what the screen
// needs.
//
// Of several requests the last one counts. What is gathered belongs to the document that
// was shown when it was asked for.
//
// Threads: UI thread only. Errors: a page whose text cannot be read is left out, which
// `Gathered` tells.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Task.h"
#include "widget/text/TextSelection.h"

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class TextCopier : public QObject {
    Q_OBJECT

public:
    ~TextCopier() override { Cancel(); }

    void Begin(velko::pdf::PDFDoc& document, const TextSpan& span);
    void Cancel();
    bool IsRunning() const { return m_bRunning; }

signals:
    void Gathered(const QString& strText, int nUnreadPages);
    void Ended(); // also after a cancellation

private:
    struct Work;

    void Give(const Work& work);
    static concurrency::task<void> Run(QPointer<TextCopier> pSelf, std::shared_ptr<Work> pWork);

    concurrency::cancellation_token_source m_source;
    bool m_bRunning = false;
};

}
