#include "widget/edit/EditHistory.h"

#include <numeric>
#include <utility>

namespace velko::vkit {

using velko::pdf::AnnotRecord;
using velko::pdf::IAnnotEditor;

namespace {

std::size_t BytesOf(const AnnotRecord& record) {
    std::size_t nBytes = record.quads.size() * sizeof(velko::pdf::TextQuad) +
                         record.strContents.size() + record.strAuthor.size();
    for (const auto& stroke : record.strokes) {
        nBytes += stroke.size() * sizeof(stroke[0]);
    }
    return nBytes;
}

std::size_t BytesOf(const EditStep& step) {
    return std::accumulate(step.edits.begin(), step.edits.end(), sizeof(EditStep),
                           [](std::size_t nBytes, const AnnotEdit& edit) {
                               return nBytes + sizeof(AnnotEdit) + BytesOf(edit.before) +
                                      BytesOf(edit.after);
                           });
}

}

void Undo(IAnnotEditor& editor, const AnnotEdit& edit) {
    switch (edit.eKind) {
        case AnnotEdit::Kind::Add:
            editor.RemoveAnnot(edit.nPage, edit.nId);
            break;
        case AnnotEdit::Kind::Remove:
            editor.RestoreAnnot(edit.nPage, edit.nId);
            break;
        case AnnotEdit::Kind::Change:
            editor.ChangeAnnot(edit.nPage, edit.nId, edit.before);
            break;
    }
}

void Redo(IAnnotEditor& editor, const AnnotEdit& edit) {
    switch (edit.eKind) {
        case AnnotEdit::Kind::Add:
            editor.RestoreAnnot(edit.nPage, edit.nId);
            break;
        case AnnotEdit::Kind::Remove:
            editor.RemoveAnnot(edit.nPage, edit.nId);
            break;
        case AnnotEdit::Kind::Change:
            editor.ChangeAnnot(edit.nPage, edit.nId, edit.after);
            break;
    }
}

void EditHistory::Did(EditStep step) {
    while (m_steps.size() > m_nNow) {
        m_nBytes -= m_steps.back().nBytes;
        m_steps.pop_back();
    }
    const std::size_t nBytes = BytesOf(step);
    m_steps.push_back({std::move(step), ++m_nLast, nBytes});
    m_nBytes += nBytes;
    ++m_nNow;
    Trim();
}

// The last step stays whatever it takes.
void EditHistory::Trim() {
    while (m_nNow > 1 && (m_steps.size() > kMostSteps || m_nBytes > kMostBytes)) {
        m_nStart = m_steps.front().nAfter;
        m_nBytes -= m_steps.front().nBytes;
        m_steps.pop_front();
        --m_nNow;
    }
}

const EditStep* EditHistory::ToUndo() const {
    return m_nNow == 0 ? nullptr : &m_steps[m_nNow - 1].step;
}

const EditStep* EditHistory::ToRedo() const {
    return m_nNow == m_steps.size() ? nullptr : &m_steps[m_nNow].step;
}

void EditHistory::Undone() {
    --m_nNow;
}

void EditHistory::Redone() {
    ++m_nNow;
}

}
