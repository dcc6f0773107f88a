#pragma once

#include <openssl/bio.h>
#include <openssl/evp.h>

#include <memory>

namespace kovi::openssl {

// Owning handles for the OpenSSL objects this area uses, so every early
// return frees what it made.
struct PkeyFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct MdContextFree {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
struct PkeyContextFree {
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
};
struct BioFree {
  void operator()(BIO* bio) const { BIO_free(bio); }
};

using Pkey = std::unique_ptr<EVP_PKEY, PkeyFree>;
using MdContext = std::unique_ptr<EVP_MD_CTX, MdContextFree>;
using PkeyContext = std::unique_ptr<EVP_PKEY_CTX, PkeyContextFree>;
using Bio = std::unique_ptr<BIO, BioFree>;

}  // namespace kovi::openssl
