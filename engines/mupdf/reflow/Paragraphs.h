// Joins the rows of a column into paragraphs.
//
// Threads: pure functions.
#pragma once

#include <span>
#include <vector>

#include "engines/mupdf/reflow/PageModel.h"
#include "engines/mupdf/reflow/RowText.h"
#include "engines/mupdf/reflow/Words.h"

namespace velko::engines::mupdf::reflow {

// The edges that rows are looked at against.
struct Measure {
    float fLeft = 0.0F;
    float fRight = 0.0F;
    float fPageLeft = 0.0F; // of all text of the page
    float fPageRight = 0.0F;
    float fBodySize = 10.0F;
    bool bAside = false; // each row stands for itself
};

// The paragraphs of rows that follow each other, without figures between them.
std::vector<Paragraph> JoinRows(std::span<RowText> rows, const Measure& measure,
                                const Words& words);

bool AreLikeSizes(float fOne, float fTwo);

// Appends text that goes on: with a space, or without where a hyphen ends the
// line, which goes when it parts a word, and between ideographs.
void AppendText(Glyphs& text, const Glyphs& more, const Words& words);

// Whether a paragraph at the head of a column goes on with a sentence from the
// foot of the one before.
bool GoesOn(const Paragraph& before, const Paragraph& after, const PageModel& model);

}
