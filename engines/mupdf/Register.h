// The engine module on MuPDF, as the rest of the program sees it.
#pragma once

namespace velko::engines::mupdf {

// Registers the factories of `velko.pdf.PDFDoc`, `velko.pdf.ReflowPage`,
// `velko.common.Bitmap` and `velko.common.Renderer` by their class names.
// Call once at the start of the process. Threads: any.
void RegisterEngine();

}
