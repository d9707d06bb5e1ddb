#include "kavo/push/codec/internal/bio_base64.h"

#include <openssl/bio.h>
#include <openssl/buffer.h>
#include <openssl/evp.h>

#include <climits>
#include <vector>

#include "kavo/host/secure/bounded_memory.h"
#include "kavo/push/event/report_log.h"

namespace Kavo::Push::internal {

namespace {

// Every failed conversion hands out a copy of this one empty value.
const SecureString EMPTY_RESULT;

// Writes all bytes through the filter chain and returns the memory buffer's contents.
SecureString EncodeThrough(BIO* b64Bio, BIO* memBio, const unsigned char* data, unsigned int length)
{
    BIO_push(b64Bio, memBio);
    BIO_set_flags(b64Bio, BIO_FLAGS_BASE64_NO_NL);
    if (BIO_write(b64Bio, data, static_cast<int>(length)) < 1) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Encode error: bio write fail");
        return EMPTY_RESULT;
    }
    (void)BIO_flush(b64Bio);
    BUF_MEM* buffer = nullptr;
    BIO_get_mem_ptr(memBio, &buffer);
    if (buffer == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Encode error: bio get mem ptr fail");
        return EMPTY_RESULT;
    }
    return SecureString(buffer->data, buffer->length);
}

// Reads once, for at most as many bytes as the text has: the decoded data is never longer.
// The scratch buffer may hold a decoded key, so it is zeroed before it goes back.
SecureString DecodeThrough(BIO* b64Bio, BIO* memBio, size_t length)
{
    std::vector<unsigned char> buffer(length, 0);
    BIO_push(b64Bio, memBio);
    BIO_set_flags(b64Bio, BIO_FLAGS_BASE64_NO_NL);
    size_t readBytes = 0;
    int ok = BIO_read_ex(b64Bio, buffer.data(), length, &readBytes);
    SecureString result =
        ok == 1 ? SecureString(reinterpret_cast<const char*>(buffer.data()), readBytes) : EMPTY_RESULT;
    (void)Kavo::memset_s(buffer.data(), buffer.size(), 0, buffer.size());
    if (ok != 1 || readBytes == 0) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Decode error: bio read fail");
        return EMPTY_RESULT;
    }
    return result;
}

}  // namespace

SecureString BioBase64Encode(const unsigned char* data, unsigned int length)
{
    if (data == nullptr || length == 0) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Encode error: invalid input param");
        return EMPTY_RESULT;
    }
    BIO* memBio = BIO_new(BIO_s_mem());
    if (memBio == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Encode error: memBio is nullptr");
        return EMPTY_RESULT;
    }
    BIO* b64Bio = BIO_new(BIO_f_base64());
    if (b64Bio == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Encode error: b64Bio is nullptr");
        BIO_free(memBio);
        return EMPTY_RESULT;
    }
    SecureString result = EncodeThrough(b64Bio, memBio, data, length);
    BIO_free_all(b64Bio);
    return result;
}

SecureString BioBase64Decode(const SecureString& text)
{
    if (text.empty() || text.size() > static_cast<size_t>(INT_MAX)) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Decode error: invalid input param");
        return EMPTY_RESULT;
    }
    BIO* memBio = BIO_new_mem_buf(text.data(), static_cast<int>(text.size()));
    if (memBio == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Decode error: memBio is nullptr");
        return EMPTY_RESULT;
    }
    BIO* b64Bio = BIO_new(BIO_f_base64());
    if (b64Bio == nullptr) {
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Base64Decode error: b64Bio is nullptr");
        BIO_free(memBio);
        return EMPTY_RESULT;
    }
    SecureString result = DecodeThrough(b64Bio, memBio, text.size());
    BIO_free_all(b64Bio);
    return result;
}

}  // namespace Kavo::Push::internal
