#include "engines/mupdf/BytePassword.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace velko::engines::mupdf {

namespace {

using Bytes = std::span<const unsigned char>;
using Padded = std::array<unsigned char, 32>;
using Digest = std::array<unsigned char, 16>; // a key is its beginning

constexpr int kUserPassword = 2;
constexpr int kOwnerPassword = 4;
constexpr int kRounds = 50; // of digests of digests, from revision 3 on
constexpr int kLastCipher = 19;

// The format fills up what is shorter with this.
constexpr Padded kPadding{0x28, 0xBF, 0x4E, 0x5E, 0x4E, 0x75, 0x8A, 0x41, 0x64, 0x00, 0x4E,
                          0x56, 0xFF, 0xFA, 0x01, 0x08, 0x2E, 0x2E, 0x00, 0xB6, 0xD0, 0x68,
                          0x3E, 0x80, 0x2F, 0x0C, 0xA9, 0xFE, 0x64, 0x53, 0x69, 0x7A};

// What the file says of its encryption.
struct Facts {
    int nRevision = 0;
    std::size_t nKey = 0; // bytes
    Bytes owner;
    Bytes user;
    std::uint32_t nPermissions = 0;
    bool bMetadataEncrypted = true;
    Bytes id;
};

Padded Pad(std::string_view bytes) {
    Padded padded{};
    const std::size_t nOwn = std::min(bytes.size(), padded.size());
    const auto itRest = std::copy_n(bytes.begin(), nOwn, padded.begin());
    std::copy_n(kPadding.begin(), padded.size() - nOwn, itRest);
    return padded;
}

Digest DigestOf(std::initializer_list<Bytes> parts) {
    fz_md5 state;
    fz_md5_init(&state);
    for (const Bytes& part : parts) {
        fz_md5_update(&state, part.data(), part.size());
    }
    Digest digest{};
    fz_md5_final(&state, digest.data());
    return digest;
}

Digest Strengthened(const Facts& facts, Digest digest) {
    for (int nRound = 0; facts.nRevision >= 3 && nRound < kRounds; ++nRound) {
        digest = DigestOf({Bytes(digest).first(facts.nKey)});
    }
    return digest;
}

// The cipher of round `n`: each byte of the key is mixed with the round's number.
void Cipher(const Facts& facts, Digest key, int nRound, std::span<unsigned char> data) {
    for (unsigned char& byte : key) {
        byte = static_cast<unsigned char>(byte ^ nRound);
    }
    fz_arc4 state;
    fz_arc4_init(&state, key.data(), facts.nKey);
    fz_arc4_encrypt(&state, data.data(), data.data(), data.size());
}

Digest FileKey(const Facts& facts, const Padded& password) {
    std::array<unsigned char, 4> permissions{};
    for (std::size_t nByte = 0; nByte < permissions.size(); ++nByte) {
        permissions[nByte] = static_cast<unsigned char>(facts.nPermissions >> (8 * nByte));
    }
    constexpr std::array<unsigned char, 4> kMetadataClear{0xFF, 0xFF, 0xFF, 0xFF};
    const bool bSaysClear = facts.nRevision >= 4 && !facts.bMetadataEncrypted;
    return Strengthened(facts, DigestOf({password, facts.owner, permissions, facts.id,
                                         bSaysClear ? Bytes(kMetadataClear) : Bytes()}));
}

bool Fits(const Facts& facts, const Digest& key) {
    if (facts.nRevision == 2) {
        Padded check = kPadding;
        Cipher(facts, key, 0, check);
        return std::equal(check.begin(), check.end(), facts.user.begin());
    }
    Digest check = DigestOf({kPadding, facts.id});
    for (int nRound = 0; nRound <= kLastCipher; ++nRound) {
        Cipher(facts, key, nRound, check);
    }
    return std::equal(check.begin(), check.end(), facts.user.begin());
}

// The user's password, which the owner's opens.
Padded UserPasswordOf(const Facts& facts, const Padded& owner) {
    const Digest key = Strengthened(facts, DigestOf({owner}));
    Padded user{};
    std::copy_n(facts.owner.begin(), user.size(), user.begin());
    for (int nRound = facts.nRevision == 2 ? 0 : kLastCipher; nRound >= 0; --nRound) {
        Cipher(facts, key, nRound, user);
    }
    return user;
}

Facts ReadFacts(fz_context* ctx, pdf_document* pDocument) {
    pdf_crypt* const pCrypt = pDocument->crypt;
    pdf_obj* const pId =
        pdf_array_get(ctx, pdf_dict_get(ctx, pdf_trailer(ctx, pDocument), PDF_NAME(ID)), 0);
    Facts facts;
    facts.nRevision = pdf_crypt_revision(ctx, pCrypt);
    facts.nKey = static_cast<std::size_t>(std::clamp(pdf_crypt_length(ctx, pCrypt) / 8, 5, 16));
    facts.owner = {pdf_crypt_owner_password(ctx, pCrypt), kPadding.size()};
    facts.user = {pdf_crypt_user_password(ctx, pCrypt), kPadding.size()};
    facts.nPermissions = static_cast<std::uint32_t>(pdf_crypt_permissions(ctx, pCrypt));
    facts.bMetadataEncrypted = pdf_crypt_encrypt_metadata(ctx, pCrypt) != 0;
    facts.id = {reinterpret_cast<const unsigned char*>(pdf_to_str_buf(ctx, pId)),
                pdf_to_str_len(ctx, pId)};
    return facts;
}

}

int AuthenticateBytes(fz_context* ctx, pdf_document* pDocument, std::string_view bytes) {
    constexpr int kLastByteRevision = 4;
    if (pDocument->crypt == nullptr ||
        pdf_crypt_revision(ctx, pDocument->crypt) > kLastByteRevision) {
        return 0;
    }
    const Facts facts = ReadFacts(ctx, pDocument);
    const Padded password = Pad(bytes);
    const Digest asOwner = FileKey(facts, UserPasswordOf(facts, password));
    const Digest asUser = FileKey(facts, password);
    const bool bOwner = Fits(facts, asOwner);
    if (!bOwner && !Fits(facts, asUser)) {
        return 0;
    }
    const Digest& key = bOwner ? asOwner : asUser;
    std::copy_n(key.begin(), facts.nKey, pdf_crypt_key(ctx, pDocument->crypt));
    return bOwner ? kOwnerPassword : kUserPassword;
}

}
