#include "engines/mupdf/reflow/PageModel.h"

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

std::string TextOf(const Paragraph& paragraph) {
    std::string strText;
    for (const Glyph& glyph : paragraph.glyphs) {
        AppendUtf8(strText, glyph.nUnicode);
    }
    return strText;
}

std::string TextOf(const PageModel& model) {
    std::string strText;
    for (const Block& block : model.blocks) {
        if (!block.bIsFigure) {
            strText += TextOf(block.paragraph);
            strText += '\n';
        }
    }
    return strText;
}

}
