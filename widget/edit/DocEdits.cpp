#include "widget/edit/DocEdits.h"

#include <algorithm>

namespace velko::vkit {

using velko::pdf::IAnnotEditor;

void DocEdits::Do(EditStep step) {
    if (!step.edits.empty()) {
        Take({Way::Do, std::move(step)});
    }
}

void DocEdits::Undo() {
    Take({Way::Undo, {}});
}

void DocEdits::Redo() {
    Take({Way::Redo, {}});
}

void DocEdits::Saved(EditHistory::Point nPoint) {
    m_history.Saved(nPoint);
    emit Changed();
}

void DocEdits::SavedNowhere() {
    m_history.SavedNowhere();
    emit Changed();
}

void DocEdits::Forget() {
    ++m_nDocument;
    m_jobs.clear();
    m_bRunning = false;
    m_bHeld = false;
    m_history = {};
    emit Changed();
}

void DocEdits::Hold() {
    m_bHeld = true;
}

void DocEdits::Release() {
    if (std::exchange(m_bHeld, false) && !m_bRunning) {
        RunNext();
    }
}

void DocEdits::Take(Job job) {
    m_jobs.push_back(std::move(job));
    if (!m_bRunning) {
        RunNext();
    }
}

// What is to be undone is known when its turn comes.
void DocEdits::RunNext() {
    m_bRunning = false;
    while (!m_jobs.empty() && !m_bRunning && !m_bHeld) {
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        const EditStep* const pStep = job.eWay == Way::Undo   ? m_history.ToUndo()
                                      : job.eWay == Way::Redo ? m_history.ToRedo()
                                                              : &job.step;
        if (pStep != nullptr) {
            if (job.eWay != Way::Do) {
                job.step = *pStep;
            }
            m_bRunning = true;
            Run(this, std::move(job));
        }
    }
    emit Changed();
}

concurrency::task<void> DocEdits::Run(QPointer<DocEdits> pSelf, Job job) {
    const std::uint64_t nDocument = pSelf->m_nDocument;
    const auto fnIsOver = [&] { return !pSelf || pSelf->m_nDocument != nDocument; };
    const auto pEdits = std::make_shared<std::vector<AnnotEdit>>(job.step.edits);
    if (job.eWay == Way::Undo) {
        std::reverse(pEdits->begin(), pEdits->end());
    }
    const auto running = RunEdits(pSelf, pEdits, job.eWay);
    const Ran ran = co_await running;
    if (fnIsOver()) {
        co_return;
    }
    if (!ran.pError) {
        if (job.eWay == Way::Do) {
            job.step.edits = *pEdits; // which have their numbers now
        }
        pSelf->Note(job.eWay, std::move(job.step));
    } else {
        pEdits->resize(ran.nDone);
        std::reverse(pEdits->begin(), pEdits->end());
        const auto goingBack =
            RunEdits(pSelf, pEdits, job.eWay == Way::Undo ? Way::Redo : Way::Undo);
        const Ran back = co_await goingBack;
        if (fnIsOver()) {
            co_return;
        }
        if (back.pError && job.eWay == Way::Do) {
            pEdits->erase(pEdits->begin(), pEdits->begin() + static_cast<long>(back.nDone));
            std::reverse(pEdits->begin(), pEdits->end());
            job.step.edits = *pEdits;
            pSelf->Note(Way::Do, std::move(job.step));
        }
        emit pSelf->Failed(ran.pError);
    }
    if (!fnIsOver()) {
        pSelf->RunNext();
    }
}

concurrency::task<DocEdits::Ran> DocEdits::RunEdits(QPointer<DocEdits> pSelf, Edits pEdits,
                                                    Way eWay) {
    const EditPage fnEditPage = pSelf->m_fnEditPage;
    Ran ran;
    for (; ran.nDone < pEdits->size(); ++ran.nDone) {
        const std::int32_t nPage = (*pEdits)[ran.nDone].nPage;
        const Edit fnEdit = [pEdits, eWay, n = ran.nDone](IAnnotEditor& editor) {
            AnnotEdit& edit = (*pEdits)[n];
            if (eWay == Way::Undo) {
                vkit::Undo(editor, edit);
            } else if (eWay == Way::Do && edit.eKind == AnnotEdit::Kind::Add) {
                edit.nId = editor.AddAnnot(edit.nPage, edit.after);
            } else {
                vkit::Redo(editor, edit);
            }
        };
        try {
            const auto editing = fnEditPage(nPage, fnEdit);
            co_await editing.settled();
            editing.get();
        } catch (...) {
            ran.pError = std::current_exception();
            co_return ran;
        }
        if (pSelf) {
            emit pSelf->PageEdited(nPage);
        }
    }
    co_return ran;
}

void DocEdits::Note(Way eWay, EditStep step) {
    if (eWay == Way::Undo) {
        m_history.Undone();
    } else if (eWay == Way::Redo) {
        m_history.Redone();
    } else {
        m_history.Did(std::move(step));
    }
}

}
