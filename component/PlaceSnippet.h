// The words that stand at a place of a document, by which the place is found again in
// another version of the document. They have two halves, as one may have been changed.
//
// Threads: values. Units: points of the page that the words were read on.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/PropertyValue.h"

namespace velko::vkit {

struct PlaceSnippet {
    std::string strText; // whole words with one space between them; empty: nothing is known
    double dbX = 0.0;    // where the first letter stands: its top left
    double dbY = 0.0;
    std::int32_t nHalf = 0; // where in the text the second half begins; 0: there is none
    double dbHalfX = 0.0;   // where that stands
    double dbHalfY = 0.0;

    bool IsEmpty() const { return strText.empty(); }
    friend bool operator==(const PlaceSnippet&, const PlaceSnippet&) = default;
};

// To and from a set of settings, which may hold more; `strPrefix` begins the keys. What is
// absent, or cannot be, is not known.
void WriteSnippet(Windows::Foundation::Collections::PropertySet& values,
                  const std::string& strPrefix, const PlaceSnippet& snippet);
PlaceSnippet ReadSnippet(const Windows::Foundation::Collections::PropertySet& values,
                         const std::string& strPrefix);

}
