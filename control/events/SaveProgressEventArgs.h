// What `SaveProgressEvent` carries.
//
// Threads: it comes on the UI thread. A value, read-only once built.
#pragma once

#include <memory>
#include <utility>

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class SaveProgressEventArgs {
public:
    SaveProgressEventArgs(std::shared_ptr<velko::pdf::PDFDoc> pDocument, float fDone)
        : Document(std::move(pDocument)), Done(fDone) {}

    const std::shared_ptr<velko::pdf::PDFDoc> Document;
    const float Done; // 0 to 1; never less than before in the same save
};

}
