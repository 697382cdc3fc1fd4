// The guards of the control's commands: each command keeps the control alive for
// its length, refuses a disposed one, asks for what it works on, and answers
// its fallback without.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "document/VLK_Document.h"
#include "viewers/core/IPDFViewer.h"

namespace velko::vkit {

template <class R, class F>
R PDFViewCtrl::WithDocument(R none, F fnAnswer) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument ? static_cast<R>(std::invoke(fnAnswer, *pDocument)) : none;
}

template <class F>
void PDFViewCtrl::WithDocument(F fnAct) {
    const auto pSelf = Enter();
    if (const auto pDocument = OpenDocument()) {
        std::invoke(fnAct, *pDocument);
    }
}

template <class R, class F>
R PDFViewCtrl::WithViewer(R none, F fnAnswer) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? static_cast<R>(std::invoke(fnAnswer, *pViewer)) : none;
}

template <class F>
void PDFViewCtrl::WithViewer(F fnAct) {
    const auto pSelf = Enter();
    if (const auto pViewer = Viewer()) {
        std::invoke(fnAct, *pViewer);
    }
}

template <class F>
void PDFViewCtrl::WithShown(F fnAct) {
    const auto pSelf = Enter();
    if (OpenDocument()) {
        WithViewer(std::move(fnAct));
    }
}

template <class F>
void PDFViewCtrl::WithManager(F fnAct) {
    const auto pSelf = Enter();
    if (const auto pManager = m_pPageViewMgr) {
        std::invoke(fnAct, *pManager);
    }
}

}
