// Why a document was not saved: what a host asks the reader about, and words for it.
//
// Threads: any.
#pragma once

#include <QString>
#include <exception>
#include <stdexcept>

namespace velko::vkit {

enum class SaveTrouble {
    Other,
    ReadOnly, // the file may not be written: another one can be
    Changed,  // another program has changed the file since
};

struct SaveFailure {
    SaveTrouble eTrouble = SaveTrouble::Other;
    QString strReason; // one or two sentences: what is wrong, what to do
};

// What was written is not the document: for a host's look at it.
class BadSaveException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

SaveFailure ToSaveFailure(const std::exception_ptr& pError);

}
