// How far a save has come, as an engine's progress may tell it.
//
// Threads: those of the progress.
#pragma once

namespace velko::common {

// Asked of what `PDFDoc::StartSaveAs` gives, by a dynamic cast, between two steps.
class ISaveProgress {
public:
    virtual ~ISaveProgress() = default;
    virtual float Share() const = 0; // 0 to 1, never less than before
};

}
