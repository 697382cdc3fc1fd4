#include "engines/mupdf/reflow/PageModel.h"

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

std::size_t BytesOf(const PageModel& model) {
    std::size_t nBytes = sizeof model + model.blocks.capacity() * sizeof(Block) +
                         model.styles.capacity() * sizeof(Style) +
                         model.fonts.capacity() * sizeof(FontHandle);
    for (const Block& block : model.blocks) {
        nBytes += block.paragraph.glyphs.capacity() * sizeof(Glyph);
    }
    return nBytes;
}

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
