// How an open ended.
//
// Threads: a record, for one thread at a time.
#pragma once

#include <memory>

#include "document/engine/ErrorCode.h"

namespace velko::vkit {

class VLK_Document;

struct VLK_DocOpenResult {
    // Set whatever the code, so that a password can be tried again; empty only
    // when no file was given.
    std::shared_ptr<VLK_Document> m_pDocument;
    velko::common::ErrorCode m_nErrorCode = velko::common::ErrorCode::e_ErrUnknown;
};

}
