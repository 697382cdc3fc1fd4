// The texts that the last step of an asynchronous chain writes when the chain
// did not end with a value.
//
// Threads: any.
#pragma once

#include <string>

namespace velko::vkit {

struct ChainTexts {
    const char* szPlatform; // a platform or engine failure
    const char* szCanceled;
    const char* szOther;
};

// Writes the text for the exception being handled; call it inside a handler.
// True when that exception is the cancelled state.
bool WriteChainOutcome(const ChainTexts& texts);

// The same in the common words, after the place `strWhere` ("Class::Operation").
bool WriteChainOutcome(const std::string& strWhere);

}
