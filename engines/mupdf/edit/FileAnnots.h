// The annotations of a file's pages, by their ids, and what editing needs to know of them.
//
// The entries of a page's list that are objects of their own have their object's number
// for an id, the others one of the page and their place in it; those that are added have
// the id that the edit says. So ids are the same wherever the file is opened, while the
// numbers of added objects may not be.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "engines/mupdf/Guard.h"
#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/edit/AnnotEntry.h"

namespace velko::engines::mupdf {

using ObjectHandle = Handle<pdf_obj, pdf_drop_obj>;

// The list of a page that was edited, in its order, what was taken out included.
struct PageAnnots {
    struct Entry : AnnotEntry {
        // As it stands in the list: a reference, or a copy of the dictionary, which is put
        // nowhere. The library writes into those that it finds in a page.
        ObjectHandle object;
        int nPopup = 0;           // the object number of its popup
        std::int32_t nOwner = -1; // the place of whose popup it is: it goes and comes with that
        bool bTakenOut = false;
    };

    bool bIsPage = false;       // whether the file has such a page at all
    std::int32_t nRotation = 0; // of the page, in quarter turns
    std::vector<Entry> entries;

    Entry* Find(pdf::AnnotId nId); // null for one that it never had
    bool IsShown(const Entry& entry) const;
};

class FileAnnots {
public:
    explicit FileAnnots(OpenedFile& file) : m_file(file) {} // which owns this

    // The page's list as it is now, an element for each entry. Raises
    // `EngineException` for a failed read.
    std::vector<AnnotEntry> List(std::int32_t nPage);
    std::vector<pdf::ListedAnnot> Describe(std::int32_t nPage);

    // For `ApplyEdit`.
    PageAnnots& Edited(std::int32_t nPage);

    // An annotation before it was changed for the first time.
    struct Original {
        ObjectHandle dictionary;
        pdf::AnnotRecord record;
    };
    const Original& OriginalOf(const PageAnnots& page, const PageAnnots::Entry& entry);

private:
    PageAnnots Read(std::int32_t nPage);

    OpenedFile& m_file;
    std::map<std::int32_t, PageAnnots> m_pages; // that were edited
    std::map<pdf::AnnotId, Original> m_originals;
};

}
