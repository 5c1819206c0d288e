#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <filesystem>
#include <memory>
#include <string>

namespace ovix::emulator {

/// The emulator's own certification authority and a server certificate it issued for the loopback
/// names ("127.0.0.1", "::1", "localhost").
///
/// The authority is kept in a directory ("ca.pem" and, readable by the owner only, "ca-key.pem") and
/// reused on later runs, so a client told once to trust "ca.pem" keeps trusting the emulator; the
/// server certificate is issued afresh on each start (valid 30 days). Nothing here weakens the
/// client's checks: the client verifies the chain and the host name as for any server.
class TlsIdentity {
  public:
    /// Throws std::runtime_error when the directory cannot be written or OpenSSL fails; a damaged
    /// authority in the directory is an error too (it is not replaced behind the user's back).
    static TlsIdentity loadOrCreate(const std::filesystem::path& directory);

    X509* certificate() const { return certificate_.get(); }
    EVP_PKEY* key() const { return key_.get(); }
    /// The file a client adds to its trusted authorities.
    const std::filesystem::path& caPath() const { return caPath_; }
    std::string caPem() const;

  private:
    std::shared_ptr<X509> caCertificate_;
    std::shared_ptr<EVP_PKEY> caKey_;
    std::shared_ptr<X509> certificate_;
    std::shared_ptr<EVP_PKEY> key_;
    std::filesystem::path caPath_;
};

}  // namespace ovix::emulator
