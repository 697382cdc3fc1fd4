#include "tests/support/pdf_writer/Ciphers_p.h"

#include <mupdf/fitz.h>

namespace velko::testing {

namespace {

const unsigned char* BytesOf(std::string_view strData) {
    return reinterpret_cast<const unsigned char*>(strData.data());
}

}

std::string Md5(std::string_view strData) {
    fz_md5 state;
    unsigned char digest[16];
    fz_md5_init(&state);
    fz_md5_update(&state, BytesOf(strData), strData.size());
    fz_md5_final(&state, digest);
    return {digest, digest + sizeof digest};
}

std::string Rc4(std::string_view strKey, std::string_view strData) {
    fz_arc4 state;
    std::string strResult(strData.size(), '\0');
    fz_arc4_init(&state, BytesOf(strKey), strKey.size());
    fz_arc4_encrypt(&state, reinterpret_cast<unsigned char*>(strResult.data()), BytesOf(strData),
                    strData.size());
    return strResult;
}

}
