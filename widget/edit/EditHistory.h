// What the reader has done to a document's annotations, to be undone and done again.
//
// A step is one command of the reader: edits as values, which name annotations for as
// long as the document lives. The history carries out nothing; it knows what has to be
// done, and whoever does it tells when it is done.
//
// A point stands for what the document holds between two steps. That a point is saved
// holds wherever the reader goes from it, so that coming back to it is unmodified again.
// What exceeds the bound leaves at the old end, and can no longer be undone.
//
// Threads: values, one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "document/engine/AnnotEditor.h"

namespace velko::vkit {

struct AnnotEdit {
    enum class Kind { Add, Remove, Change };

    Kind eKind = Kind::Add;
    std::int32_t nPage = 0;
    velko::pdf::AnnotId nId = 0;
    velko::pdf::AnnotRecord before; // of a change
    velko::pdf::AnnotRecord after;
};

// On the engine's threads, as `IAnnotEditor` says; raises what it raises.
void Undo(velko::pdf::IAnnotEditor& editor, const AnnotEdit& edit);
void Redo(velko::pdf::IAnnotEditor& editor, const AnnotEdit& edit);

struct EditStep {
    std::string strName; // within "Undo ...", such as "highlight"
    std::vector<AnnotEdit> edits;
};

class EditHistory {
public:
    using Point = std::uint64_t;

    static constexpr std::size_t kMostSteps = 1'000;
    static constexpr std::size_t kMostBytes = std::size_t{16} << 20;

    // The step was done; what had been undone is gone.
    void Did(EditStep step);

    const EditStep* ToUndo() const; // null: nothing
    const EditStep* ToRedo() const;
    void Undone(); // the step of `ToUndo`
    void Redone();

    // Where the document stands now.
    Point Now() const { return m_nNow == 0 ? m_nStart : m_steps[m_nNow - 1].nAfter; }
    // What it held at the point is in its file.
    void Saved(Point nPoint) { m_nSaved = nPoint; }
    bool IsModified() const { return Now() != m_nSaved; }
    // Its file holds something else, whatever the reader goes back to.
    void SavedNowhere() { m_nSaved = kNowhere; }

private:
    static constexpr Point kNowhere = 0;

    struct Done {
        EditStep step;
        Point nAfter = 0;
        std::size_t nBytes = 0;
    };

    void Trim();

    std::deque<Done> m_steps; // done, then undone
    std::size_t m_nNow = 0;   // so many of them are done
    std::size_t m_nBytes = 0;
    Point m_nStart = 1; // before the first step
    Point m_nLast = 1;  // given to a point
    Point m_nSaved = 1;
};

}
