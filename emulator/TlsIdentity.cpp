#include "emulator/TlsIdentity.h"

#include <fcntl.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace ovix::emulator {

namespace {

std::shared_ptr<EVP_PKEY> newKey() {
    std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    if (!key) {
        throw std::runtime_error("OpenSSL could not make a key");
    }
    return key;
}

void addExtension(X509* cert, X509* issuer, int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, cert, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    if (extension == nullptr || X509_add_ext(cert, extension, -1) != 1) {
        X509_EXTENSION_free(extension);
        throw std::runtime_error("OpenSSL refused a certificate extension");
    }
    X509_EXTENSION_free(extension);
}

// A certificate for `subject`'s key, signed by `issuerKey` (the same key for the authority itself).
std::shared_ptr<X509> issue(const char* commonName, EVP_PKEY* subjectKey, X509* issuer, EVP_PKEY* issuerKey,
                            long days, bool authority) {
    std::shared_ptr<X509> cert(X509_new(), X509_free);
    unsigned char serial[8];
    RAND_bytes(serial, sizeof serial);
    serial[0] &= 0x7f;
    BIGNUM* number = BN_bin2bn(serial, sizeof serial, nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(cert.get()));
    BN_free(number);
    X509_set_version(cert.get(), 2);
    X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(cert.get()), days * 86400);
    X509_set_pubkey(cert.get(), subjectKey);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
    X509* signer = issuer != nullptr ? issuer : cert.get();
    X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
    if (authority) {
        addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
        addExtension(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
        addExtension(cert.get(), signer, NID_subject_key_identifier, "hash");
    } else {
        addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
        addExtension(cert.get(), signer, NID_key_usage, "critical,digitalSignature");
        addExtension(cert.get(), signer, NID_ext_key_usage, "serverAuth");
        addExtension(cert.get(), signer, NID_subject_alt_name, "IP:127.0.0.1,IP:::1,DNS:localhost");
        addExtension(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
    }
    if (X509_sign(cert.get(), issuerKey, EVP_sha256()) == 0) {
        throw std::runtime_error("OpenSSL could not sign a certificate");
    }
    return cert;
}

template <typename Write>
void writeFile(const std::filesystem::path& path, mode_t mode, Write write) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    FILE* file = fd < 0 ? nullptr : fdopen(fd, "w");
    if (file == nullptr) {
        if (fd >= 0) {
            ::close(fd);
        }
        throw std::runtime_error(path.string() + ": cannot be written");
    }
    const bool written = write(file) == 1;
    if (std::fclose(file) != 0 || !written) {
        throw std::runtime_error(path.string() + ": cannot be written");
    }
}

template <typename T, typename Read>
std::shared_ptr<T> readFile(const std::filesystem::path& path, Read read, void (*release)(T*)) {
    FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr) {
        throw std::runtime_error(path.string() + ": cannot be read");
    }
    std::shared_ptr<T> value(read(file, nullptr, nullptr, nullptr), release);
    std::fclose(file);
    if (!value) {
        throw std::runtime_error(path.string() + ": not a PEM file of the expected kind");
    }
    return value;
}

}  // namespace

TlsIdentity TlsIdentity::loadOrCreate(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    TlsIdentity identity;
    identity.caPath_ = directory / "ca.pem";
    const auto keyPath = directory / "ca-key.pem";
    if (std::filesystem::exists(identity.caPath_) && std::filesystem::exists(keyPath)) {
        identity.caCertificate_ = readFile<X509>(identity.caPath_, PEM_read_X509, X509_free);
        identity.caKey_ = readFile<EVP_PKEY>(keyPath, PEM_read_PrivateKey, EVP_PKEY_free);
        if (X509_check_private_key(identity.caCertificate_.get(), identity.caKey_.get()) != 1) {
            throw std::runtime_error(keyPath.string() + ": does not belong to " + identity.caPath_.string());
        }
    } else {
        identity.caKey_ = newKey();
        identity.caCertificate_ = issue("Ovix emulator local CA", identity.caKey_.get(), nullptr,
                                        identity.caKey_.get(), 3650, true);
        writeFile(keyPath, 0600, [&](FILE* file) {
            return PEM_write_PrivateKey(file, identity.caKey_.get(), nullptr, nullptr, 0, nullptr, nullptr);
        });
        writeFile(identity.caPath_, 0644,
                  [&](FILE* file) { return PEM_write_X509(file, identity.caCertificate_.get()); });
    }
    identity.key_ = newKey();
    identity.certificate_ = issue("127.0.0.1", identity.key_.get(), identity.caCertificate_.get(),
                                  identity.caKey_.get(), 30, false);
    return identity;
}

std::string TlsIdentity::caPem() const {
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_X509(bio.get(), caCertificate_.get());
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return std::string(data, static_cast<std::size_t>(size));
}

}  // namespace ovix::emulator
