// Carries out what the reader does to the annotations of the shown document, one step
// after the other, and keeps the history of it.
//
// A step that fails on the way has done nothing: what it had done by then is taken
// back; where even that fails, what stays done is a step that can be undone.
//
// Lifetime: goes before the control. Steps that wait then are given up.
// Threads: UI thread only; the engine's work is done on the task pool.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/concurrency/Task.h"
#include "widget/edit/EditHistory.h"

namespace velko::vkit {

class DocEdits : public QObject {
    Q_OBJECT

public:
    using Edit = std::function<void(velko::pdf::IAnnotEditor&)>;
    // Carries out an edit of a page's annotations, and shows it.
    using EditPage = std::function<concurrency::task<void>(std::int32_t nPage, Edit fnEdit)>;

    explicit DocEdits(EditPage fnEditPage) : m_fnEditPage(std::move(fnEditPage)) {}

    // An edit that adds needs no number.
    void Do(EditStep step);
    void Undo();
    void Redo();

    // Steps are under way or wait.
    bool IsBusy() const { return m_bRunning || !m_jobs.empty(); }

    // Steps wait meanwhile: for a save, whose file holds just what stood when it began.
    void Hold();
    void Release();

    const EditHistory& History() const { return m_history; }
    void Saved(EditHistory::Point nPoint);
    void SavedNowhere();

    // Another document, or none, is shown.
    void Forget();

signals:
    void Changed(); // the history, or whether steps are under way
    void PageEdited(int nPage);
    void Failed(const std::exception_ptr& pError);

private:
    enum class Way { Do, Undo, Redo };
    struct Job {
        Way eWay = Way::Do;
        EditStep step; // of Do
    };
    // How far a run over the edits of a step came.
    struct Ran {
        std::size_t nDone = 0;
        std::exception_ptr pError;
    };
    using Edits = std::shared_ptr<std::vector<AnnotEdit>>;

    void Take(Job job);
    void RunNext();
    static concurrency::task<void> Run(QPointer<DocEdits> pSelf, Job job);
    static concurrency::task<Ran> RunEdits(QPointer<DocEdits> pSelf, Edits pEdits, Way eWay);
    void Note(Way eWay, EditStep step);

    const EditPage m_fnEditPage;
    EditHistory m_history;
    std::deque<Job> m_jobs;
    bool m_bRunning = false;
    bool m_bHeld = false;
    std::uint64_t m_nDocument = 0; // counts them
};

}
