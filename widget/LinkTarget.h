// Where a link of a document leads, and what a reader is told of it.
//
// Threads: any.
#pragma once

#include <QString>
#include <QUrl>
#include <memory>
#include <variant>

#include "document/engine/HostServices.h"
#include "widget/FilePath.h"

namespace velko::vkit {

// A place in the document, in one of three ways.
struct LinkToPage {
    std::shared_ptr<velko::pdf::IAction> pAction; // a destination; else
    QString strName;                              // a name that the document knows; else
    int nPage = -1;                               // a page, from 0; may be out of range
};

// A step from where the reader is.
enum class LinkStep { NextPage, PreviousPage, FirstPage, LastPage, Back, Forward };

// An address for a browser or a mail program: without a name and password for the site,
// and of a letter what is written alone, no files.
struct LinkToAddress {
    QUrl address;
};

// Another PDF document, by its name or where it is found from the document's folder.
struct LinkToFile {
    FilePath path; // absolute
};

// What is not done from a document.
struct RefusedLink {
    QString strReason; // a sentence for the reader
};

using LinkTarget = std::variant<LinkToPage, LinkStep, LinkToAddress, LinkToFile, RefusedLink>;

// The sentence for whoever follows a link to a place that does not exist.
QString LeadsNowhere();

// Of a link in the document of that file, which may be empty.
LinkTarget TargetOf(const velko::pdf::LinkGoal& goal, const FilePath& document);

// Whether it is one that `LinkToAddress` may have.
bool IsWebAddress(const QUrl& address);

// The target in a few words, for whoever points at the link; nothing in it is hidden. An
// address is that of `LinkToAddress`, as it goes out.
QString TextOf(const velko::pdf::LinkGoal& goal, velko::pdf::PDFDoc& document);

}
