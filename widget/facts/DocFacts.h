// What the shown document says of itself, for the parts of a window: its outline, its
// page labels, its properties and the files that are attached to it.
//
//   connect(&facts, &DocFacts::OutlineRead, this, &Pane::Fill);
//   connect(&facts, &DocFacts::Forgotten, this, &Pane::Clear);
//   if (const auto pOutline = facts.FindOutline()) { ... }
//
// Each is read on the task pool when it is first asked for, once, and kept until another
// document is shown; but the labels, which a reader sees without asking: they are read
// once the first pages stand sharp.
// Threads: UI thread only. Errors: what cannot be read is empty.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "document/engine/PDFDoc.h"
#include "widget/facts/Outline.h"

namespace velko::vkit {

class VelkoPdfView;

class DocFacts : public QObject {
    Q_OBJECT

public:
    using Files = std::vector<velko::pdf::AttachedFile>;
    using Properties = velko::pdf::DocumentProperties;
    using PageLabels = velko::pdf::PageLabels;

    explicit DocFacts(VelkoPdfView& view); // goes with the view

    // Empty pointers while it is read, which begins here at the latest. What they give
    // stays as it is, whatever is forgotten here.
    std::shared_ptr<const Outline> FindOutline();
    std::shared_ptr<const Properties> FindProperties();
    std::shared_ptr<const Files> FindFiles();

    // Those of a document without labels until they are read.
    const PageLabels& Labels() const;
    QString LabelOf(int nPage) const; // its number where it is called nothing

    // Of which these are; empty when none is shown.
    std::shared_ptr<velko::pdf::PDFDoc> Document() const { return m_wkDocument.lock(); }

signals:
    void OutlineRead();
    void PropertiesRead();
    void FilesRead();
    void LabelsRead();
    void Forgotten(); // another document is shown, or none

private:
    using Doc = velko::pdf::PDFDoc;

    // What is read of one document.
    struct Known {
        std::shared_ptr<const Outline> pOutline;
        std::shared_ptr<const Properties> pProperties;
        std::shared_ptr<const Files> pFiles;
        std::shared_ptr<const PageLabels> pLabels;
        bool bOutlineAsked = false;
        bool bPropertiesAsked = false;
        bool bFilesAsked = false;
        bool bLabelsAsked = false;
    };

    template <class T>
    void Read(bool Known::*pAsked, std::shared_ptr<const T> Known::*pValue,
              std::function<T(Doc&)> fnRead, void (DocFacts::*fnTell)());
    void FollowDocument();
    void ReadLabelsWhenSharp();

    VelkoPdfView& m_view;
    std::weak_ptr<Doc> m_wkDocument;
    Known m_known;
};

}
