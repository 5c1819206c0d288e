#pragma once

#include <memory>
#include <string>
#include <thread>

#include "ovix/platform/HttpClient.h"

namespace ovix::bench {

/// The SDK's libcurl client as it was before its handles were kept configured between requests
/// (each was reset and set up again), kept for the benchmark's before-and-after in one run.
///
/// HTTP on libcurl: one multi handle driven by one worker thread that the client owns.
///
/// Connections (and TLS sessions) are kept and reused across requests; HTTP/2 is used where the
/// server offers it over TLS. Certificates and host names are always verified. Completions run on
/// the worker thread, one at a time, holding no lock; a completion may send again, and may even drop
/// the last reference to the client.
///
/// A request keeps the client alive (when a `std::shared_ptr` owns it) until its completion has run.
/// Redirects are followed by sending again, and only within the request's origin.
/// Destruction ends whatever is still queued or in flight with an error, on the worker, and waits
/// for those completions, so that each runs once and none after the destructor has returned.
class PreviousCurlHttpClient : public platform::HttpClient,
                               public std::enable_shared_from_this<PreviousCurlHttpClient> {
  public:
    struct Options {
        /// PEM file of the certification authorities to trust instead of the system's; empty for the
        /// system's store. Verification itself cannot be turned off.
        std::string caBundlePath;
        /// When positive, no request waits longer than this many seconds, whatever it asks for
        /// (for tests of stalled servers).
        double timeoutCeilingSeconds = 0;
    };

    PreviousCurlHttpClient();
    explicit PreviousCurlHttpClient(Options options);
    ~PreviousCurlHttpClient() override;

    PreviousCurlHttpClient(const PreviousCurlHttpClient&) = delete;
    PreviousCurlHttpClient& operator=(const PreviousCurlHttpClient&) = delete;

    void send(platform::HttpRequest request, Completion completion) override;

  private:
    // The worker's state, shared with the worker thread so that it outlives a destructor that runs
    // on the worker itself.
    struct Engine;
    std::shared_ptr<Engine> engine_;
    std::thread worker_;
};

}  // namespace ovix::bench
