#pragma once

namespace httplib {
struct Request;
}

namespace ovix::emulator {

/// Ends the connection a request arrived on, from inside its handler, so that the client receives
/// no answer at all: a dropped connection.
///
/// The server library gives a handler no socket; this finds it (the TLS session's, or on Linux the
/// process's socket whose two ends match the request's addresses) and shuts it down both ways. The
/// library then fails to write the answer and closes the socket itself. Handler thread.
class ConnectionCloser {
  public:
    /// False when the socket could not be found; the caller then answers normally.
    static bool shutDown(const httplib::Request& request);
};

}  // namespace ovix::emulator
