#include "engines/mupdf/facts/Attachments.h"

#include <algorithm>
#include <string>

#include "engines/mupdf/LenientUse.h"

namespace velko::engines::mupdf {

namespace {

constexpr int kMostFiles = 10'000;

using common::EngineException;
using common::ErrorCode;
using ObjectHandle = Handle<pdf_obj, pdf_drop_obj>;
using BufferHandle = Handle<fz_buffer, fz_drop_buffer>;

// What the document attaches: names with a description of a file each.
ObjectHandle LoadNames(OpenedFile& file) {
    fz_context* const ctx = ThreadContext();
    ObjectHandle names;
    UseLeniently(file, [&] {
        names.Out() = pdf_load_name_tree(ctx, file.Document(), PDF_NAME(EmbeddedFiles));
    });
    return names;
}

// The descriptions that hold a file, borrowed from `names`.
std::vector<pdf_obj*> FilesOf(OpenedFile& file, const ObjectHandle& names) {
    fz_context* const ctx = ThreadContext();
    const int nNames = std::min(pdf_dict_len(ctx, names.Get()), kMostFiles);
    std::vector<pdf_obj*> files;
    for (int i = 0; i < nNames; ++i) {
        pdf_obj* pFile = nullptr;
        UseLeniently(file, [&] {
            pdf_obj* const pEntry = pdf_dict_get_val(ctx, names.Get(), i);
            pFile = pdf_is_embedded_file(ctx, pEntry) != 0 ? pEntry : nullptr;
        });
        if (pFile != nullptr) {
            files.push_back(pFile);
        }
    }
    return files;
}

pdf::AttachedFile FactsOf(OpenedFile& file, pdf_obj* pFile) {
    fz_context* const ctx = ThreadContext();
    pdf::AttachedFile facts;
    pdf_embedded_file_params params{nullptr, nullptr, -1, 0, 0};
    const char* szDescription = "";
    UseLeniently(file, [&] {
        szDescription = pdf_to_text_string(ctx, pdf_dict_get(ctx, pFile, PDF_NAME(Desc)));
        pdf_get_embedded_file_params(ctx, pFile, &params);
    });
    facts.strName = params.filename != nullptr ? params.filename : "";
    facts.strMimeType = params.mimetype != nullptr ? params.mimetype : "";
    facts.strDescription = szDescription;
    facts.nSize = std::max(params.size, -1);
    facts.nCreated = std::max<std::int64_t>(params.created, 0);
    facts.nModified = std::max<std::int64_t>(params.modified, 0);
    return facts;
}

}

std::vector<pdf::AttachedFile> ReadAttachedFiles(OpenedFile& file) {
    const ObjectHandle names = LoadNames(file);
    std::vector<pdf::AttachedFile> facts;
    for (pdf_obj* const pFile : FilesOf(file, names)) {
        facts.push_back(FactsOf(file, pFile));
    }
    return facts;
}

std::vector<std::uint8_t> ReadAttachedBytes(OpenedFile& file, std::int32_t nFile) {
    fz_context* const ctx = ThreadContext();
    const ObjectHandle names = LoadNames(file);
    const std::vector<pdf_obj*> files = FilesOf(file, names);
    if (nFile < 0 || static_cast<std::size_t>(nFile) >= files.size()) {
        throw EngineException(ErrorCode::e_ErrParam, "the document has no such attached file");
    }
    BufferHandle buffer;
    unsigned char* pBytes = nullptr;
    std::size_t nBytes = 0;
    try {
        file.Use([&] {
            buffer.Out() =
                pdf_load_embedded_file_contents(ctx, files[static_cast<std::size_t>(nFile)]);
            nBytes = fz_buffer_storage(ctx, buffer.Get(), &pBytes);
        });
    } catch (const LibraryError& error) {
        throw EngineException(ErrorCode::e_ErrInvalidData,
                              std::string("the attached file is damaged: ") + error.what());
    }
    return {pBytes, pBytes + nBytes};
}

}
