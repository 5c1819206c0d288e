#pragma once

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace ovix::test {

/// A certification authority made for one test, and server certificates it signs for 127.0.0.1.
class TestAuthority {
  public:
    struct KeyFree {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };
    struct CertFree {
        void operator()(X509* cert) const { X509_free(cert); }
    };
    using Key = std::unique_ptr<EVP_PKEY, KeyFree>;
    using Cert = std::unique_ptr<X509, CertFree>;

    struct Issued {
        Key key;
        Cert cert;
    };

    explicit TestAuthority(const std::string& name)
        : key_(newKey()), cert_(makeCert(name, key_.get(), nullptr, nullptr, true)) {}

    /// A certificate for "127.0.0.1" (IP and DNS name) signed by this authority.
    Issued issueServer() const {
        Issued out{newKey(), nullptr};
        out.cert = makeCert("127.0.0.1", out.key.get(), cert_.get(), key_.get(), false);
        return out;
    }

    /// Writes the authority's certificate as PEM to `path`.
    void writePem(const std::filesystem::path& path) const {
        FILE* file = std::fopen(path.c_str(), "w");
        if (file == nullptr || PEM_write_X509(file, cert_.get()) != 1) {
            throw std::runtime_error("cannot write " + path.string());
        }
        std::fclose(file);
    }

  private:
    static Key newKey() {
        Key key(EVP_EC_gen("P-256"));
        if (!key) {
            throw std::runtime_error("EC key generation failed");
        }
        return key;
    }

    static void addExtension(X509* cert, X509* issuer, int nid, const char* value) {
        X509V3_CTX context;
        X509V3_set_ctx_nodb(&context);
        X509V3_set_ctx(&context, issuer != nullptr ? issuer : cert, cert, nullptr, nullptr, 0);
        X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
        if (extension == nullptr) {
            throw std::runtime_error("bad extension");
        }
        X509_add_ext(cert, extension, -1);
        X509_EXTENSION_free(extension);
    }

    static Cert makeCert(const std::string& commonName, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                         bool isAuthority) {
        static long serial = 1;
        Cert cert(X509_new());
        X509_set_version(cert.get(), 2);
        ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial++);
        X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
        X509_gmtime_adj(X509_getm_notAfter(cert.get()), 86400);
        X509_set_pubkey(cert.get(), key);
        X509_NAME* name = X509_get_subject_name(cert.get());
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(commonName.c_str()), -1, -1, 0);
        X509_set_issuer_name(cert.get(), issuer != nullptr ? X509_get_subject_name(issuer) : name);
        if (isAuthority) {
            addExtension(cert.get(), issuer, NID_basic_constraints, "critical,CA:TRUE");
            addExtension(cert.get(), issuer, NID_key_usage, "critical,keyCertSign,cRLSign");
            addExtension(cert.get(), issuer, NID_subject_key_identifier, "hash");
        } else {
            addExtension(cert.get(), issuer, NID_basic_constraints, "critical,CA:FALSE");
            addExtension(cert.get(), issuer, NID_ext_key_usage, "serverAuth");
            addExtension(cert.get(), issuer, NID_subject_alt_name, "IP:127.0.0.1,DNS:localhost");
            addExtension(cert.get(), issuer, NID_authority_key_identifier, "keyid");
        }
        if (X509_sign(cert.get(), issuerKey != nullptr ? issuerKey : key, EVP_sha256()) == 0) {
            throw std::runtime_error("signing failed");
        }
        return cert;
    }

    Key key_;
    Cert cert_;
};

}  // namespace ovix::test
